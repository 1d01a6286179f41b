// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace sonarin {

/// The version of the library of Unicode's rules that runs, such as "72.1".
[[nodiscard]] std::string unicodeVersion();

} // namespace sonarin
