// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace sonarin {

/// Whether the D-Bus daemon at the address takes a new member. For any thread: waits as long as the daemon
/// does.
[[nodiscard]] bool doesBusAnswer(const std::string& address);

} // namespace sonarin
