// SPDX-License-Identifier: MIT
// No header of Qt here: its keywords and GLib's names do not go together.
#include "tests/window/gioConnection.h"

#include <gio/gio.h>
#include <memory>

namespace sonarin {

std::function<bool()> keepGioConnection() {
    const std::shared_ptr<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr),
                                               g_object_unref);
    return [bus] { return g_dbus_connection_is_closed(bus.get()) != 0; };
}

} // namespace sonarin
