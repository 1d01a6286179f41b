// SPDX-License-Identifier: MIT
#pragma once

#include "text/SvxString.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// The encoding forms of Unicode, one character at a time: ICU's macros behind functions, since they convert
/// between signed and unsigned in ways that the compilers rightly complain about.
namespace sonarin {

using CodePoint = std::int32_t;

/// What decodeUtf8 answers for bytes that are not UTF-8.
inline constexpr CodePoint malformed = -1;

constexpr bool isLeadSurrogate(CodePoint unit) {
    return (unit & ~0x3FF) == 0xD800;
}
constexpr bool isTrailSurrogate(CodePoint unit) {
    return (unit & ~0x3FF) == 0xDC00;
}
constexpr bool isSurrogate(CodePoint unit) {
    return (unit & ~0x7FF) == 0xD800;
}
constexpr CodePoint combineSurrogates(CodePoint lead, CodePoint trail) {
    return 0x10000 + ((lead - 0xD800) << 10) + (trail - 0xDC00);
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wold-style-cast"

/// The character at `*position`, which moves behind it (behind one ill-formed sequence when malformed).
inline CodePoint decodeUtf8(std::string_view bytes, std::size_t* position) {
    CodePoint character = 0;
    U8_NEXT(bytes.data(), *position, bytes.size(), character);
    return character;
}

// NOLINTBEGIN(readability-function-cognitive-complexity): the macros are written so
/// The bytes without a sequence at the end that more bytes could complete. At most 2 GiB.
inline std::string_view completeUtf8(std::string_view bytes) {
    const char* start = bytes.data();
    auto length = static_cast<std::int32_t>(bytes.size());
    U8_TRUNCATE_IF_INCOMPLETE(start, 0, length);
    return bytes.substr(0, static_cast<std::size_t>(length));
}

// NOLINTEND(readability-function-cognitive-complexity)

/// Writes one to four bytes, answering the place behind them. `character` must be a code point and no
/// surrogate.
inline char* encodeUtf8(CodePoint character, char* out) {
    std::size_t size = 0;
    U8_APPEND_UNSAFE(out, size, character);
    return out + size;
}

/// The character at `*position`, which moves behind it; a lone surrogate comes as it stands.
inline CodePoint decodeUtf16(std::u16string_view units, std::size_t* position) {
    CodePoint character = 0;
    U16_NEXT(units.data(), *position, units.size(), character);
    return character;
}

/// Writes one or two units, answering the place behind them.
inline char16_t* encodeUtf16(CodePoint character, char16_t* out) {
    std::size_t size = 0;
    U16_APPEND_UNSAFE(out, size, character);
    return out + size;
}

#pragma GCC diagnostic pop

struct Utf8Character {
    std::array<char, U8_MAX_LENGTH> bytes{};
    std::size_t size = 0;

    [[nodiscard]] std::string_view view() const { return {bytes.data(), size}; }
};

inline Utf8Character encodeUtf8(CodePoint character) {
    Utf8Character encoded;
    encoded.size =
        static_cast<std::size_t>(encodeUtf8(character, encoded.bytes.data()) - encoded.bytes.data());
    return encoded;
}

/// The same for the narrow storage of a text, in which every element is a character.
inline CodePoint decodeUtf16(std::string_view narrow, std::size_t* position) {
    return unitOf(narrow[(*position)++]);
}

/// Calls `onCharacter` for each character of a text's stored elements, lone surrogates as they stand, until
/// it answers false.
template <class Units, class OnCharacter>
void forEachCharacter(Units units, OnCharacter onCharacter) {
    for (std::size_t i = 0; i < units.size();) {
        if (!onCharacter(decodeUtf16(units, &i))) {
            return;
        }
    }
}

} // namespace sonarin
