// SPDX-License-Identifier: MIT
#include "platform/desktop/cmusRemote.h"

#include <chrono>
#include <utility>

namespace sonarin {

CmusRemote::CmusRemote(QObject* parent) : QObject(parent) {
    process_.setProgram(QStringLiteral("cmus-remote"));
    process_.setArguments({QStringLiteral("-Q")});
    process_.setStandardErrorFile(QProcess::nullDevice());
    connect(&process_, &QProcess::finished, this, &CmusRemote::take);
    deadline_.setSingleShot(true);
    deadline_.setInterval(std::chrono::seconds(2));
    deadline_.callOnTimeout(&process_, &QProcess::kill);
}

QByteArray CmusRemote::fileOf(std::uint64_t track) {
    constexpr qint64 again = 2000; // milliseconds
    const bool isDue = track != track_ || !started_.isValid() || started_.elapsed() > again;
    if (isDue && process_.state() == QProcess::NotRunning) {
        if (track != track_) {
            file_.clear();
        }
        track_ = track;
        started_.start();
        process_.start(QIODevice::ReadOnly);
        deadline_.start();
    }
    return track == track_ ? file_ : QByteArray();
}

void CmusRemote::take() {
    deadline_.stop();
    const QByteArrayList lines = process_.readAllStandardOutput().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("file /")) {
            if (std::exchange(file_, line.mid(5)) != file_) {
                emit changed();
            }
            return;
        }
    }
}

} // namespace sonarin
