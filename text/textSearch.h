// SPDX-License-Identifier: MIT
#pragma once

#include "text/SvxString.h"

#include <optional>

/// Searching under canonical equivalence, with or without regard to letter case.
///
/// Both texts are compared as if in normalization form D (and case folded); matches are reported in units of
/// the text as stored. A match begins and ends where no character is taken apart: not inside a combining
/// sequence, nor inside one stored character that folds to several, such as 'ß'.
namespace sonarin {

/// The index of the first match at or after `start` (0 to the text's length); none for an empty needle.
[[nodiscard]] std::optional<SvxIndex> findText(const SvxString& text, const SvxString& needle, SvxIndex start,
                                               bool caseSensitive);
/// Whether a match begins at the text's first unit.
[[nodiscard]] bool matchesAtStart(const SvxString& text, const SvxString& needle, bool caseSensitive);
/// Whether a match ends behind the text's last unit.
[[nodiscard]] bool matchesAtEnd(const SvxString& text, const SvxString& needle, bool caseSensitive);

/// The ASCII unit that `unit` is equal to under canonical equivalence (and case folding, which gives lower
/// case), or `unit` itself when there is none.
[[nodiscard]] char16_t asciiCounterpart(char16_t unit, bool caseSensitive) noexcept;

} // namespace sonarin
