// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <system_error>

namespace sonarin {

/// What the host says about an error number.
[[nodiscard]] inline std::string hostErrorText(int error) {
    return std::generic_category().message(error);
}

} // namespace sonarin
