// SPDX-License-Identifier: MIT
#include "engine/fileEngine.h"

#include "text/stringEngine.h"
#include "text/utf8Form.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <optional>
#include <utility>

namespace sonarin {

namespace {

constexpr char16_t escapedByteBase = 0xDC00;

std::u16string decodePath(std::string_view bytes) {
    std::u16string units(bytes.size(), u'\0');
    char16_t* out = units.data();
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t start = i;
        const CodePoint character = decodeUtf8(bytes, &i);
        if (character == malformed) {
            i = start + 1;
            *out++ = static_cast<char16_t>(escapedByteBase + unitOf(bytes[start]));
        } else {
            out = encodeUtf16(character, out);
        }
    }
    units.resize(static_cast<std::size_t>(out - units.data()));
    return units;
}

/// The byte that a lone surrogate in a path stands for; nothing when it stands for none.
std::optional<Utf8Character> escapedByte(CodePoint surrogate) {
    if (surrogate < escapedByteBase + 0x80 || surrogate > escapedByteBase + 0xFF) {
        return std::nullopt;
    }
    return Utf8Character{{static_cast<char>(surrogate - escapedByteBase)}, 1};
}

/// The bytes of a path up to the first U+0000, or none when a lone surrogate in it stands for no byte.
std::string encodePath(const SvxString& text) {
    std::string bytes;
    const bool isWhole = text.visit([&bytes](auto units) {
        return writeUtf8(
            beforeZero(units), [&bytes](std::string_view utf8) { bytes += utf8; }, escapedByte);
    });
    return isWhole ? bytes : std::string();
}

} // namespace

SvxStringRef feMakePathText(std::string_view bytes) noexcept {
    try {
        const bool isAscii = asciiRun(bytes) == bytes.size();
        return isAscii ? SvxStringFromUTF8(bytes) : SvxStringFromUTF16(decodePath(bytes));
    } catch (const std::exception&) {
        return nullptr;
    }
}

SvxStringRef feLastPathComponent(const SvxStringRef& path) noexcept {
    if (!path) {
        return nullptr;
    }
    const auto [start, length] = path->visit([](auto units) {
        using Units = decltype(units);
        const typename Units::value_type slash = '/';
        const std::size_t last = units.find_last_not_of(slash);
        if (last == Units::npos) {
            return std::pair<std::size_t, std::size_t>(
                0, std::min<std::size_t>(units.size(), 1)); // the root, or ""
        }
        const std::size_t before = units.find_last_of(slash, last);
        const std::size_t first = before == Units::npos ? 0 : before + 1;
        return std::pair<std::size_t, std::size_t>(first, last + 1 - first);
    });
    return SvxStringCreateWithSubstring(path, static_cast<SvxIndex>(start), static_cast<SvxIndex>(length));
}

std::int32_t feMakeFSRefFromPath(const SvxStringRef& path, FSRef* ref) noexcept {
    if (!path) {
        return feHostError(ENOENT);
    }
    try {
        ref->path = encodePath(*path);
    } catch (const std::exception&) {
        return fileMemFullErr;
    }
    return ref->path.empty() ? feHostError(ENOENT) : fileNoErr;
}

} // namespace sonarin
