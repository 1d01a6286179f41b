// SPDX-License-Identifier: MIT
#include "platform/desktop/sessionBus.h"

#include <chrono>

namespace sonarin {

SessionBus::SessionBus(QObject* parent) : QObject(parent), connection_(QString()) {
    connectAnew();
    retry_.callOnTimeout(this, &SessionBus::watch);
    retry_.start(std::chrono::seconds(2));
}

SessionBus::~SessionBus() {
    QDBusConnection::disconnectFromBus(connection_.name());
}

void SessionBus::connectAnew() {
    QDBusConnection::disconnectFromBus(connection_.name());
    connection_ = QDBusConnection::connectToBus(
        QDBusConnection::SessionBus, QStringLiteral("sonarin-%1-%2").arg(quintptr(this)).arg(++opened_));
    wasConnected_ = isConnected();
}

void SessionBus::watch() {
    if (isConnected()) {
        return;
    }
    const bool wasConnected = wasConnected_;
    connectAnew();
    if (isConnected()) {
        emit reconnected();
    } else if (wasConnected) {
        emit lost();
    }
}

} // namespace sonarin
