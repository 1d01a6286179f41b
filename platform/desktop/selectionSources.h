// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <optional>

namespace sonarin {

/// What the window can follow. Asking does not wait; the answer is what the programs said last, and a signal
/// tells when it has become another. A list holds paths, which are bytes; an empty one stands for an item
/// that is no file on this machine.
class SelectionSources : public QObject {
    Q_OBJECT

public:
    enum class Question {
        fileManagerSelection, ///< what is selected in the file manager whose window was in use last
        playerSelection,      ///< the same for the music players
        trackPlaying,         ///< the file of the track that is playing, or else paused
    };
    using Paths = std::optional<QList<QByteArray>>;

    virtual void ask(Question question) = 0;
    /// Answers to earlier questions do not count any more.
    virtual void forget() = 0;
    /// Nothing when no program has answered.
    virtual Paths answer(Question question) = 0;
    /// Whether there is a player to ask.
    [[nodiscard]] virtual bool isPlayerRunning() const = 0;

    /// Whose answer it is.
    struct Teller {
        enum class State {
            none,   ///< no program that could tell is running
            silent, ///< one is, and does not answer
            selecting,
            playing,
            paused,
            stopped,
        };
        State state = State::none;
        QString program; ///< its name, from the program itself; empty unless it answers
    };
    [[nodiscard]] virtual Teller teller(Question question) const = 0;

signals:
    /// An answer came that differs from the one before.
    void answered();
};

} // namespace sonarin
