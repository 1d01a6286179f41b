// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"
#include "engine/readCache.h"

#include <cstdint>

/// MPEG audio files (ISO/IEC 11172-3, ISO/IEC 13818-3 and the MPEG-2.5 extension, Layers II and III) with
/// ID3v1 and ID3v2 tags. The tag readers serve other formats that carry ID3 tags as well.
namespace sonarin {

/// Reads the file into a cleared record. 1 when a frame header was found; 0 when the file cannot be read or
/// holds none, in which case tags read before that stay in the record.
[[nodiscard]] std::uint8_t mp3GetFileInfo(const SvxStringRef& path, audioTags* record,
                                          const ReadOptions& options = {}) noexcept;

/// Reads the ID3v2 tag at `*position`, whose "ID3" the caller has seen, and moves `*position` to the tag's
/// end. Answers the result of the last cache read; by the standard always 0.
std::int32_t mp3ReadV2Tags(audioTags* record, std::uint64_t* position, rcCacheRec* cache,
                           const ReadOptions& options = {}) noexcept;

/// Fills the record from the ID3v1 block in the last 128 bytes of the file, if there is one. By the standard
/// its texts are ISO-8859-1 and end before the first zero byte, and only what is still missing is taken from
/// it, whatever else an ID3v2 tag gave.
void mp3ReadV1Tag(audioTags* record, rcCacheRec* cache, std::uint64_t fileSize,
                  TagReading reading = TagReading::usual) noexcept;

/// Splits a track text such as "3/12" into number and count, in 16 bits each; 0 for what is missing.
void mp3DecodeTrackInfo(const SvxStringRef& text, std::uint16_t* track, std::uint16_t* amount) noexcept;

/// The genre table's entry `number` (1 to 126: ID3v1 code + 1); absent for any other number.
[[nodiscard]] SvxStringRef mp3LoadGenreString(std::int32_t number) noexcept;

/// Decodes the text of one frame: the `count` bytes at `offset`, which for an ID3v2 frame are those behind
/// its encoding byte and one more. The text is stored in `*field` or joined to the text there after a blank;
/// when there is none, `*field` stays as it was.
void mp3ReadSvxStringFromFile(rcCacheRec* cache, std::uint64_t offset, std::uint32_t count,
                              SvxStringRef* field) noexcept;

/// Finds the picture of one frame, whose `count` bytes at `offset` are as above, and stores it in the record:
/// its type and place, and its bytes when they are to be loaded. 0 when one was stored, -1 for fewer than 100
/// bytes, -2 when the bytes cannot be read or hold no start of a picture; the record is then unchanged.
std::int32_t mp3ReadCoverArt(audioTags* record, std::uint64_t offset, std::uint32_t count, rcCacheRec* cache,
                             Pictures pictures = Pictures::load) noexcept;

} // namespace sonarin
