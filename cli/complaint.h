// SPDX-License-Identifier: MIT
#pragma once

#include "text/SvxString.h"

#include <string>
#include <string_view>

namespace sonarin {

enum ExitStatus : int { exitAllRead = 0, exitNotRead = 1, exitUsage = 2 };

/// "sonarin-info: <path>: <message>" as one line that is safe for a terminal. A very long path is cut.
[[nodiscard]] std::string complaintAbout(const SvxStringRef& path, std::string_view message);
[[nodiscard]] std::string complaintOf(std::string_view message);

/// Prints it on standard error.
void complain(std::string_view complaint);

} // namespace sonarin
