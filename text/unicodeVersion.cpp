// SPDX-License-Identifier: MIT
#include "text/unicodeVersion.h"

#include <unicode/uversion.h>

#include <array>

namespace sonarin {

std::string unicodeVersion() {
    UVersionInfo version = {}; // NOLINT(*-avoid-c-arrays): the library's own type
    std::array<char, U_MAX_VERSION_STRING_LENGTH> text{};
    u_getVersion(version);
    u_versionToString(version, text.data());
    return text.data();
}

} // namespace sonarin
