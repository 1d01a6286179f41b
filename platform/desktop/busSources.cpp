// SPDX-License-Identifier: MIT
#include "platform/desktop/busSources.h"

#include "platform/desktop/fileUri.h"

#include <QDBusArgument>
#include <algorithm>

namespace sonarin {

namespace {

/// The digest of a selection: since when its window is in use, and the first two URIs.
QVariant digestSelection(const QVariantMap& properties) {
    const QStringList selected = properties.value(QStringLiteral("Selected")).toStringList().mid(0, 2);
    return QVariantList{properties.value(QStringLiteral("ActiveSince")).toLongLong(), selected};
}

/// The track's metadata; none where a player sends something of another type, which must not be taken apart.
QVariantMap metadataOf(const QVariantMap& properties) {
    const QVariant metadata = properties.value(QStringLiteral("Metadata"));
    const bool isMap = metadata.metaType() == QMetaType::fromType<QDBusArgument>() &&
                       metadata.value<QDBusArgument>().currentSignature() == QLatin1StringView("a{sv}");
    return isMap ? qdbus_cast<QVariantMap>(metadata) : QVariantMap();
}

/// The digest of a player: its status, its track's URL and identity.
QVariant digestPlayer(const QVariantMap& properties) {
    const QVariantMap metadata = metadataOf(properties);
    QVariant track = metadata.value(QStringLiteral("mpris:trackid"));
    if (track.canConvert<QDBusObjectPath>()) {
        track = track.value<QDBusObjectPath>().path();
    }
    return QStringList{properties.value(QStringLiteral("PlaybackStatus")).toString(),
                       metadata.value(QStringLiteral("xesam:url")).toString(), track.toString(),
                       metadata.value(QStringLiteral("xesam:title")).toString()};
}

QByteArray pathOf(const QString& uri) {
    return pathOfFileUri(uri).value_or(QByteArray());
}

PropertyPoll::Family selectionFamily(const QString& kind) {
    return {QStringLiteral("org.sonarin.Selection1.%1.").arg(kind), QStringLiteral("/org/sonarin/Selection1"),
            QStringLiteral("org.sonarin.Selection1"), digestSelection};
}

PropertyPoll::Family playerFamily() {
    return {QStringLiteral("org.mpris.MediaPlayer2."), QStringLiteral("/org/mpris/MediaPlayer2"),
            QStringLiteral("org.mpris.MediaPlayer2.Player"), digestPlayer};
}

SelectionSources::Paths selectionIn(const PropertyPoll& poll) {
    const QList<PropertyPoll::Answer> answers = poll.answers();
    if (answers.isEmpty()) {
        return std::nullopt;
    }
    const auto activeSince = [](const PropertyPoll::Answer& answer) {
        return answer.digest.toList().value(0).toLongLong();
    };
    const auto latest = std::max_element(answers.begin(), answers.end(), [&](const auto& a, const auto& b) {
        return activeSince(a) < activeSince(b);
    });
    QList<QByteArray> paths;
    for (const QString& uri : latest->digest.toList().value(1).toStringList()) {
        paths.append(pathOf(uri));
    }
    return paths;
}

/// Playing before paused; a stopped player may still tell its last track, which does not count.
int rank(const PropertyPoll::Answer& player) {
    const QString status = player.digest.toStringList().value(0);
    return status == QLatin1StringView("Playing") ? 2 : status == QLatin1StringView("Paused") ? 1 : 0;
}

} // namespace

BusSources::BusSources(SessionBus* bus, QObject* parent)
    : fileManagers_(bus, selectionFamily(QStringLiteral("FileManager"))),
      playerSelections_(bus, selectionFamily(QStringLiteral("Player"))), players_(bus, playerFamily()) {
    setParent(parent);
    for (PropertyPoll* poll : {&fileManagers_, &playerSelections_, &players_}) {
        connect(poll, &PropertyPoll::changed, this, &SelectionSources::answered);
    }
    connect(&cmus_, &CmusRemote::changed, this, &SelectionSources::answered);
}

void BusSources::ask(Question question) {
    switch (question) {
    case Question::fileManagerSelection:
        fileManagers_.ask();
        break;
    case Question::playerSelection:
        playerSelections_.ask();
        break;
    case Question::trackPlaying:
        players_.ask();
        break;
    }
}

SelectionSources::Paths BusSources::answer(Question question) {
    switch (question) {
    case Question::fileManagerSelection:
        return selectionIn(fileManagers_);
    case Question::playerSelection:
        return selectionIn(playerSelections_);
    case Question::trackPlaying:
        return trackPlaying();
    }
    return std::nullopt;
}

SelectionSources::Paths BusSources::trackPlaying() {
    const QList<PropertyPoll::Answer> answers = players_.answers();
    const auto best = std::max_element(answers.begin(), answers.end(), [](const auto& a, const auto& b) {
        return std::pair(rank(a), a.changed) < std::pair(rank(b), b.changed);
    });
    if (best == answers.end() || rank(*best) == 0) {
        return std::nullopt;
    }
    const QStringList facts = best->digest.toStringList();
    if (facts.value(1).isEmpty() && best->names.contains(QStringLiteral("org.mpris.MediaPlayer2.cmus"))) {
        return QList<QByteArray>{cmus_.fileOf(best->changed)};
    }
    return QList<QByteArray>{pathOf(facts.value(1))};
}

bool BusSources::isPlayerRunning() const {
    return players_.isAnyRunning() || playerSelections_.isAnyRunning();
}

} // namespace sonarin
