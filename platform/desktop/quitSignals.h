// SPDX-License-Identifier: MIT
#pragma once

namespace sonarin {

/// Calls `quit` from the event loop when the session ends, or somebody else asks the program to end (SIGTERM,
/// SIGHUP, SIGINT), instead of dying on the spot.
void onQuitSignals(void (*quit)());

} // namespace sonarin
