// SPDX-License-Identifier: MIT
#include "platform/desktop/desktopApplication.h"

#include "platform/desktop/fileUri.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <algorithm>

namespace sonarin {

namespace {

constexpr qsizetype mostFiles = 1000;    // in one request: each is read and shown in turn
constexpr qsizetype longestText = 12288; // of the longest path, every byte escaped

constexpr const char* interfaceName = "org.freedesktop.Application";
constexpr QLatin1StringView showPath("show-path");
constexpr QLatin1StringView showPastedPath("show-pasted-path"); // also in the desktop entry

/// The token by which the desktop lets a window come to the front although another program is in use.
void keepActivationToken(const QVariantMap& platformData) {
    const QByteArray token = platformData.value(QStringLiteral("activation-token")).toString().toUtf8();
    if (!token.isEmpty()) {
        qputenv("XDG_ACTIVATION_TOKEN", token);
    }
}

QVariantMap ownPlatformData() {
    const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
    return token.isEmpty() ? QVariantMap() : QVariantMap{{QStringLiteral("activation-token"), token}};
}

} // namespace

DesktopApplication::DesktopApplication(SessionBus* bus, QString identifier, QObject* parent)
    : QObject(parent), bus_(bus), identifier_(std::move(identifier)) {
    connect(bus_, &SessionBus::reconnected, this, &DesktopApplication::takeName);
}

QString DesktopApplication::objectPath() const {
    return u'/' + QString(identifier_).replace(u'.', u'/');
}

bool DesktopApplication::takeName() {
    registerName(QDBusConnectionInterface::DontQueueService);
    return hasName_ || !bus_->isConnected();
}

void DesktopApplication::takeNameAway() {
    registerName(QDBusConnectionInterface::ReplaceExistingService);
}

/// With the permission to take it away again: a program that hangs must not be the only one there can be.
void DesktopApplication::registerName(QDBusConnectionInterface::ServiceQueueOptions options) {
    hasName_ = false;
    QDBusConnection connection = bus_->connection();
    if (!connection.isConnected()) {
        return;
    }
    // Before the name is asked for: it may be taken away as soon as it is given.
    connect(connection.interface(), &QDBusConnectionInterface::serviceUnregistered, this,
            &DesktopApplication::takeLoss, Qt::UniqueConnection);
    // The object first: a request must not meet a name without one.
    connection.registerObject(objectPath(), this, QDBusConnection::ExportScriptableSlots);
    const auto reply = connection.interface()->registerService(identifier_, options,
                                                               QDBusConnectionInterface::AllowReplacement);
    hasName_ = reply.value() == QDBusConnectionInterface::ServiceRegistered;
}

void DesktopApplication::takeLoss(const QString& name) {
    if (name == identifier_ && hasName_) {
        hasName_ = false;
        emit replaced();
    }
}

QDBusMessage DesktopApplication::request(const QString& method) const {
    return QDBusMessage::createMethodCall(identifier_, objectPath(), QLatin1StringView(interfaceName),
                                          method);
}

DesktopApplication::HandOver DesktopApplication::send(QDBusMessage request) const {
    constexpr int patience = 3000; // milliseconds
    request << ownPlatformData();
    request.setAutoStartService(false);
    const QDBusMessage answer = bus_->connection().call(request, QDBus::Block, patience);
    if (answer.type() == QDBusMessage::ReplyMessage) {
        return HandOver::done;
    }
    const QDBusError::ErrorType error = QDBusError(answer).type();
    const bool isSilent = error == QDBusError::NoReply || error == QDBusError::Timeout ||
                          error == QDBusError::TimedOut || error == QDBusError::ServiceUnknown;
    return isSilent ? HandOver::noAnswer : HandOver::refused;
}

DesktopApplication::HandOver DesktopApplication::handOver(const QStringList& uris) const {
    if (uris.isEmpty()) {
        return send(request(QStringLiteral("Activate")));
    }
    QDBusMessage open = request(QStringLiteral("Open"));
    // Only the last one stays shown anyhow.
    open << uris.mid(std::max<qsizetype>(0, uris.size() - mostFiles));
    return send(open);
}

DesktopApplication::HandOver DesktopApplication::handOverPastedPath() const {
    QDBusMessage act = request(QStringLiteral("ActivateAction"));
    act << QString(showPastedPath) << QVariantList();
    return send(act);
}

void DesktopApplication::Activate(const QVariantMap& platform_data) {
    keepActivationToken(platform_data);
    emit activated();
}

void DesktopApplication::Open(const QStringList& uris, const QVariantMap& platform_data) {
    if (uris.size() > mostFiles) {
        sendErrorReply(QDBusError::LimitsExceeded, QStringLiteral("More than 1000 files"));
        return;
    }
    QList<QByteArray> paths;
    for (const QString& uri : uris) {
        const auto path = pathOfFileUri(uri);
        if (!path) {
            sendErrorReply(QDBusError::InvalidArgs,
                           QStringLiteral("Not a file on this machine: ") + uri.left(200));
            return;
        }
        paths.append(*path);
    }
    keepActivationToken(platform_data);
    // The caller need not wait until all have been read.
    QMetaObject::invokeMethod(this, "openRequested", Qt::QueuedConnection, Q_ARG(QList<QByteArray>, paths));
}

void DesktopApplication::ActivateAction(const QString& action_name, const QVariantList& parameter,
                                        const QVariantMap& platform_data) {
    if (action_name == showPastedPath && parameter.isEmpty()) {
        keepActivationToken(platform_data);
        emit pastedPathRequested();
        return;
    }
    const bool isText = parameter.size() == 1 && parameter.first().typeId() == QMetaType::QString;
    if (action_name != showPath || !isText) {
        sendErrorReply(QDBusError::InvalidArgs,
                       QStringLiteral("The actions are show-path, with one text, and show-pasted-path"));
        return;
    }
    if (parameter.first().toString().size() > longestText) {
        sendErrorReply(QDBusError::LimitsExceeded, QStringLiteral("Too long for a path"));
        return;
    }
    keepActivationToken(platform_data);
    emit textReceived(parameter.first().toString());
}

} // namespace sonarin

#include "moc_desktopApplication.cpp"
