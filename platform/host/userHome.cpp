// SPDX-License-Identifier: MIT
#include "platform/host/userHome.h"

#include <cstdlib>
#include <pwd.h>
#include <string_view>
#include <unistd.h>

namespace sonarin {

std::string userHome() {
    // Asked in the thread that alone changes the environment.
    const char* home = std::getenv("HOME"); // NOLINT(concurrency-mt-unsafe)
    if (home != nullptr && std::string_view(home).starts_with('/')) {
        return home;
    }
    const passwd* user = getpwuid(getuid()); // NOLINT(concurrency-mt-unsafe)
    return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : std::string();
}

} // namespace sonarin
