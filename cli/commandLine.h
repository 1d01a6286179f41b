// SPDX-License-Identifier: MIT
#pragma once

#include "engine/readOptions.h"

#include <optional>
#include <string>
#include <vector>

namespace sonarin {

struct CommandLine {
    enum class Action { showText, showJson, writeCover, help, version };

    Action action = Action::showText;
    std::string coverTarget; ///< for writeCover
    bool force = false;
    std::vector<std::string> files;      ///< paths as bytes
    std::optional<std::string> nameList; ///< the file that lists them instead, "-" for standard input
    bool recursive = false;              ///< take the files in folders
    bool byStandard = false;             ///< read tags by their standards
    unsigned jobs = 0;                   ///< files read at once; 0 for as many as there is reason to
};

/// How the call wants files to be read.
[[nodiscard]] ReadOptions readOptions(const CommandLine& call, Pictures pictures) noexcept;

/// The options and files of a call; nothing for wrong usage, in which case `*problem` says what is wrong.
[[nodiscard]] std::optional<CommandLine> parseCommandLine(int argc, char** argv, std::string* problem);

/// What --help prints.
[[nodiscard]] const char* usageText() noexcept;

} // namespace sonarin
