// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace sonarin {

/// Whether the D-Bus daemon at the address takes a new member. For any thread: waits as long as the daemon
/// does.
[[nodiscard]] bool doesBusAnswer(const std::string& address);

/// Starting a program brings a connection of GIO's own along, and so may a plug-in of the toolkit. It raises
/// SIGTERM when its bus goes away: from here on, none does.
void outliveTheBus();

} // namespace sonarin
