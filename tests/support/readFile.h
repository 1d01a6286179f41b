// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"

#include <cstdint>
#include <string>

namespace sonarin {

struct ReadResult {
    std::int32_t result = 0;
    audioTags record;
};

/// The texts, year and track of a record, in the order of their members.
std::string tagsOf(const audioTags& record);

/// Reads a file of that name and content through the engine's front door; a size beyond the content leaves a
/// hole at its end.
ReadResult readFileAs(const std::string& name, const std::string& content, std::uint64_t sizeOnDisk = 0,
                      TagReading tags = TagReading::usual);

} // namespace sonarin
