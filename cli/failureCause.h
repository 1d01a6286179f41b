// SPDX-License-Identifier: MIT
#pragma once

#include "app/shownFile.h"

#include <string>

namespace sonarin {

/// Why the file could not be read, as far as that can be told afterwards; one line in English without a full
/// stop.
[[nodiscard]] std::string failureCause(const ShownFile& file);

} // namespace sonarin
