// SPDX-License-Identifier: MIT
#pragma once

#include "text/textDecoding.h"
#include "text/unicodeForms.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

/// The way of a text out into UTF-8.
namespace sonarin {

/// Calls `write` with the UTF-8 form of a text's stored elements, one character or one run of ASCII at a
/// time. A lone surrogate has none: `substitute` answers what stands for it, or nothing, which ends the form
/// there. False when it ended so.
template <class Units, class Write, class Substitute>
bool writeUtf8(Units units, Write write, Substitute substitute) {
    for (std::size_t i = 0; i < units.size();) {
        if constexpr (sizeof(units[0]) == 1) {
            if (const std::string_view ascii = units.substr(i, asciiRun(units.substr(i))); !ascii.empty()) {
                write(ascii);
                i += ascii.size();
                continue;
            }
        }
        const CodePoint character = decodeUtf16(units, &i);
        const std::optional<Utf8Character> bytes =
            isSurrogate(character) ? substitute(character) : std::optional(encodeUtf8(character));
        if (!bytes) {
            return false;
        }
        write(bytes->view());
    }
    return true;
}

/// The stored elements before the first U+0000, for who takes it for the end.
template <class Units>
Units beforeZero(Units units) {
    return units.substr(0, units.find(typename Units::value_type{}));
}

/// For texts that must come out as they are or not at all.
inline std::optional<Utf8Character> noSubstitute(CodePoint /*surrogate*/) {
    return std::nullopt;
}

/// For texts that are to be read.
inline std::optional<Utf8Character> replacementCharacter(CodePoint /*surrogate*/) {
    return encodeUtf8(0xFFFD);
}

/// The size of a UTF-8 form where 32 bits tell it: 0 as for a text that has none when they cannot.
constexpr std::uint32_t utf8SizeIn32Bits(std::size_t size) {
    return size <= std::numeric_limits<std::uint32_t>::max() ? static_cast<std::uint32_t>(size) : 0;
}

} // namespace sonarin
