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

/// `value` as that many bytes, most significant first, of which each has that many bits.
inline std::string bigEndian(std::uint64_t value, std::size_t size = 4, unsigned bits = 8) {
    std::string result(size, '\0');
    for (std::size_t i = size; i-- > 0; value >>= bits) {
        result[i] = static_cast<char>(value & ((1U << bits) - 1));
    }
    return result;
}

/// The sizes of ID3v2.
inline std::string sevenBits(std::size_t size) {
    return bigEndian(size, 4, 7);
}

/// `value` as that many bytes, least significant first.
inline std::string littleEndian(std::uint64_t value, std::size_t size = 4) {
    const std::string reverse = bigEndian(value, size);
    return {reverse.rbegin(), reverse.rend()};
}

/// `text`, which is ASCII, as UTF-16 code units, least significant byte first.
inline std::string utf16(const std::string& text) {
    std::string units;
    for (const char character : text) {
        units += {character, '\0'};
    }
    return units;
}

/// `text` and blanks or zero bytes up to that size.
inline std::string padded(std::string text, std::size_t size, char padding = '\0') {
    text.resize(size, padding);
    return text;
}

inline std::string repeated(std::size_t count, const std::string& part) {
    std::string result;
    for (; count != 0; --count) {
        result += part;
    }
    return result;
}

/// One frame of an ID3v2.3 or ID3v2.4 tag (a four-character id) or of an ID3v2.2 tag (three characters);
/// `data` includes the encoding byte.
inline std::string id3Frame(const std::string& id, const std::string& data) {
    return id.size() == 3 ? id + bigEndian(data.size(), 3) + data
                          : id + bigEndian(data.size()) + std::string(2, '\0') + data;
}

/// A frame with a text in ISO-8859-1.
inline std::string textFrame(const std::string& id, const std::string& text) {
    return id3Frame(id, '\0' + text);
}

/// An ID3v2 tag of frames and padding.
inline std::string id3Tag(const std::string& frames, std::size_t padding = 16, char majorVersion = 3,
                          char flags = 0) {
    return std::string("ID3") + majorVersion + '\0' + flags + sevenBits(frames.size() + padding) + frames +
           std::string(padding, '\0');
}

/// `size` bytes that begin with an MPEG frame header; by default MPEG-1 Layer III, 128 kbit/s, 44100 Hz,
/// stereo.
inline std::string mpegAudio(std::size_t size, std::uint32_t header = 0xFFFB9000) {
    return padded(bigEndian(header), size);
}

/// An atom of MPEG-4 files (its size includes the header), and one whose size is given in 64 bits.
inline std::string atom(const std::string& type, const std::string& data) {
    return bigEndian(data.size() + 8) + type + data;
}
inline std::string longAtom(const std::string& type, const std::string& data) {
    return bigEndian(1) + type + bigEndian(data.size() + 16, 8) + data;
}

/// An item of the item list with one value.
inline std::string item(const std::string& type, const std::string& value) {
    return atom(type, atom("data", std::string(8, '\0') + value));
}

/// The first atom of an MPEG-4 file, 24 bytes long, and a "moov" atom with that item list.
inline std::string fileTypeAtom() {
    return atom("ftyp", padded("M4A ", 16));
}
inline std::string movieAtom(const std::string& items, std::uint32_t timeScale = 44100,
                             std::uint32_t duration = 13230000) {
    const std::string header = std::string(12, '\0') + bigEndian(timeScale) + bigEndian(duration);
    const std::string list = atom("meta", std::string(4, '\0') + atom("ilst", items));
    return atom("moov", atom("mvhd", padded(header, 100)) + atom("udta", list));
}

/// The chunks of RIFF and of IFF files.
inline std::string riffChunk(const std::string& id, const std::string& data) {
    return id + littleEndian(data.size()) + data;
}
inline std::string iffChunk(const std::string& id, const std::string& data) {
    return id + bigEndian(data.size()) + data;
}

/// The fields of a "fmt " chunk's first sixteen bytes.
struct WaveFields {
    std::uint16_t tag = 1;
    std::uint16_t channels = 2;
    std::uint32_t rate = 44100;
    std::uint32_t bytesPerSecond = 176400;
    std::uint16_t bits = 16;
};
inline std::string formatChunk(const WaveFields& fields) {
    return riffChunk("fmt ", littleEndian(fields.tag, 2) + littleEndian(fields.channels, 2) +
                                 littleEndian(fields.rate) + littleEndian(fields.bytesPerSecond) +
                                 littleEndian(4, 2) + littleEndian(fields.bits, 2));
}
inline std::string riffForm(const std::string& chunks, std::uint32_t formSize) {
    return "RIFF" + littleEndian(formSize) + "WAVE" + chunks;
}

/// A "COMM" chunk; `rate` is an extended number of ten bytes, `end` what follows it.
inline std::string commonChunk(std::uint16_t channels, std::uint32_t frames, std::uint16_t bits,
                               const std::string& rate, const std::string& end = std::string(4, '\0')) {
    return iffChunk("COMM", bigEndian(channels, 2) + bigEndian(frames) + bigEndian(bits, 2) + rate + end);
}
inline std::string iffForm(const std::string& type, const std::string& chunks, std::uint32_t formSize = 0) {
    return "FORM" + bigEndian(formSize) + type + chunks;
}

} // namespace sonarin::sample
