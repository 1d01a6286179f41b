// SPDX-License-Identifier: MIT
#include "tests/window/windowSupport.h"

#include "app/window/cocoaUtils.h"
#include "engine/fileEngine.h"
#include "platform/desktop/fileUri.h"
#include "tests/support/sampleBytes.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QSettings>
#include <QStandardPaths>
#include <QThread>
#include <csignal>
#include <stdexcept>

namespace sonarin {

namespace {

std::unique_ptr<QProcess> daemon;

} // namespace

bool waitFor(const std::function<bool()>& condition, int milliseconds) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > milliseconds) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(1);
    }
    return true;
}

void runFor(int milliseconds) {
    (void)waitFor([] { return false; }, milliseconds);
}

void TestBus::start() {
    static const TestFolder folder;
    const QByteArray address = "unix:path=" + QByteArray::fromStdString(folder.path("bus"));
    QFile::remove(QString::fromStdString(folder.path("bus")));
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    daemon = std::make_unique<QProcess>();
    daemon->setStandardErrorFile(QProcess::nullDevice());
    daemon->start(QStringLiteral("dbus-daemon"),
                  {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
                   QStringLiteral("--print-address"),
                   QStringLiteral("--address=") + QString::fromLatin1(address)});
    if (!daemon->waitForReadyRead(10000)) {
        throw std::runtime_error("dbus-daemon does not start");
    }
}

void TestBus::stop() {
    daemon->kill();
    daemon->waitForFinished();
    daemon.reset();
}

BusProgram::BusProgram(const QStringList& names) {
    process_.start(QStringLiteral(SONARIN_PUBLISHER), names);
    if (!process_.waitForReadyRead(10000)) {
        throw std::runtime_error("the publisher does not start");
    }
    process_.readAll();
}

BusProgram::~BusProgram() {
    process_.kill();
    process_.waitForFinished();
}

void BusProgram::tell(const QString& line) {
    process_.write(line.toUtf8() + '\n');
    process_.waitForReadyRead(10000);
    process_.readAll();
}

void BusProgram::play(const std::string& path, const QString& status) {
    tell(QStringLiteral("m xesam:url ") + fileUri(path));
    tell(QStringLiteral("s PlaybackStatus ") + status);
}

void BusProgram::select(const QStringList& uris, int activeSince) {
    tell(QStringLiteral("as Selected ") + uris.join(u' '));
    tell(QStringLiteral("x ActiveSince %1").arg(activeSince));
}

void BusProgram::signal(int number) const {
    kill(static_cast<pid_t>(process_.processId()), number);
}

void forgetPreferences() {
    QSettings stored(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                         QStringLiteral("/sonarin/sonarin.conf"),
                     QSettings::IniFormat);
    stored.clear();
}

QString pathOf(const std::string& path) {
    return cocoaUtils::stringFromText(feMakePathText(path));
}

QString fileUri(const std::string& path) {
    return fileUriOfPath(QByteArray::fromStdString(path));
}

std::string songFile(const std::string& title, const std::string& artist) {
    std::string frames = sample::id3Frame("TIT2", std::string(1, '\0') + title);
    if (!artist.empty()) {
        frames += sample::id3Frame("TPE1", std::string(1, '\0') + artist);
    }
    return sample::id3Tag(frames) + sample::mpegAudio(5000);
}

} // namespace sonarin
