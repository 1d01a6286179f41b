// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QProcess>
#include <QTimer>
#include <cstdint>

namespace sonarin {

/// cmus does not say over MPRIS which file it plays; its own remote control does.
class CmusRemote : public QObject {
    Q_OBJECT

public:
    explicit CmusRemote(QObject* parent = nullptr);

    /// The path of the file that plays, as far as it is known by now; asks at every new value of `track`, and
    /// now and then.
    QByteArray fileOf(std::uint64_t track);

signals:
    void changed();

private:
    void take();

    QProcess process_;
    QTimer deadline_;
    QElapsedTimer started_;
    std::uint64_t track_ = 0;
    QByteArray file_;
};

} // namespace sonarin
