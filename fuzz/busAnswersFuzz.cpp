// SPDX-License-Identifier: MIT
#include "platform/desktop/fileUri.h"
#include "platform/desktop/programAnswers.h"

#include <QDBusObjectPath>
#include <QDBusVariant>
#include <cstdint>

namespace {

/// The value that a letter, as D-Bus has them for its types, and bytes stand for, as Qt hands it out.
QVariant valueOf(const QByteArray& typed) {
    const QByteArray bytes = typed.mid(1);
    const QString text = QString::fromUtf8(bytes);
    switch (typed.isEmpty() ? 's' : typed.front()) {
    case 'a':
        return text.split(u',');
    case 'b':
        return !bytes.isEmpty();
    case 'd':
        return bytes.toDouble();
    case 'o':
        return QVariant::fromValue(QDBusObjectPath(text));
    case 'v':
        return QVariant::fromValue(QDBusVariant(valueOf(bytes)));
    case 'x':
        return bytes.toLongLong();
    case 'y':
        return bytes;
    default:
        return text;
    }
}

} // namespace

/// What programs on the bus answer: one property or fact of a track a line, as KEY=TYPE and its value. The
/// messages themselves are taken apart by Qt.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const auto silence =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    (void)silence;
    QVariantMap facts;
    const QByteArray lines(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    for (const QByteArray& line : lines.split('\n')) {
        const qsizetype end = line.indexOf('=');
        facts.insert(QString::fromUtf8(line.left(end)), valueOf(line.mid(end + 1)));
    }
    QStringList uris = sonarin::digestSelection(facts).toList().value(1).toStringList();
    uris += sonarin::digestPlayer(facts, facts).toStringList().value(1);
    for (const QString& uri : uris) {
        const auto path = sonarin::pathOfFileUri(uri);
        if (path && sonarin::pathOfFileUri(sonarin::fileUriOfPath(*path)) != path) {
            __builtin_trap();
        }
    }
    return 0;
}
