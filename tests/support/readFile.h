// SPDX-License-Identifier: MIT
#pragma once

#include "engine/fileEngine.h"
#include "tools/testFolder.h"

#include <filesystem>
#include <string>

namespace sonarin {

struct ReadResult {
    std::int32_t result = 0;
    audioTags record;
};

/// Reads a file of that name and content through the engine's front door; a size beyond the content leaves a
/// hole at its end.
inline ReadResult readFileAs(const std::string& name, const std::string& content,
                             std::uint64_t sizeOnDisk = 0, TagReading tags = TagReading::usual) {
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
