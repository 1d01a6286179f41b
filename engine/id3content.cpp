// SPDX-License-Identifier: MIT
#include "engine/id3content.h"

#include "engine/fileEngine.h"
#include "engine/fileText.h"

#include <algorithm>
#include <array>
#include <utility>

namespace sonarin {

namespace {

enum DeclaredEncoding : std::uint8_t { latin1 = 0, utf16 = 1, utf16BigEndian = 2, utf8 = 3 };

constexpr bool hasWideUnits(std::uint8_t encoding) {
    return encoding == utf16 || encoding == utf16BigEndian;
}

/// The place of the first zero unit in `bytes`; without one their size, or one less where half a unit is
/// left.
std::size_t terminatorIn(ByteView bytes, bool isWide) {
    if (!isWide) {
        return static_cast<std::size_t>(std::find(bytes.begin(), bytes.end(), 0) - bytes.begin());
    }
    std::size_t i = 0;
    while (i + 1 < bytes.size() && (bytes[i] != 0 || bytes[i + 1] != 0)) {
        i += 2;
    }
    return i;
}

struct Decoding {
    SvxEncoding encoding;
    std::uint32_t markSize; ///< bytes of the byte-order mark, which are no text
};

Decoding decodingOf(std::uint8_t encoding, ByteView start) {
    constexpr std::uint32_t markSize = 2;
    const std::uint32_t mark = start.size() < markSize ? 0 : bigEndian16(start);
    if (mark == 0xFFFE) {
        return {SvxEncoding::utf16LittleEndian, markSize};
    }
    if (mark == 0xFEFF) {
        return {SvxEncoding::utf16BigEndian, markSize};
    }
    return {encoding == utf16 ? SvxEncoding::utf16LittleEndian : SvxEncoding::utf16BigEndian, 0};
}

} // namespace

std::uint8_t FrameContent::takeByte() noexcept {
    std::uint8_t byte = 0;
    const FrameContent first = take(1);
    if (rcReadFromCache(cache_, first.position_, first.size_, &byte) != fileNoErr) {
        return 0;
    }
    return byte;
}

FrameContent FrameContent::take(std::uint32_t count) noexcept {
    const std::uint32_t taken = std::min(count, size_);
    const FrameContent first(cache_, position_, taken);
    position_ += taken;
    size_ -= taken;
    return first;
}

FrameContent FrameContent::takeString(std::uint8_t encoding) noexcept {
    const bool isWide = hasWideUnits(encoding);
    const std::uint32_t unitSize = isWide ? 2 : 1;
    for (std::uint32_t length = 0; size_ - length >= unitSize;) {
        ByteView bytes = rcBytesInCache(cache_, position_ + length, unitSize);
        if (bytes.empty()) {
            break;
        }
        bytes = bytes.first(std::min<std::size_t>(bytes.size(), size_ - length));
        const std::size_t found = terminatorIn(bytes, isWide);
        length += static_cast<std::uint32_t>(found);
        if (found + unitSize <= bytes.size()) {
            const FrameContent string = take(length);
            take(unitSize);
            return string;
        }
    }
    return take(size_);
}

SvxStringRef FrameContent::text(std::uint8_t encoding) const noexcept {
    std::array<std::uint8_t, 2> start{};
    Decoding decoding = {encoding == latin1 ? SvxEncoding::latin1 : SvxEncoding::utf8, 0};
    if (hasWideUnits(encoding)) {
        const std::uint32_t known = std::min<std::uint32_t>(start.size(), size_);
        if (rcReadFromCache(cache_, position_, known, start.data()) != fileNoErr) {
            return nullptr;
        }
        decoding = decodingOf(encoding, ByteView(start).first(known));
    } else if (encoding != latin1 && encoding != utf8) {
        return nullptr;
    }
    FileBytes bytes(cache_, position_ + decoding.markSize, size_ - decoding.markSize);
    return SvxStringFromSource(decoding.encoding, bytes);
}

} // namespace sonarin
