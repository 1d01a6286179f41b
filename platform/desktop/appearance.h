// SPDX-License-Identifier: MIT
#pragma once

#include "platform/desktop/sessionBus.h"

#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QVariantMap>

namespace sonarin {

/// What the user has asked of all programs beyond the colours: high contrast, and that nothing moves. From
/// the desktop portal's settings (org.freedesktop.portal.Settings), where it runs; nothing is asked for
/// otherwise.
class Appearance : public QObject {
    Q_OBJECT

public:
    explicit Appearance(SessionBus* bus, QObject* parent = nullptr);

signals:
    void highContrastChanged(bool isWanted);
    void motionChanged(bool isWanted);

private slots:
    void takeChange(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void watch();
    void ask();
    void take(const QString& group, const QString& key, const QVariant& value);

    SessionBus* bus_;
    QDBusServiceWatcher portal_;
    // A wish counts that is told in either way.
    bool wantsContrast_ = false;
    bool wantsGnomeContrast_ = false;
    bool wantsStillness_ = false;
    bool wantsGnomeStillness_ = false;
};

} // namespace sonarin
