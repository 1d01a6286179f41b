// SPDX-License-Identifier: MIT
#include "platform/desktop/cmusRemote.h"

#include "platform/desktop/programAnswers.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <iterator>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <utility>

namespace sonarin {

namespace {

/// Where cmus listens (cmus-remote(1)).
QByteArray socketPath() {
    QByteArray chosen = qgetenv("CMUS_SOCKET");
    if (!chosen.isEmpty()) {
        return chosen;
    }
    const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
    return runtime.isEmpty() ? qgetenv("HOME") + "/.config/cmus/socket" : runtime + "/cmus-socket";
}

qint64 now() {
    using namespace std::chrono;
    return duration_cast<microseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

CmusRemote::CmusRemote(QObject* parent) : QObject(parent) {}

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
    constexpr qint64 again = 1000;    // milliseconds
    constexpr qint64 patience = 2000; // milliseconds
    if (asked_.contains(Question::selection)) {
        if (selectionAsked_.elapsed() > patience) {
            setSelection(std::nullopt);
        }
    } else if (!selection_ || selectionAsked_.elapsed() > again) {
        selectionAsked_.start();
        ask(Question::selection);
    }
}

bool CmusRemote::connectToCmus() {
    const QByteArray path = socketPath();
    sockaddr_un address{};
    if (path.size() >= static_cast<qsizetype>(sizeof address.sun_path)) {
        return false;
    }
    address.sun_family = AF_UNIX;
    std::copy(path.begin(), path.end(), std::begin(address.sun_path));
    FileDescriptor fresh(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    const auto* general = reinterpret_cast<const sockaddr*>(&address); // NOLINT(*-reinterpret-cast): its use
    if (!fresh || ::connect(fresh.get(), general, sizeof address) != 0) {
        return false;
    }
    socket_ = std::move(fresh);
    readable_ = std::make_unique<QSocketNotifier>(socket_.get(), QSocketNotifier::Read);
    connect(readable_.get(), &QSocketNotifier::activated, this, &CmusRemote::read);
    return true;
}

void CmusRemote::ask(Question question) {
    if (!readable_ && !connectToCmus()) {
        return;
    }
    const std::string_view command = question == Question::playing ? "status\n" : "echo {}\n";
    const ssize_t sent = send(socket_.get(), command.data(), command.size(), MSG_NOSIGNAL);
    if (sent == static_cast<ssize_t>(command.size())) {
        asked_.enqueue(question);
    } else {
        disconnect(); // cmus would not know what to answer
    }
}

void CmusRemote::read() {
    constexpr qsizetype longest = 65536; // far more than any answer of cmus
    std::array<char, 4096> part{};
    const ssize_t count = recv(socket_.get(), part.data(), part.size(), 0);
    if (count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR)) {
        disconnect();
        return;
    }
    received_.append(part.data(), std::max<qsizetype>(count, 0));
    while (!asked_.isEmpty()) {
        const auto answer = takeCmusAnswer(&received_);
        if (!answer) {
            break;
        }
        take(asked_.dequeue(), *answer);
    }
    if (received_.size() > longest || (asked_.isEmpty() && !received_.isEmpty())) {
        disconnect();
    }
}

void CmusRemote::take(Question question, const QByteArray& answer) {
    if (question == Question::selection) {
        // Views without tracks give a complaint instead of a path.
        setSelection(answer.startsWith('/') ? answer : QByteArray());
        return;
    }
    const auto file = fileInCmusStatus(answer);
    if (file && std::exchange(file_, *file) != file_) {
        emit changed();
    }
}

void CmusRemote::setSelection(const std::optional<QByteArray>& file) {
    if (file && *file != lastSelected_) {
        selectedSince_ = lastSelected_.isNull() ? 0 : now();
        lastSelected_ = file->isNull() ? QByteArray("") : *file;
    }
    if (std::exchange(selection_, file) != file) {
        emit changed();
    }
}

void CmusRemote::disconnect() {
    if (readable_) {
        readable_->setEnabled(false);
        readable_.release()->deleteLater(); // its own signal may have led here
    }
    socket_ = FileDescriptor();
    asked_.clear();
    received_.clear();
    setSelection(std::nullopt);
}

} // namespace sonarin

#include "moc_cmusRemote.cpp"
