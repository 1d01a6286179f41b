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

/// At the moment when a connection would raise the signal, since nobody tells when another library opens one.
void outliveTheBus() {
    g_type_class_ref(G_TYPE_DBUS_CONNECTION); // whose signal is not there before
    const auto stay = [](GSignalInvocationHint* /*hint*/, guint /*count*/, const GValue* values,
                         gpointer /*data*/) -> gboolean {
        g_dbus_connection_set_exit_on_close(G_DBUS_CONNECTION(g_value_get_object(values)), FALSE);
        return TRUE;
    };
    static const gulong hook = g_signal_add_emission_hook(g_signal_lookup("closed", G_TYPE_DBUS_CONNECTION),
                                                          0, stay, nullptr, nullptr);
    (void)hook;
}

} // namespace sonarin
