// SPDX-License-Identifier: MIT
#pragma once

#include "platform/host/fileDescriptor.h"

#include <string>
#include <sys/types.h>
#include <vector>

namespace sonarin {

/// Another program, which ends with its owner. Not the toolkit's own, which ThreadSanitizer does not bear.
class ChildProcess {
public:
    enum class Errors { shown, hidden, asOutput };

    /// Starts the program, which is looked for as a shell does; throws when it cannot be.
    explicit ChildProcess(const std::vector<std::string>& command, Errors errors = Errors::shown);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess();

    void write(const std::string& text) const;
    /// What it has written since the last time; waits for the first of it, up to ten seconds.
    [[nodiscard]] std::string read() const;
    /// Does nothing when it has ended.
    void signal(int number) const;
    /// Whether it ends within that time.
    bool hasEnded(int milliseconds);
    /// Of a program that has ended by itself; -1 for any other.
    [[nodiscard]] int exitCode() const;

private:
    pid_t process_ = -1;
    int status_ = -1;
    FileDescriptor talk_; ///< its input and output
};

} // namespace sonarin
