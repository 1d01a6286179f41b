// SPDX-License-Identifier: MIT
#pragma once

#include <QSettings>
#include <QVariant>
#include <functional>
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

    /// Stores at once. Where that fails the value holds until the program ends.
    void set(const QString& key, const QVariant& value);
    /// The same for what nobody has chosen, and so nobody would miss.
    void keep(const QString& key, const QVariant& value);
    /// To be called when a value could not be stored, the first time only.
    void whenNotStored(std::function<void()> call) { whenNotStored_ = std::move(call); }

private:
    mutable QSettings settings_;
    std::map<QString, QVariant> registered_;
    std::function<void()> whenNotStored_;
};

} // namespace sonarin
