// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"
#include "engine/readCache.h"

#include <cstdint>

namespace sonarin {

/// Finds the picture of one frame, or of one item of an MPEG-4 file, in the `count` bytes at `offset`, which
/// for an ID3v2 frame are those behind its encoding byte and one more, and stores it in the record: its type
/// and place, and its bytes when they are to be loaded. 0 when one was stored, -1 for fewer than 100 bytes,
/// -2 when the bytes cannot be read or hold no start of a picture; the record is then unchanged.
std::int32_t mp3ReadCoverArt(audioTags* record, std::uint64_t offset, std::uint32_t count, rcCacheRec* cache,
                             Pictures pictures = Pictures::load) noexcept;

} // namespace sonarin
