// SPDX-License-Identifier: MIT
#include "platform/desktop/userDefaults.h"

#include <QStandardPaths>

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

void UserDefaults::set(const QString& key, const QVariant& value) {
    settings_.setValue(key, value);
    settings_.sync();
}

} // namespace sonarin
