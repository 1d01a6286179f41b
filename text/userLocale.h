// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// The user's locale as POSIX keeps it, in environment variables. No locale needs to be generated on the
/// machine: ICU knows them all.
namespace sonarin {

/// The locale that numbers are written in, as an ICU name such as "de_DE": the first of LC_ALL, LC_NUMERIC
/// and LANG that is set and not empty. Without one, and for "C" and "POSIX", it is "en_US".
[[nodiscard]] std::string userNumberLocale();

/// The language of the user's messages, such as "de": as above, with LC_MESSAGES for LC_NUMERIC. "en" without
/// one.
[[nodiscard]] std::string userLanguage();

} // namespace sonarin
