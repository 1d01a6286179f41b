// SPDX-License-Identifier: MIT
#pragma once

#include "text/SvxString.h"

#include <cstdint>
#include <string>

namespace sonarin {

/// Why the file of that audio type (an AudioFileType) could not be read, as far as that can be told
/// afterwards; one line in English without a full stop. Looks at the disk.
[[nodiscard]] std::string failureCause(const SvxStringRef& path, std::int32_t type);

} // namespace sonarin
