// SPDX-License-Identifier: MIT
#include "platform/desktop/cmusRemote.h"

#include <QDir>
#include <QFile>
#include <chrono>
#include <utility>

namespace sonarin {

namespace {

/// Where cmus listens (cmus-remote(1)).
QString socketPath() {
    QString chosen = qEnvironmentVariable("CMUS_SOCKET");
    if (!chosen.isEmpty()) {
        return chosen;
    }
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return runtime.isEmpty() ? QDir::homePath() + QStringLiteral("/.config/cmus/socket")
                             : runtime + QStringLiteral("/cmus-socket");
}

qint64 now() {
    using namespace std::chrono;
    return duration_cast<microseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

CmusRemote::CmusRemote(QObject* parent) : QObject(parent) {
    connect(&socket_, &QLocalSocket::readyRead, this, &CmusRemote::read);
    connect(&socket_, &QLocalSocket::disconnected, this, &CmusRemote::disconnected);
    connect(&socket_, &QLocalSocket::errorOccurred, this, &CmusRemote::disconnected);
}

QByteArray CmusRemote::fileOf(std::uint64_t track) {
    constexpr qint64 again = 2000; // milliseconds
    const bool isDue = track != track_ || !playingAsked_.isValid() || playingAsked_.elapsed() > again;
    if (isDue && !asked_.contains(Question::playing)) {
        if (track != track_) {
            file_.clear();
        }
        track_ = track;
        playingAsked_.start();
        ask(Question::playing);
    }
    return track == track_ ? file_ : QByteArray();
}

void CmusRemote::askSelection() {
    constexpr qint64 deadline = 100; // milliseconds
    if (!asked_.contains(Question::selection)) {
        selectionAsked_.start();
        ask(Question::selection);
    } else if (selectionAsked_.elapsed() > deadline) {
        setSelection(std::nullopt);
    }
}

void CmusRemote::ask(Question question) {
    if (socket_.state() == QLocalSocket::UnconnectedState) {
        const QString path = socketPath();
        if (!QFile::exists(path)) {
            return;
        }
        socket_.connectToServer(path);
    }
    if (socket_.state() == QLocalSocket::ConnectedState) {
        asked_.enqueue(question);
        socket_.write(question == Question::playing ? "status\n" : "echo {}\n");
    }
}

void CmusRemote::read() {
    constexpr qsizetype longest = 65536; // far more than any answer of cmus
    received_ += socket_.readAll();
    // An answer without a text is an empty line alone.
    for (;;) {
        const qsizetype end = received_.startsWith('\n') ? 0 : received_.indexOf("\n\n");
        if (end < 0 || asked_.isEmpty()) {
            break;
        }
        const QByteArray answer = received_.left(end);
        received_.remove(0, end + (end == 0 ? 1 : 2));
        take(asked_.dequeue(), answer);
    }
    if (received_.size() > longest) {
        socket_.abort();
    }
}

void CmusRemote::take(Question question, const QByteArray& answer) {
    if (question == Question::selection) {
        // Views without tracks give a complaint instead of a path.
        setSelection(answer.startsWith('/') ? answer : QByteArray());
        return;
    }
    for (const QByteArray& line : answer.split('\n')) {
        if (line.startsWith("file /")) {
            if (std::exchange(file_, line.mid(5)) != file_) {
                emit changed();
            }
            return;
        }
    }
}

void CmusRemote::setSelection(const std::optional<QByteArray>& file) {
    if (std::exchange(selection_, file) != file) {
        selectedSince_ = file ? now() : selectedSince_;
        emit changed();
    }
}

void CmusRemote::disconnected() {
    asked_.clear();
    received_.clear();
    setSelection(std::nullopt);
}

} // namespace sonarin
