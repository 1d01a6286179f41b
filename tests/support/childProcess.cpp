// SPDX-License-Identifier: MIT
#include "tests/support/childProcess.h"

#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace sonarin {

ChildProcess::ChildProcess(const std::vector<std::string>& command, Errors errors) {
    std::array<int, 2> ends{-1, -1};
    (void)socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data());
    talk_ = FileDescriptor(ends[0]);
    const FileDescriptor other(ends[1]);
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, other.get(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, other.get(), STDOUT_FILENO);
    if (errors == Errors::asOutput) {
        posix_spawn_file_actions_adddup2(&actions, other.get(), STDERR_FILENO);
    } else if (errors == Errors::hidden) {
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    }
    std::vector<char*> arguments;
    for (const std::string& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str())); // NOLINT(*-const-cast): nobody writes there
    }
    arguments.push_back(nullptr);
    const int result = posix_spawnp(&process_, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (result != 0) {
        throw std::runtime_error(command.front() + " does not start");
    }
}

ChildProcess::~ChildProcess() {
    signal(SIGKILL);
    hasEnded(10000);
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

bool ChildProcess::hasEnded(int milliseconds) {
    for (; process_ > 0; --milliseconds) {
        if (waitpid(process_, &status_, WNOHANG) == process_) {
            process_ = -1;
        } else if (milliseconds <= 0) {
            return false;
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    return true;
}

int ChildProcess::exitCode() const {
    return process_ < 0 && WIFEXITED(status_) ? WEXITSTATUS(status_) : -1;
}

} // namespace sonarin
