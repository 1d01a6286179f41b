// SPDX-License-Identifier: MIT
#include "engine/mp3tags.h"
#include "fuzz/memoryFile.h"

#include <utility>

/// The whole MPEG reader on any bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace sonarin;
    startUp();
    const MemoryFile file(bytes, size);
    audioTags record;
    (void)mp3GetFileInfo(file.path(), &record);
    printRecord(file.path(), std::move(record));
    return 0;
}
