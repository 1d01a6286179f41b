// SPDX-License-Identifier: MIT
// No header of Qt here: its keywords and GLib's names do not go together.
#include "platform/desktop/busProbe.h"

#include <gio/gio.h>

namespace sonarin {

bool doesBusAnswer(const std::string& address) {
    constexpr auto asMember = static_cast<GDBusConnectionFlags>(
        G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    GDBusConnection* connection =
        g_dbus_connection_new_for_address_sync(address.c_str(), asMember, nullptr, nullptr, nullptr);
    if (connection == nullptr) {
        return false;
    }
    g_dbus_connection_close_sync(connection, nullptr, nullptr);
    g_object_unref(connection);
    return true;
}

} // namespace sonarin
