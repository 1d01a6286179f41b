// SPDX-License-Identifier: MIT
#include "text/userLocale.h"

#include <cstdlib>
#include <string_view>

namespace sonarin {

namespace {

/// The value of the first variable that counts, without codeset and modifier ("de_AT.UTF-8@euro" gives
/// "de_AT").
std::string userLocale(const char* category) {
    for (const char* name : {"LC_ALL", category, "LANG"}) {
        // The program has one thread when it starts, which is when this is asked.
        const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
        if (value == nullptr || *value == '\0') {
            continue;
        }
        const std::string_view locale(value);
        const std::string_view nameAndTerritory = locale.substr(0, locale.find_first_of(".@"));
        if (nameAndTerritory == "C" || nameAndTerritory == "POSIX") {
            break;
        }
        return std::string(nameAndTerritory);
    }
    return "en_US";
}

} // namespace

std::string userNumberLocale() {
    return userLocale("LC_NUMERIC");
}

std::string userLanguage() {
    const std::string locale = userLocale("LC_MESSAGES");
    return locale.substr(0, locale.find('_'));
}

} // namespace sonarin
