// SPDX-License-Identifier: MIT
#include "platform/desktop/sessionBus.h"

#include "platform/desktop/busProbe.h"

#include <chrono>
#include <memory>
#include <string>

namespace sonarin {

namespace {

/// Where Qt looks for the bus as well.
std::string busAddress() {
    if (qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS")) {
        return qgetenv("DBUS_SESSION_BUS_ADDRESS").toStdString();
    }
    return "unix:path=" + qgetenv("XDG_RUNTIME_DIR").toStdString() + "/bus";
}

} // namespace

SessionBus::SessionBus(QObject* parent) : QObject(parent), connection_(QString()) {
    outliveTheBus();
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

/// A bus that takes connections and answers nothing would hold up the window, and all that Qt has to do with
/// other buses. So it is first asked beside the window whether it answers.
void SessionBus::watch() {
    if (isConnected()) {
        return;
    }
    if (!isAsking_) {
        isAsking_ = true;
        const auto isThere = std::make_shared<bool>(false);
        sideWork_.start(
            {}, [isThere, address = busAddress()] { *isThere = doesBusAnswer(address); },
            [this, isThere] { takeAnswer(*isThere); });
    } else if (wasConnected_) {
        wasConnected_ = false;
        emit lost();
    }
}

void SessionBus::takeAnswer(bool isThere) {
    isAsking_ = false;
    const bool wasConnected = wasConnected_;
    if (isThere) {
        connectAnew();
    }
    if (isConnected()) {
        emit reconnected();
    } else if (wasConnected) {
        wasConnected_ = false;
        emit lost();
    }
}

} // namespace sonarin

#include "moc_sessionBus.cpp"
