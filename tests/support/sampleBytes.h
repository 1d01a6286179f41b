// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// The bytes of small audio files, put together by hand. For tests and benchmarks.
namespace sonarin::sample {

/// A string literal with all its bytes, zero bytes too.
template <std::size_t Size>
std::string bytes(const char (&literal)[Size]) { // NOLINT(*-avoid-c-arrays)
    return {literal, Size - 1};
}

/// `value` as that many bytes, most significant first.
std::string bigEndian(std::uint64_t value, std::size_t size = 4);

/// `text`, which is ASCII, as UTF-16 code units, least significant byte first.
std::string utf16(const std::string& text);

/// `text` and blanks or zero bytes up to that size.
std::string padded(std::string text, std::size_t size, char padding = '\0');

/// One frame of an ID3v2.3 or ID3v2.4 tag (a four-character id) or of an ID3v2.2 tag (three characters);
/// `data` includes the encoding byte.
std::string id3Frame(const std::string& id, const std::string& data);

/// An ID3v2 tag of frames and padding.
std::string id3Tag(const std::string& frames, std::size_t padding = 16, char majorVersion = 3,
                   char flags = 0);

/// `size` bytes that begin with an MPEG frame header; by default MPEG-1 Layer III, 128 kbit/s, 44100 Hz,
/// stereo.
std::string mpegAudio(std::size_t size, std::uint32_t header = 0xFFFB9000);

} // namespace sonarin::sample
