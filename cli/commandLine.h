// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace sonarin {

struct CommandLine {
    enum class Action { showText, showJson, writeCover, help, version };

    Action action = Action::showText;
    std::string coverTarget; ///< for writeCover
    bool force = false;
    std::vector<std::string> files; ///< paths as bytes
};

/// The options and files of a call; nothing for wrong usage, in which case `*problem` says what is wrong.
[[nodiscard]] std::optional<CommandLine> parseCommandLine(int argc, char** argv, std::string* problem);

/// What --help prints.
[[nodiscard]] const char* usageText() noexcept;

} // namespace sonarin
