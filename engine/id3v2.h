// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"
#include "engine/readBudget.h"
#include "engine/readCache.h"

#include <cstdint>

/// ID3v2 tags of whatever file carries one.
namespace sonarin {

/// Reads the ID3v2 tag at `*position`, whose "ID3" the caller has seen, and moves `*position` to the tag's
/// end. Answers the result of the last cache read; by the standard always 0.
std::int32_t mp3ReadV2Tags(audioTags* record, std::uint64_t* position, rcCacheRec* cache,
                           const ReadOptions& options = {}) noexcept;

/// The same for one of several tags: where they overlap, their frames are read as far as the budget allows.
std::int32_t mp3ReadV2TagsWithin(ReadBudget* budget, audioTags* record, std::uint64_t* position,
                                 rcCacheRec* cache, const ReadOptions& options) noexcept;

/// Splits a track text such as "3/12" into number and count, in 16 bits each; 0 for what is missing.
void mp3DecodeTrackInfo(const SvxStringRef& text, std::uint16_t* track, std::uint16_t* amount) noexcept;

} // namespace sonarin
