// SPDX-License-Identifier: MIT
#include "engine/mpegFile.h"
#include "fuzz/memoryFile.h"

/// The whole MPEG reader on any bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace sonarin;
    return fuzzReader(bytes, size,
                      [](const SvxStringRef& path, audioTags* record, const ReadOptions& options) {
                          (void)mp3GetFileInfo(path, record, options);
                      });
}
