// SPDX-License-Identifier: MIT
#include "platform/desktop/programAnswers.h"

#include <QDBusObjectPath>
#include <QStringList>

namespace sonarin {

namespace {

/// A status line writes a backslash as two, and a line end as "\\n".
QByteArray unescaped(const QByteArray& text) {
    QByteArray plain;
    bool isEscaped = false;
    for (const char character : text) {
        if (character == '\\' && !isEscaped) {
            isEscaped = true;
            continue;
        }
        plain += isEscaped && character == 'n' ? '\n' : character;
        isEscaped = false;
    }
    return plain;
}

} // namespace

QVariant digestSelection(const QVariantMap& properties) {
    const QStringList selected = properties.value(QStringLiteral("Selected")).toStringList().mid(0, 2);
    return QVariantList{properties.value(QStringLiteral("ActiveSince")).toLongLong(), selected,
                        properties.value(QStringLiteral("Program")).toString()};
}

QVariant digestPlayer(const QVariantMap& properties, const QVariantMap& metadata) {
    QVariant track = metadata.value(QStringLiteral("mpris:trackid"));
    if (track.canConvert<QDBusObjectPath>()) {
        track = track.value<QDBusObjectPath>().path();
    }
    return QStringList{properties.value(QStringLiteral("PlaybackStatus")).toString(),
                       metadata.value(QStringLiteral("xesam:url")).toString(), track.toString(),
                       metadata.value(QStringLiteral("xesam:title")).toString()};
}

std::optional<QByteArray> takeCmusAnswer(QByteArray* received) {
    // An answer without a text is an empty line alone.
    const qsizetype end = received->startsWith('\n') ? 0 : received->indexOf("\n\n");
    if (end < 0) {
        return std::nullopt;
    }
    QByteArray answer = received->left(end);
    received->remove(0, end + (end == 0 ? 1 : 2));
    return answer;
}

std::optional<QByteArray> fileInCmusStatus(const QByteArray& answer) {
    for (const QByteArray& line : answer.split('\n')) {
        if (line.startsWith("file /")) {
            return unescaped(line.mid(5));
        }
    }
    return std::nullopt;
}

} // namespace sonarin
