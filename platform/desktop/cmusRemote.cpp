// SPDX-License-Identifier: MIT
#include "platform/desktop/cmusRemote.h"

#include <chrono>

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
    if (track != track_ && process_.state() == QProcess::NotRunning) {
        track_ = track;
        file_.clear();
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
            file_ = line.mid(5);
            emit changed();
            return;
        }
    }
}

} // namespace sonarin
