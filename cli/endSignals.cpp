// SPDX-License-Identifier: MIT
#include "cli/endSignals.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <initializer_list>

namespace sonarin {

namespace {

std::atomic<int> noted = 0;
static_assert(std::atomic<int>::is_always_lock_free); // or a handler could not use it

bool wasIgnoringPipes = false;

extern "C" void note(int signal) {
    noted = signal;
}

struct sigaction currentAction(int signal) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    return action;
}

bool isIgnored(int signal) {
    return currentAction(signal).sa_handler == SIG_IGN; // NOLINT(*-union-access,*-cstyle-cast)
}

void setAction(int signal, void (*handler)(int), int flags) {
    struct sigaction action {};
    action.sa_handler = handler; // NOLINT(*-union-access)
    action.sa_flags = flags;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

} // namespace

void noteEndSignals() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        if (!isIgnored(signal)) {
            setAction(signal, note, SA_RESTART | static_cast<int>(SA_RESETHAND));
        }
    }
}

int notedEndSignal() noexcept {
    return noted;
}

void holdBackWriteSignals() {
    wasIgnoringPipes = isIgnored(SIGPIPE);
    setAction(SIGPIPE, SIG_IGN, 0); // NOLINT(*-cstyle-cast)
    setAction(SIGXFSZ, SIG_IGN, 0); // NOLINT(*-cstyle-cast)
}

void endBySignal(int signal) {
    setAction(signal, SIG_DFL, 0); // NOLINT(*-cstyle-cast)
    (void)raise(signal);
    std::abort(); // such a signal does not let a program live on
}

void endByPipeSignal() {
    if (!wasIgnoringPipes) {
        endBySignal(SIGPIPE);
    }
}

} // namespace sonarin
