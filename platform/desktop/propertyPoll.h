// SPDX-License-Identifier: MIT
#pragma once

#include "platform/desktop/sessionBus.h"

#include <QDBusPendingReply>
#include <QElapsedTimer>
#include <QMap>
#include <QStringList>
#include <QVariantMap>
#include <optional>

namespace sonarin {

/// Asks the programs on the bus with a name of one family for the properties of one interface, again and
/// again, without ever waiting and without starting one. A program that has not answered yet is not asked
/// again, so that one that hangs costs nothing. Of many programs two are asked at a time: the one that is
/// followed, and the others in turn.
class PropertyPoll : public QObject {
    Q_OBJECT

public:
    /// What a program answered.
    struct Answer {
        QStringList names; ///< its names of the family
        QVariant digest;
        std::uint64_t changed = 0; ///< greater, the later the digest became what it is
        bool isCurrent = false;    ///< to the last question, within a tenth of a second
    };

    struct Family {
        QString namePrefix; ///< of well-known bus names, with the full stop at its end
        QString objectPath;
        QString interface;
        /// What counts of the answer.
        QVariant (*digest)(const QVariantMap& properties);
        /// Whether the second is to be followed rather than the first.
        bool (*isOutdone)(const Answer& first, const Answer& second);
    };

    PropertyPoll(SessionBus* bus, Family family, QObject* parent = nullptr);

    /// Puts the question to at most two programs that owe no answer, and to those that are new.
    void ask();
    /// The last answer of the program to follow; nothing when none has answered. A program that owes an
    /// answer stays the one to follow for two seconds: what another one says is no answer for it.
    [[nodiscard]] std::optional<Answer> followed() const;
    /// What was answered up to now does not count any more.
    void forget();
    /// Whether any program has a name of the family.
    [[nodiscard]] bool isAnyRunning() const { return !programs_.isEmpty(); }

signals:
    /// Other answers than before.
    void changed();

private slots:
    void nameOwnerChanged(const QString& name, const QString& oldOwner, const QString& newOwner);

private:
    struct Program {
        Answer answer;
        bool hasAnswered = false; ///< and has not owed an answer for long since
        bool isAsked = false;
        bool isNew = true; ///< has not been asked yet, or has not had the time to answer
        QElapsedTimer asked;
    };

    void start();
    void addName(const QString& name, const QString& owner);
    void removeName(const QString& name, const QString& owner);
    void forgetOverdueAnswers();
    [[nodiscard]] bool isAnyNew() const;
    [[nodiscard]] QString followedOwner() const;
    [[nodiscard]] QString nextInTurn() const;
    void askForOwner(const QString& name);
    void askProgram(const QString& owner);
    void take(const QString& owner, const QDBusPendingReply<QVariantMap>& reply);

    SessionBus* bus_;
    Family family_;
    QMap<QString, Program> programs_; ///< by unique bus name: two names of one program count once
    QString askedInTurn_;             ///< the unique name of the one whose turn it was last
    std::uint64_t changes_ = 0;
    std::uint64_t generation_ = 0; ///< of the connection; answers of an earlier one do not count
};

} // namespace sonarin
