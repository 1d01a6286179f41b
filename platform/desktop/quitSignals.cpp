// SPDX-License-Identifier: MIT
#include "platform/desktop/quitSignals.h"

#include <csignal>
#include <glib-unix.h>
#include <initializer_list>

namespace sonarin {

void onQuitSignals(void (*quit)()) {
    static void (*chosen)() = nullptr;
    chosen = quit;
    // Qt's event loop on Linux is GLib's.
    for (const int number : {SIGTERM, SIGHUP, SIGINT}) {
        g_unix_signal_add(
            number,
            [](void* /*unused*/) -> gboolean {
                chosen();
                return G_SOURCE_CONTINUE;
            },
            nullptr);
    }
}

} // namespace sonarin
