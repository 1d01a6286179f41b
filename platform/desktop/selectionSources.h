// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <optional>

namespace sonarin {

/// What the window can follow. The questions are answered at once, by what the programs said last; asking
/// makes them be asked anew. A list holds paths, which are bytes; an empty one stands for an item that is no
/// file on this machine.
class SelectionSources : public QObject {
    Q_OBJECT

public:
    using Paths = std::optional<QList<QByteArray>>;

    /// What is selected in the file manager whose window was in use last; nothing when none tells.
    virtual Paths fileManagerSelection() = 0;
    /// The same for the music players.
    virtual Paths playerSelection() = 0;
    /// The file of the track that is playing, or else paused; nothing when there is none.
    virtual Paths trackPlaying() = 0;
    /// Whether there is a player to ask.
    virtual bool isPlayerRunning() = 0;

signals:
    /// An answer came that differs from the one before.
    void answered();
};

} // namespace sonarin
