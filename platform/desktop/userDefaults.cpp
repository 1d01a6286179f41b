// SPDX-License-Identifier: MIT
#include "platform/desktop/userDefaults.h"

#include <QFile>
#include <QStandardPaths>
#include <utility>

namespace sonarin {

UserDefaults::UserDefaults()
    : settings_(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                    QStringLiteral("/sonarin/sonarin.conf"),
                QSettings::IniFormat) {}

void UserDefaults::registerDefault(const QString& key, const QVariant& value) {
    registered_[key] = value;
}

QVariant UserDefaults::value(const QString& key) const {
    const auto fallBack = registered_.find(key);
    return settings_.value(key, fallBack == registered_.end() ? QVariant() : fallBack->second);
}

/// Which files somebody has opened is nobody else's affair.
void UserDefaults::keep(const QString& key, const QVariant& value) {
    settings_.setValue(key, value);
    settings_.sync();
    QFile::setPermissions(settings_.fileName(), QFile::ReadOwner | QFile::WriteOwner);
}

void UserDefaults::set(const QString& key, const QVariant& value) {
    keep(key, value);
    if (settings_.status() != QSettings::NoError && whenNotStored_) {
        std::exchange(whenNotStored_, nullptr)();
    }
}

} // namespace sonarin
