// SPDX-License-Identifier: MIT
#include "tests/support/childProcess.h"

#include <array>
#include <csignal>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace sonarin {

ChildProcess::ChildProcess(const std::string& command) {
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

ChildProcess::~ChildProcess() {
    signal(SIGKILL);
    exitCode();
}

void ChildProcess::write(const std::string& text) const {
    (void)send(talk_.get(), text.data(), text.size(), MSG_NOSIGNAL);
}

std::string ChildProcess::read() const {
    pollfd ready = {talk_.get(), POLLIN, 0};
    std::array<char, 4096> text{};
    const ssize_t got = poll(&ready, 1, 10000) == 1 ? ::read(talk_.get(), text.data(), text.size()) : 0;
    return {text.data(), static_cast<std::size_t>(std::max<ssize_t>(got, 0))};
}

void ChildProcess::signal(int number) const {
    if (process_ > 0) { // else everybody would get it
        kill(process_, number);
    }
}

std::optional<int> ChildProcess::exitCode(int milliseconds) {
    for (; process_ > 0; --milliseconds) {
        if (waitpid(process_, &status_, WNOHANG) == process_) {
            process_ = -1;
        } else if (milliseconds <= 0) {
            return std::nullopt;
        } else {
            usleep(1000);
        }
    }
    return WIFEXITED(status_) ? WEXITSTATUS(status_) : 128 + WTERMSIG(status_);
}

} // namespace sonarin
