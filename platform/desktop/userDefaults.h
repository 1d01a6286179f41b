// SPDX-License-Identifier: MIT
#pragma once

#include <QSettings>
#include <QVariant>
#include <map>

namespace sonarin {

/// The user's preferences, in the configuration folder (sonarin/sonarin.conf, INI). A registered default
/// answers where nothing is stored and is never written.
class UserDefaults {
public:
    UserDefaults();

    void registerDefault(const QString& key, const QVariant& value);

    /// The stored value, else the registered default; as a number 0 for what is none.
    [[nodiscard]] QVariant value(const QString& key) const;
    [[nodiscard]] int integer(const QString& key) const { return value(key).toInt(); }

    /// Stores at once.
    void set(const QString& key, const QVariant& value);

private:
    mutable QSettings settings_;
    std::map<QString, QVariant> registered_;
};

} // namespace sonarin
