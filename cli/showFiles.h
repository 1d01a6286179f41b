// SPDX-License-Identifier: MIT
#pragma once

#include "cli/commandLine.h"

namespace sonarin {

/// Prints the facts of the call's files, each as soon as it and all before it have been read; several are
/// read at once where that was asked for, or where they are many. Complaints go to standard error. Answers
/// the program's exit status.
[[nodiscard]] int showFiles(const CommandLine& call);

} // namespace sonarin
