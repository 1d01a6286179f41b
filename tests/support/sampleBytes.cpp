// SPDX-License-Identifier: MIT
#include "tests/support/sampleBytes.h"

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

} // namespace sonarin::sample
