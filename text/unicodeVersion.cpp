// SPDX-License-Identifier: MIT
#include "text/unicodeVersion.h"

#include <unicode/uversion.h>

#include <array>
#include <cstdint>

namespace sonarin {

std::string unicodeVersion() {
    std::array<std::uint8_t, U_MAX_VERSION_LENGTH> version{};
    std::array<char, U_MAX_VERSION_STRING_LENGTH> text{};
    u_getVersion(version.data());
    u_versionToString(version.data(), text.data());
    return text.data();
}

} // namespace sonarin
