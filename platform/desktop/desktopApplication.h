// SPDX-License-Identifier: MIT
#pragma once

#include "platform/desktop/sessionBus.h"

#include <QDBusConnectionInterface>
#include <QDBusContext>
#include <QStringList>
#include <QVariantMap>

namespace sonarin {

/// The program as other programs see it on the session bus: one name, and behind it the interface
/// org.freedesktop.Application (D-Bus activation of desktop entries, version 1.5). Whoever has the name is
/// the one running program; a second one hands its files over and ends.
class DesktopApplication : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// `identifier` is the name on the bus, such as org.sonarin.Sonarin; the object's path is made of it.
    DesktopApplication(SessionBus* bus, QString identifier, QObject* parent = nullptr);

    /// Takes the name, and takes it again when the bus comes back. False when another program has it; true as
    /// well when there is no bus.
    bool takeName();
    /// Takes the name away from a program that hangs.
    void takeNameAway();
    /// Whether the program can be reached under its name.
    [[nodiscard]] bool hasName() const { return hasName_ && bus_->isConnected(); }

    enum class HandOver : std::uint8_t { done, refused, noAnswer };
    /// Hands files (URIs) to the running program, or just brings it to the front.
    [[nodiscard]] HandOver handOver(const QStringList& uris) const;
    /// Has the running program show the file whose path is on the clipboard.
    [[nodiscard]] HandOver handOverPastedPath() const;

signals:
    /// Another program has taken the name, since this one did not answer it.
    void replaced();
    void activated();
    void openRequested(const QList<QByteArray>& paths);
    void textReceived(const QString& text);
    void pastedPathRequested();

public slots:
    // The methods of the interface. Malformed requests are answered with an error and have no effect.
    Q_SCRIPTABLE void Activate(const QVariantMap& platform_data);
    Q_SCRIPTABLE void Open(const QStringList& uris, const QVariantMap& platform_data);
    Q_SCRIPTABLE void ActivateAction(const QString& action_name, const QVariantList& parameter,
                                     const QVariantMap& platform_data);

private:
    [[nodiscard]] QDBusMessage request(const QString& method) const;
    [[nodiscard]] HandOver send(QDBusMessage request) const;
    void takeLoss(const QString& name);
    void registerName(QDBusConnectionInterface::ServiceQueueOptions options);
    [[nodiscard]] QString objectPath() const;

    SessionBus* bus_;
    QString identifier_;
    bool hasName_ = false;
};

} // namespace sonarin
