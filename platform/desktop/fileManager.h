// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDBusConnection>
#include <functional>

namespace sonarin {

/// Asks the user's file manager to show the item selected in its folder (freedesktop.org, File Manager
/// D-Bus Interface: org.freedesktop.FileManager1). Does not wait; `answered` is called once, with the reason
/// where it cannot be done, else with an empty text, unless `context` has gone by then.
void showInFileManager(const QDBusConnection& bus, const QByteArray& path, QObject* context,
                       std::function<void(const QString& failure)> answered);

} // namespace sonarin
