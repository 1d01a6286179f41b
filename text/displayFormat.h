// SPDX-License-Identifier: MIT
#pragma once

#include "text/SvxString.h"

#include <cstdint>

/// Numbers, sizes and durations as the panel shows them. Every function answers a new text, absent when it
/// cannot be made.
namespace sonarin {

/// Creates the shared number formatter for the user's locale: decimal style, exactly one fraction digit, half
/// to even. Called once, at start-up, after initStringBundle and before anything below; a later change of the
/// locale is not picked up.
void svxStringInitString() noexcept;

/// `value` with one fraction digit and the locale's separators: 1024.999 is 1,025.0 in English.
[[nodiscard]] SvxStringRef SvxMakeFloatingFractionString(double value) noexcept;

/// A size in bytes in units of 1024, such as "4.8 MB". The next unit is taken only when the count of whole
/// kibibytes exceeds 1024, so that 1,049,599 bytes are "1,025.0 KB".
[[nodiscard]] SvxStringRef SvxStringMakeSizeString(std::uint64_t bytes) noexcept;

/// A duration as m:ss up to and including one hour (60:00), as h:mm:ss above.
[[nodiscard]] SvxStringRef SvxStringMakeDurationString(std::uint32_t seconds) noexcept;

/// A number in decimal with at least two digits.
[[nodiscard]] SvxStringRef SvxStringMakePaddedNumberString(std::uint32_t value) noexcept;

} // namespace sonarin
