// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"
#include "engine/readCache.h"

#include <cstdint>

namespace sonarin {

/// Fills the record from the ID3v1 block in the last 128 bytes of the file, if there is one. By the standard
/// its texts are ISO-8859-1 and end before the first zero byte, and only what is still missing is taken from
/// it, whatever else an ID3v2 tag gave.
void mp3ReadV1Tag(audioTags* record, rcCacheRec* cache, std::uint64_t fileSize,
                  TagReading reading = TagReading::usual) noexcept;

} // namespace sonarin
