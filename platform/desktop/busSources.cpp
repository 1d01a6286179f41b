// SPDX-License-Identifier: MIT
#include "platform/desktop/busSources.h"

#include "platform/desktop/fileUri.h"
#include "platform/desktop/programAnswers.h"

#include <QDBusArgument>
#include <array>

namespace sonarin {

namespace {

bool isUsedLater(const PropertyPoll::Answer& first, const PropertyPoll::Answer& second) {
    return first.digest.toList().value(0).toLongLong() < second.digest.toList().value(0).toLongLong();
}

/// The track's metadata; none where a player sends something of another type, which must not be taken apart.
QVariantMap metadataOf(const QVariantMap& properties) {
    const QVariant metadata = properties.value(QStringLiteral("Metadata"));
    const bool isMap = metadata.metaType() == QMetaType::fromType<QDBusArgument>() &&
                       metadata.value<QDBusArgument>().currentSignature() == QLatin1StringView("a{sv}");
    return isMap ? qdbus_cast<QVariantMap>(metadata) : QVariantMap();
}

/// Playing before paused; a stopped player may still tell its last track, which does not count.
int rank(const PropertyPoll::Answer& player) {
    const QString status = player.digest.toStringList().value(0);
    return status == QLatin1StringView("Playing") ? 2 : status == QLatin1StringView("Paused") ? 1 : 0;
}

bool isPlayedLater(const PropertyPoll::Answer& first, const PropertyPoll::Answer& second) {
    return std::pair(rank(first), first.changed) < std::pair(rank(second), second.changed);
}

QByteArray pathOf(const QString& uri) {
    return pathOfFileUri(uri).value_or(QByteArray());
}

PropertyPoll::Family selectionFamily(const QString& kind) {
    return {QStringLiteral("org.sonarin.Selection1.%1.").arg(kind), QStringLiteral("/org/sonarin/Selection1"),
            QStringLiteral("org.sonarin.Selection1"), digestSelection, isUsedLater};
}

constexpr QLatin1StringView playerPrefix("org.mpris.MediaPlayer2.");

PropertyPoll::Family playerFamily() {
    return {QString(playerPrefix), QStringLiteral("/org/mpris/MediaPlayer2"),
            QStringLiteral("org.mpris.MediaPlayer2.Player"),
            [](const QVariantMap& properties) { return digestPlayer(properties, metadataOf(properties)); },
            isPlayedLater};
}

SelectionSources::Paths selectionIn(const PropertyPoll& poll) {
    const auto followed = poll.followed();
    if (!followed || !followed->isCurrent) {
        return std::nullopt;
    }
    QList<QByteArray> paths;
    for (const QString& uri : followed->digest.toList().value(1).toStringList()) {
        paths.append(pathOf(uri));
    }
    return paths;
}

SelectionSources::Paths onlyFile(const QByteArray& path) {
    return path.isEmpty() ? QList<QByteArray>() : QList<QByteArray>{path};
}

using Teller = SelectionSources::Teller;

/// What to say of a family of which no program has answered.
Teller silence(const PropertyPoll& poll) {
    return {poll.isAnyRunning() ? Teller::State::silent : Teller::State::none, QString()};
}

Teller selectionTeller(const PropertyPoll& poll) {
    const auto followed = poll.followed();
    return followed ? Teller{Teller::State::selecting, followed->digest.toList().value(2).toString()}
                    : silence(poll);
}

/// The element of the bus name behind the prefix, without what tells instances of one program apart.
Teller playerTeller(const PropertyPoll& poll) {
    const auto followed = poll.followed();
    if (!followed) {
        return silence(poll);
    }
    constexpr std::array<Teller::State, 3> states = {Teller::State::stopped, Teller::State::paused,
                                                     Teller::State::playing};
    const QString name = followed->names.value(0).mid(playerPrefix.size()).section(u'.', 0, 0);
    return {states.at(static_cast<std::size_t>(rank(*followed))), name};
}

} // namespace

BusSources::BusSources(SessionBus* bus, QObject* parent)
    : fileManagers_(bus, selectionFamily(QStringLiteral("FileManager"))),
      playerSelections_(bus, selectionFamily(QStringLiteral("Player"))), players_(bus, playerFamily()) {
    setParent(parent);
    for (const PropertyPoll* poll : polls_) {
        connect(poll, &PropertyPoll::changed, this, &SelectionSources::answered);
    }
    connect(&cmus_, &CmusRemote::changed, this, &SelectionSources::answered);
}

void BusSources::ask(Question question) {
    pollFor(question)->ask();
    if (question == Question::playerSelection) {
        cmus_.askSelection();
    }
}

void BusSources::forget() {
    for (PropertyPoll* poll : polls_) {
        poll->forget();
    }
    cmus_.forgetSelection();
}

SelectionSources::Paths BusSources::answer(Question question) {
    if (question == Question::trackPlaying) {
        return trackPlaying();
    }
    return isCmusSelection(question) ? onlyFile(*cmus_.selection()) : selectionIn(*pollFor(question));
}

/// cmus has no window whose use it could tell; its selection counts since it last changed.
bool BusSources::isCmusSelection(Question question) const {
    if (question != Question::playerSelection || !cmus_.selection()) {
        return false;
    }
    const auto other = playerSelections_.followed();
    return !other || other->digest.toList().value(0).toLongLong() < cmus_.selectedSince();
}

SelectionSources::Paths BusSources::trackPlaying() {
    const auto player = players_.followed();
    if (!player || !player->isCurrent || rank(*player) == 0) {
        return std::nullopt;
    }
    const QStringList facts = player->digest.toStringList();
    if (facts.value(1).isEmpty() && player->names.contains(QStringLiteral("org.mpris.MediaPlayer2.cmus"))) {
        return QList<QByteArray>{cmus_.fileOf(player->changed)};
    }
    return QList<QByteArray>{pathOf(facts.value(1))};
}

bool BusSources::isPlayerRunning() const {
    return players_.isAnyRunning() || playerSelections_.isAnyRunning() || cmus_.selection();
}

SelectionSources::Teller BusSources::teller(Question question) const {
    if (question == Question::trackPlaying) {
        return playerTeller(players_);
    }
    return isCmusSelection(question) ? Teller{Teller::State::selecting, QStringLiteral("cmus")}
                                     : selectionTeller(*pollFor(question));
}

} // namespace sonarin

#include "moc_busSources.cpp"
#include "moc_selectionSources.cpp"
