// SPDX-License-Identifier: MIT
#pragma once

#include "platform/host/fileDescriptor.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QQueue>
#include <QSocketNotifier>
#include <cstdint>
#include <memory>
#include <optional>

namespace sonarin {

/// cmus says neither over MPRIS which file it plays nor by a plug-in which one is selected; its remote
/// control does, a socket that takes a command a line and ends each answer with an empty line. Nothing waits
/// here, and nothing is asked anew before cmus has answered. A plain socket, since Qt's own would bring its
/// whole network library along at every start.
class CmusRemote : public QObject {
    Q_OBJECT

public:
    explicit CmusRemote(QObject* parent = nullptr);

    /// The path of the file that plays, as far as it is known by now; asks at every new value of `track`, and
    /// now and then.
    QByteArray fileOf(std::uint64_t track);

    /// Asks for the file under the cursor, when cmus is running; once a second, since cmus shows on its own
    /// screen what it answers. Of several marked tracks cmus tells the first.
    void askSelection();
    /// What was answered up to now does not count any more.
    void forgetSelection() { setSelection(std::nullopt); }
    /// What was answered last; an empty path where there is no file. Nothing when there was no answer within
    /// a tenth of a second.
    [[nodiscard]] std::optional<QByteArray> selection() const { return selection_; }
    /// Since when it is that, in microseconds of CLOCK_MONOTONIC; 0 for what it was at first.
    [[nodiscard]] qint64 selectedSince() const { return selectedSince_; }

signals:
    void changed();

private:
    enum class Question { playing, selection };

    void ask(Question question);
    bool connectToCmus();
    void read();
    void take(Question question, const QByteArray& answer);
    void setSelection(const std::optional<QByteArray>& file);
    void disconnect();

    FileDescriptor socket_;
    std::unique_ptr<QSocketNotifier> readable_; ///< null while not connected
    QByteArray received_;
    QQueue<Question> asked_; ///< in the order of the answers to come
    QElapsedTimer selectionAsked_;
    std::optional<QByteArray> selection_;
    QByteArray lastSelected_; ///< also while no answer counts
    qint64 selectedSince_ = 0;
    QElapsedTimer playingAsked_;
    std::uint64_t track_ = 0;
    QByteArray file_;
};

} // namespace sonarin
