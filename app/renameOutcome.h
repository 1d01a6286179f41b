// SPDX-License-Identifier: MIT
#pragma once

#include "text/SvxString.h"

#include <cstdint>
#include <string>

namespace sonarin {

/// What a person is told about an attempt to give a file that name: "Renamed", or why it was refused; one
/// line in English. `result` is what feRenameFolder answered.
[[nodiscard]] std::string renameOutcome(std::int32_t result, const SvxStringRef& newName);

} // namespace sonarin
