// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"
#include "text/SvxString.h"

/// The addresses on the web that the program opens.
namespace sonarin {

inline constexpr const char* homeUrl = "https://sonarin.org/";
inline constexpr const char* donationUrl = "https://sonarin.org/donate";

/// The page on which the message "Listening to: artist - title" can be posted; both values are
/// percent-escaped, so that the address is ASCII.
[[nodiscard]] SvxStringRef twitterUrl(const audioTags& record) noexcept;

} // namespace sonarin
