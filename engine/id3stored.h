// SPDX-License-Identifier: MIT
#pragma once

#include "engine/byteBlock.h"

#include <cstddef>

/// The forms in which ID3v2 tags store bytes: unsynchronised (ID3v2.4, section 6.1) and compressed with zlib
/// (RFC 1950).
namespace sonarin {

/// Takes the zero bytes out that keep players from taking the bytes for sound. Bytes that hold what this
/// prevents were never given them, whatever a tag says, and stay as they are.
void id3Resynchronise(ByteBlock* bytes) noexcept;

/// What a frame says about its own compression is believed up to this size, and up to so many times its
/// stored bytes, which is about as far as zlib can go.
inline constexpr std::size_t id3MostInflated = std::size_t{64} << 20U;
inline constexpr std::size_t id3MostInflation = 1000;

[[nodiscard]] constexpr bool id3MayInflate(std::size_t storedSize, std::size_t size) noexcept {
    return size <= id3MostInflated && size <= id3MostInflation * storedSize;
}

/// All frames of one tag together become at most so large: many small ones would take long.
inline constexpr std::size_t id3MostInflatedInTag = 4 * id3MostInflated;

/// The bytes that were compressed, at most `size` of them. Empty when there are more, or those stored are no
/// whole zlib stream, or `*budget` is smaller than `size`, or memory runs out. What comes out of the stream,
/// to whatever end, is taken from `*budget`.
[[nodiscard]] ByteBlock id3Inflate(ByteView stored, std::size_t size, std::size_t* budget) noexcept;

} // namespace sonarin
