// SPDX-License-Identifier: MIT
#include "platform/desktop/appearance.h"

#include "platform/desktop/busCall.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingReply>

namespace sonarin {

namespace {

using SettingGroups = QMap<QString, QVariantMap>;

constexpr QLatin1StringView portalName("org.freedesktop.portal.Desktop");
constexpr QLatin1StringView portalPath("/org/freedesktop/portal/desktop");
constexpr QLatin1StringView settingsInterface("org.freedesktop.portal.Settings");

} // namespace

Appearance::Appearance(SessionBus* bus, QObject* parent) : QObject(parent), bus_(bus) {
    qDBusRegisterMetaType<SettingGroups>();
    portal_.addWatchedService(portalName);
    portal_.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
    connect(&portal_, &QDBusServiceWatcher::serviceRegistered, this, &Appearance::ask);
    connect(bus_, &SessionBus::reconnected, this, &Appearance::watch);
    watch();
}

void Appearance::watch() {
    QDBusConnection connection = bus_->connection();
    portal_.setConnection(connection);
    connection.connect(portalName, portalPath, settingsInterface, QStringLiteral("SettingChanged"), this,
                       SLOT(takeChange(QString, QString, QDBusVariant)));
    ask();
}

/// Does not start the portal: where the desktop has one, it runs or will soon.
void Appearance::ask() {
    QDBusMessage request =
        QDBusMessage::createMethodCall(portalName, portalPath, settingsInterface, QStringLiteral("ReadAll"));
    request << QStringList{QStringLiteral("org.freedesktop.appearance"),
                           QStringLiteral("org.gnome.desktop.*")};
    request.setAutoStartService(false);
    const auto takeAll = [this](const QDBusPendingReply<SettingGroups>& settings) {
        const SettingGroups groups = settings.isError() ? SettingGroups() : settings.value();
        for (auto group = groups.begin(); group != groups.end(); ++group) {
            for (auto setting = group->begin(); setting != group->end(); ++setting) {
                take(group.key(), setting.key(), setting.value());
            }
        }
    };
    whenAnswered(bus_->connection().asyncCall(request), this, takeAll);
}

void Appearance::takeChange(const QString& group, const QString& key, const QDBusVariant& value) {
    take(group, key, value.variant());
}

void Appearance::take(const QString& group, const QString& key, const QVariant& value) {
    const QString name = group + u'/' + key;
    if (name == QLatin1StringView("org.freedesktop.appearance/contrast")) {
        wantsContrast_ = value.toInt() == 1;
    } else if (name == QLatin1StringView("org.gnome.desktop.a11y.interface/high-contrast")) {
        wantsGnomeContrast_ = value.toBool();
    } else if (name == QLatin1StringView("org.freedesktop.appearance/reduced-motion")) {
        wantsStillness_ = value.toInt() == 1;
    } else if (name == QLatin1StringView("org.gnome.desktop.interface/enable-animations")) {
        wantsGnomeStillness_ = !value.toBool();
    } else {
        return;
    }
    emit highContrastChanged(wantsContrast_ || wantsGnomeContrast_);
    emit motionChanged(!wantsStillness_ && !wantsGnomeStillness_);
}

} // namespace sonarin

#include "moc_appearance.cpp"
