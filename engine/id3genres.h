// SPDX-License-Identifier: MIT
#pragma once

#include "text/SvxString.h"

#include <cstdint>

namespace sonarin {

/// The genre table's entry `number` (1 to 126: ID3v1 code + 1); absent for any other number.
[[nodiscard]] SvxStringRef mp3LoadGenreString(std::int32_t number) noexcept;

/// The name of an ID3v1 genre code, in the user's language: the codes of ID3v1 and all that were added since,
/// 0 to 191. Absent for any other number.
[[nodiscard]] SvxStringRef id3GenreName(std::int32_t code) noexcept;

/// The genres that a content type frame names, joined with " / ". A value (they stand between U+0000) is a
/// name, a number, "RX" or "CR" (ID3v2.4), or such references in parentheses with a name behind them
/// (ID3v2.3); what is no known reference stays as it is. Of more than a hundred genres the first are taken.
/// Absent when there is none.
[[nodiscard]] SvxStringRef id3GenreNames(const SvxStringRef& content) noexcept;

} // namespace sonarin
