// SPDX-License-Identifier: MIT
#include "engine/miAIFF.h"
#include "fuzz/memoryFile.h"

/// The whole AIFF reader, tags included, on any bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace sonarin;
    return fuzzReader(bytes, size,
                      [](const SvxStringRef& path, audioTags* record, const ReadOptions& options) {
                          miAudioInfo info;
                          (void)miGetAIFFInfo(path, &info, record, options);
                      });
}
