// SPDX-License-Identifier: MIT
#include "tests/support/readFile.h"

#include "engine/fileEngine.h"
#include "tests/support/testFolder.h"

#include <filesystem>

namespace sonarin {

ReadResult readFileAs(const std::string& name, const std::string& content, std::uint64_t sizeOnDisk,
                      TagReading tags) {
    startUpIn("C");
    const TestFolder folder;
    const std::string path = folder.write(name, content);
    if (sizeOnDisk != 0) {
        std::filesystem::resize_file(path, sizeOnDisk);
    }
    ReadResult read;
    read.result = amdGetAudioMetaDataForFile(feMakePathText(path), &read.record, nullptr,
                                             {Pictures::load, nullptr, tags});
    return read;
}

} // namespace sonarin
