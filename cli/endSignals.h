// SPDX-License-Identifier: MIT
#pragma once

namespace sonarin {

/// Notes that the user or the system wants the program to end (SIGINT, SIGTERM, SIGHUP) instead of ending at
/// once, so that no line of output is left half written. A second SIGINT ends it all the same. What the
/// program was started to ignore stays ignored.
void noteEndSignals();

/// The signal that was noted; 0 for none.
[[nodiscard]] int notedEndSignal() noexcept;

/// Lets a write to a pipe that nobody reads fail with EPIPE, and one beyond the largest size of files with
/// EFBIG.
void holdBackWriteSignals();

/// Ends the program by that signal, as its sender expects.
[[noreturn]] void endBySignal(int signal);

/// Ends the program as a pipe without a reader ends it, unless it was started to ignore that; then it
/// returns.
void endByPipeSignal();

} // namespace sonarin
