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

/// A frame with a text in ISO-8859-1.
std::string textFrame(const std::string& id, const std::string& text);

/// An ID3v2 tag of frames and padding.
std::string id3Tag(const std::string& frames, std::size_t padding = 16, char majorVersion = 3,
                   char flags = 0);

/// `size` bytes that begin with an MPEG frame header; by default MPEG-1 Layer III, 128 kbit/s, 44100 Hz,
/// stereo.
std::string mpegAudio(std::size_t size, std::uint32_t header = 0xFFFB9000);

/// `value` as that many bytes, least significant first.
std::string littleEndian(std::uint64_t value, std::size_t size = 4);

/// An atom of MPEG-4 files (its size includes the header), and one whose size is given in 64 bits.
std::string atom(const std::string& type, const std::string& data);
std::string longAtom(const std::string& type, const std::string& data);

/// An item of the item list with one value.
std::string item(const std::string& type, const std::string& value);

/// The first atom of an MPEG-4 file, 24 bytes long, and a "moov" atom with that item list.
std::string fileTypeAtom();
std::string movieAtom(const std::string& items, std::uint32_t timeScale = 44100,
                      std::uint32_t duration = 13230000);

/// The chunks of RIFF and of IFF files.
std::string riffChunk(const std::string& id, const std::string& data);
std::string iffChunk(const std::string& id, const std::string& data);

/// The fields of a "fmt " chunk's first sixteen bytes.
struct WaveFields {
    std::uint16_t tag = 1;
    std::uint16_t channels = 2;
    std::uint32_t rate = 44100;
    std::uint32_t bytesPerSecond = 176400;
    std::uint16_t bits = 16;
};
std::string formatChunk(const WaveFields& fields);
std::string riffForm(const std::string& chunks, std::uint32_t formSize);

/// A "COMM" chunk; `rate` is an extended number of ten bytes, `end` what follows it.
std::string commonChunk(std::uint16_t channels, std::uint32_t frames, std::uint16_t bits,
                        const std::string& rate, const std::string& end = std::string(4, '\0'));
std::string iffForm(const std::string& type, const std::string& chunks, std::uint32_t formSize = 0);

} // namespace sonarin::sample
