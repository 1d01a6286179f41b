// SPDX-License-Identifier: MIT
#include "platform/desktop/fileManager.h"

#include "platform/desktop/busCall.h"
#include "platform/desktop/fileUri.h"

#include <QDBusMessage>
#include <QDBusPendingReply>

namespace sonarin {

void showInFileManager(const QDBusConnection& bus, const QByteArray& path, QObject* context,
                       std::function<void(const QString& failure)> answered) {
    const QString name = QStringLiteral("org.freedesktop.FileManager1");
    QDBusMessage request = QDBusMessage::createMethodCall(
        name, QStringLiteral("/org/freedesktop/FileManager1"), name, QStringLiteral("ShowItems"));
    const QString startupId = qEnvironmentVariable("DESKTOP_STARTUP_ID");
    request << QStringList{fileUriOfPath(path)} << startupId;
    whenAnswered(bus.asyncCall(request), context,
                 [answered = std::move(answered)](const QDBusPendingReply<>& result) {
                     answered(!result.isError() ? QString()
                              : result.error().type() == QDBusError::ServiceUnknown
                                  ? QStringLiteral("there is no file manager that shows files")
                                  : result.error().message());
                 });
}

} // namespace sonarin
