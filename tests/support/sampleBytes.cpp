// SPDX-License-Identifier: MIT
#include "tests/support/sampleBytes.h"

#include <algorithm>

namespace sonarin::sample {

std::string bigEndian(std::uint64_t value, std::size_t size) {
    std::string result(size, '\0');
    for (std::size_t i = size; i-- > 0; value >>= 8U) {
        result[i] = static_cast<char>(value & 0xFFU);
    }
    return result;
}

std::string utf16(const std::string& text) {
    std::string units;
    for (const char character : text) {
        units += {character, '\0'};
    }
    return units;
}

std::string padded(std::string text, std::size_t size, char padding) {
    text.resize(size, padding);
    return text;
}

std::string id3Frame(const std::string& id, const std::string& data) {
    return id.size() == 3 ? id + bigEndian(data.size(), 3) + data
                          : id + bigEndian(data.size()) + std::string(2, '\0') + data;
}

std::string textFrame(const std::string& id, const std::string& text) {
    return id3Frame(id, '\0' + text);
}

std::string id3Tag(const std::string& frames, std::size_t padding, char majorVersion, char flags) {
    const std::size_t size = frames.size() + padding;
    std::string tag = std::string("ID3") + majorVersion + '\0' + flags;
    for (const unsigned shift : {21U, 14U, 7U, 0U}) {
        tag += static_cast<char>((size >> shift) & 0x7FU);
    }
    return tag + frames + std::string(padding, '\0');
}

std::string mpegAudio(std::size_t size, std::uint32_t header) {
    return padded(bigEndian(header), size);
}

std::string littleEndian(std::uint64_t value, std::size_t size) {
    std::string result = bigEndian(value, size);
    std::reverse(result.begin(), result.end());
    return result;
}

std::string atom(const std::string& type, const std::string& data) {
    return bigEndian(data.size() + 8) + type + data;
}

std::string longAtom(const std::string& type, const std::string& data) {
    return bigEndian(1) + type + bigEndian(data.size() + 16, 8) + data;
}

std::string item(const std::string& type, const std::string& value) {
    return atom(type, atom("data", std::string(8, '\0') + value));
}

std::string fileTypeAtom() {
    return atom("ftyp", padded("M4A ", 16));
}

std::string movieAtom(const std::string& items, std::uint32_t timeScale, std::uint32_t duration) {
    const std::string header =
        padded(std::string(12, '\0') + bigEndian(timeScale) + bigEndian(duration), 100);
    const std::string list = atom("meta", std::string(4, '\0') + atom("ilst", items));
    return atom("moov", atom("mvhd", header) + atom("udta", list));
}

std::string riffChunk(const std::string& id, const std::string& data) {
    return id + littleEndian(data.size()) + data;
}

std::string iffChunk(const std::string& id, const std::string& data) {
    return id + bigEndian(data.size()) + data;
}

std::string formatChunk(const WaveFields& fields) {
    return riffChunk("fmt ", littleEndian(fields.tag, 2) + littleEndian(fields.channels, 2) +
                                 littleEndian(fields.rate) + littleEndian(fields.bytesPerSecond) +
                                 littleEndian(4, 2) + littleEndian(fields.bits, 2));
}

std::string riffForm(const std::string& chunks, std::uint32_t formSize) {
    return "RIFF" + littleEndian(formSize) + "WAVE" + chunks;
}

std::string commonChunk(std::uint16_t channels, std::uint32_t frames, std::uint16_t bits,
                        const std::string& rate, const std::string& end) {
    return iffChunk("COMM", bigEndian(channels, 2) + bigEndian(frames) + bigEndian(bits, 2) + rate + end);
}

std::string iffForm(const std::string& type, const std::string& chunks, std::uint32_t formSize) {
    return "FORM" + bigEndian(formSize) + type + chunks;
}

} // namespace sonarin::sample
