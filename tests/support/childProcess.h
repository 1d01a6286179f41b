// SPDX-License-Identifier: MIT
#pragma once

#include "platform/host/fileDescriptor.h"

#include <optional>
#include <string>
#include <sys/types.h>

namespace sonarin {

/// Another program, which ends with its owner. Not the toolkit's own, which ThreadSanitizer does not bear.
class ChildProcess {
public:
    /// Starts what a shell takes the command for.
    explicit ChildProcess(const std::string& command);
    ~ChildProcess();

    void write(const std::string& text) const;
    /// What it has written since the last time; waits for the first of it, up to ten seconds.
    [[nodiscard]] std::string read() const;
    /// Does nothing when it has ended.
    void signal(int number) const;
    /// As a shell has it, once the program has ended; nothing when it goes on for that time.
    std::optional<int> exitCode(int milliseconds = 10000);

private:
    pid_t process_ = -1;
    int status_ = -1;
    FileDescriptor talk_; ///< its input and output
};

} // namespace sonarin
