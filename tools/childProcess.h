// SPDX-License-Identifier: MIT
#pragma once

#include "platform/host/fileDescriptor.h"

#include <array>
#include <csignal>
#include <optional>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace sonarin {

/// Another program, which ends with its owner. Not the toolkit's own, which ThreadSanitizer does not bear.
class ChildProcess {
public:
    /// Starts what a shell takes the command for.
    explicit ChildProcess(const std::string& command) {
        std::array<int, 2> ends{-1, -1};
        (void)socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data());
        talk_ = FileDescriptor(ends[0]);
        const FileDescriptor other(ends[1]);
        posix_spawn_file_actions_t actions{};
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, other.get(), STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions, other.get(), STDOUT_FILENO);
        std::array<std::string, 3> words = {"sh", "-c", "exec " + command};
        const std::array<char*, 4> arguments = {words[0].data(), words[1].data(), words[2].data(), nullptr};
        (void)posix_spawn(&process_, "/bin/sh", &actions, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
    }
    ~ChildProcess() {
        signal(SIGKILL);
        exitCode();
    }

    void write(const std::string& text) const {
        (void)send(talk_.get(), text.data(), text.size(), MSG_NOSIGNAL);
    }
    /// What it has written since the last time; waits for the first of it, up to ten seconds.
    [[nodiscard]] std::string read() const {
        pollfd ready = {talk_.get(), POLLIN, 0};
        std::array<char, 4096> text{};
        const ssize_t got = poll(&ready, 1, 10000) == 1 ? ::read(talk_.get(), text.data(), text.size()) : 0;
        return {text.data(), static_cast<std::size_t>(got > 0 ? got : 0)};
    }
    /// Does nothing when it has ended.
    void signal(int number) const {
        if (process_ > 0) { // else everybody would get it
            kill(process_, number);
        }
    }
    /// As a shell has it, once the program has ended; nothing when it goes on for that time.
    std::optional<int> exitCode(int milliseconds = 10000) {
        for (; process_ > 0 && waitpid(process_, &status_, WNOHANG) != process_; usleep(1000)) {
            if (milliseconds-- <= 0) {
                return std::nullopt;
            }
        }
        process_ = -1;
        return WIFEXITED(status_) ? WEXITSTATUS(status_) : 128 + WTERMSIG(status_);
    }

private:
    pid_t process_ = -1;
    int status_ = -1;
    FileDescriptor talk_; ///< its input and output
};

} // namespace sonarin
