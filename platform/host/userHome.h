// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace sonarin {

/// The user's home folder (bytes): HOME where that is an absolute path, else what the user database says;
/// empty when neither knows.
[[nodiscard]] std::string userHome();

} // namespace sonarin
