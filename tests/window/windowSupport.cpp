// SPDX-License-Identifier: MIT
#include "tests/window/windowSupport.h"

#include "app/window/cocoaUtils.h"
#include "engine/fileEngine.h"
#include "platform/desktop/fileUri.h"
#include "tests/support/sampleBytes.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QElapsedTimer>
#include <QFile>
#include <QSettings>
#include <QStandardPaths>
#include <QThread>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

namespace sonarin {

namespace {

std::unique_ptr<ChildProcess> daemon;
std::string programFolder; // NOLINT

std::vector<std::string> commandLine(const std::string& program, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), program);
    return arguments;
}

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

void waitForFile(const AppController& controller) {
    (void)waitFor([&] { return !controller.isReading(); }, 30000);
}

void TestBus::start() {
    static const TestFolder folder;
    const QByteArray address = "unix:path=" + QByteArray::fromStdString(folder.path("bus"));
    QFile::remove(QString::fromStdString(folder.path("bus")));
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    daemon = std::make_unique<ChildProcess>(std::vector<std::string>{"dbus-daemon", "--session", "--nofork",
                                                                     "--nopidfile", "--print-address",
                                                                     "--address=" + address.toStdString()},
                                            ChildProcess::Errors::hidden);
    if (daemon->read().empty()) {
        throw std::runtime_error("dbus-daemon does not start");
    }
}

void TestBus::stop() {
    daemon.reset();
}

void TestBus::signal(int number) {
    daemon->signal(number);
}

bool isOnTheBus() {
    const QDBusConnection bus =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("look"));
    const bool isThere = bus.interface()->isServiceRegistered(QStringLiteral("org.sonarin.Sonarin"));
    QDBusConnection::disconnectFromBus(QStringLiteral("look"));
    return isThere;
}

BusProgram::BusProgram(const std::vector<std::string>& names)
    : process_(commandLine(SONARIN_PUBLISHER, names)) {
    if (process_.read().empty()) {
        throw std::runtime_error("the publisher does not start");
    }
}

void BusProgram::tell(const QString& line) {
    process_.write(line.toStdString() + '\n');
    (void)process_.read();
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
    return std::stoi(process_.read());
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
    installScript(home, "category", "%f\nMimeType=audio/mpeg;\nCategories=Audio;AudioVideoEditing;\n");
    installScript(home, "keyword", "%f\nMimeType=audio/mpeg;\nKeywords=music;ID3;\n");
    installScript(home, "player", "%f\nMimeType=audio/mpeg;\nKeywords=music;\nCategories=Audio;Player;\n");
    installScript(home, "nosound", "%f\nMimeType=text/plain;\nKeywords=tag;\n");
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

QString preferencesFile() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/sonarin/sonarin.conf");
}

void forgetPreferences() {
    QSettings(preferencesFile(), QSettings::IniFormat).clear();
}

QString pathOf(const std::string& path) {
    return cocoaUtils::stringFromText(feMakePathText(path));
}

QString fileUri(const std::string& path) {
    return fileUriOfPath(QByteArray::fromStdString(path));
}

std::string songFile(const std::string& title, const std::string& artist) {
    std::string frames = sample::textFrame("TIT2", title);
    if (!artist.empty()) {
        frames += sample::textFrame("TPE1", artist);
    }
    return sample::id3Tag(frames) + sample::mpegAudio(5000);
}

} // namespace sonarin
