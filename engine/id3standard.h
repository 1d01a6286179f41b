// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"
#include "engine/chunkWalk.h"
#include "engine/readCache.h"

#include <cstdint>

/// ID3 tags as their documents say: ID3v2.2 (1998), ID3v2.3.0 (1999), ID3v2.4.0 (2000, structure and native
/// frames).
namespace sonarin {

/// Fills the record from the tag at `position`, no byte of which is looked for at or behind `limit`. Answers
/// the place behind the tag and its footer, as the tag says; `position` when there is no tag.
///
/// Of several texts of one kind each is shown, of comments and lyrics the first without a descriptor, else
/// the first (what iTunes keeps there for itself is none), of pictures the first front cover, else the first.
/// Frames that are grouped or encrypted are passed over, and those that cannot be decoded.
std::uint64_t id3ReadTag(audioTags* record, std::uint64_t position, std::uint64_t limit, rcCacheRec* cache,
                         Pictures pictures) noexcept;

/// Fills the record from the tag that stands with its footer at the file's end, or before an ID3v1 block
/// there (ID3v2.4, section 5), if one does.
void id3ReadAppendedTag(audioTags* record, rcCacheRec* cache, Pictures pictures) noexcept;

/// The year with which a text begins; 0 for what is none of one to four digits.
[[nodiscard]] std::uint16_t id3Year(const SvxStringRef& text) noexcept;

/// Whether the chunk is named as one that holds a tag, and reading of that tag unless one has been read.
[[nodiscard]] bool id3IsTagChunk(const Chunk& chunk) noexcept;
void id3ReadTagChunk(audioTags* record, const Chunk& chunk, rcCacheRec* cache, Pictures pictures) noexcept;

} // namespace sonarin
