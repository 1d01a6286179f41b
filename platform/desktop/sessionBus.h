// SPDX-License-Identifier: MIT
#pragma once

#include "platform/desktop/sideWork.h"

#include <QDBusConnection>
#include <QObject>
#include <QTimer>

namespace sonarin {

/// The user's session bus, which may be missing, go, and come back. A private connection, since Qt's shared
/// one cannot be opened again.
class SessionBus : public QObject {
    Q_OBJECT

public:
    explicit SessionBus(QObject* parent = nullptr);
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;
    ~SessionBus() override;

    [[nodiscard]] bool isConnected() const { return connection_.isConnected(); }
    /// The connection of the moment; what is registered and connected on it goes with it.
    [[nodiscard]] QDBusConnection connection() const { return connection_; }

signals:
    void lost();
    /// The bus is back, on another connection.
    void reconnected();

private:
    void connectAnew();
    void watch();
    void takeAnswer(bool isThere);

    QDBusConnection connection_;
    int opened_ = 0;
    bool wasConnected_ = false;
    bool isAsking_ = false;
    QTimer retry_;
    SideWork sideWork_;
};

} // namespace sonarin
