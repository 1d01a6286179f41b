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
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace sonarin {

namespace {

std::unique_ptr<QProcess> daemon;
std::string programFolder; // NOLINT

void installScript(const TestFolder& home, const std::string& name, const std::string& entry) {
    const std::string script =
        home.write("programs/" + name, "#!/bin/sh\nprintf '%s\\n' \"$@\" >> \"$0.log\"\n");
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    home.write("data/applications/" + name + ".desktop",
               "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=\"" + script + "\" " + entry);
}

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
    tell((QStringList{QStringLiteral("as"), QStringLiteral("Selected")} + uris).join(u' '));
    tell(QStringLiteral("x ActiveSince %1").arg(activeSince));
}

int BusProgram::timesAsked() {
    process_.write("asked\n");
    process_.waitForReadyRead(10000);
    return process_.readAll().simplified().toInt();
}

void BusProgram::signal(int number) const {
    kill(static_cast<pid_t>(process_.processId()), number);
}

void installPrograms(const TestFolder& home) {
    namespace fs = std::filesystem;
    for (const char* name : {"programs", "config", "data", "data/applications"}) {
        fs::create_directories(home.path(name));
    }
    programFolder = home.path("programs/");
    installScript(home, "cataloguer", "%u\nMimeType=x-scheme-handler/shelvix;\n");
    installScript(home, "browser", "%u\nMimeType=x-scheme-handler/http;x-scheme-handler/https;\n");
    installScript(home, "tagger", "--edit %f\nX-HFS-Creator=Abcd;Tagr\n");
    installScript(home, "rage", "%U\nNoDisplay=true\nX-HFS-Creator=0x4D6564A8\n");
    installScript(home, "gone", "%f\nTryExec=/nowhere/gone\nX-HFS-Creator=id3x\n");
    installScript(home, "hidden", "%f\nHidden=true\nX-HFS-Creator=id3x\n");
    home.write("config/mimeapps.list", "[Default Applications]\nx-scheme-handler/shelvix=cataloguer.desktop\n"
                                       "x-scheme-handler/http=browser.desktop\n"
                                       "x-scheme-handler/https=browser.desktop\n");
}

std::string calledWith(const std::string& script, int milliseconds) {
    const std::string log = programFolder + script + ".log";
    if (!waitFor([&] { return std::filesystem::exists(log) && std::filesystem::file_size(log) > 0; },
                 milliseconds)) {
        return {};
    }
    runFor(50);
    std::ifstream file(log);
    std::string lines((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    std::filesystem::remove(log);
    return lines;
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
