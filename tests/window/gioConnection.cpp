// SPDX-License-Identifier: MIT
// No header of Qt here: its keywords and GLib's names do not go together.
#include "tests/window/gioConnection.h"

#include <gio/gio.h>

namespace sonarin {

GioConnection::GioConnection() : connection_(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr)) {}

GioConnection::~GioConnection() {
    g_object_unref(connection_);
}

bool GioConnection::endsTheProgramWithTheBus() const {
    return g_dbus_connection_get_exit_on_close(G_DBUS_CONNECTION(connection_)) != 0;
}

bool GioConnection::hasClosed() const {
    return g_dbus_connection_is_closed(G_DBUS_CONNECTION(connection_)) != 0;
}

} // namespace sonarin
