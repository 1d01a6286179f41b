// SPDX-License-Identifier: MIT
#include "tests/window/windowSupport.h"

#include "app/window/cocoaUtils.h"
#include "engine/fileEngine.h"
#include "platform/desktop/fileUri.h"
#include "tests/support/sampleBytes.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QElapsedTimer>
#include <QSettings>
#include <QThread>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace sonarin {

std::unique_ptr<ChildProcess> testBus;

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

void startTestBus() {
    static const TestFolder folder;
    const std::string address = "unix:path=" + folder.path("bus");
    fs::remove(folder.path("bus"));
    qputenv("DBUS_SESSION_BUS_ADDRESS", QByteArray::fromStdString(address));
    testBus = std::make_unique<ChildProcess>(
        "dbus-daemon --session --nofork --nopidfile --print-address --address=" + address + " 2>/dev/null");
    if (testBus->read().empty()) {
        throw std::runtime_error("dbus-daemon does not start");
    }
}

bool isOnTheBus() {
    return SessionBus().connection().interface()->isServiceRegistered("org.sonarin.Sonarin");
}

BusProgram::BusProgram(const std::string& names) : ChildProcess("'" SONARIN_PUBLISHER "' " + names) {
    if (read().empty()) {
        throw std::runtime_error("the publisher does not start");
    }
}

std::string BusProgram::tell(const QString& line) {
    write(line.toStdString() + '\n');
    return read();
}

void BusProgram::play(const std::string& path, const QString& status) {
    tell("m xesam:url " + fileUri(path));
    tell("s PlaybackStatus " + status);
}

void BusProgram::select(const QStringList& uris, int activeSince) {
    tell((QStringList{"as", "Selected"} + uris).join(u' '));
    tell("x ActiveSince " + QString::number(activeSince));
}

SlowDisk::SlowDisk() {
    fs::create_directories(behind("folder"));
    fs::create_directory(folder_.path("the disk"));
    server_ = std::make_unique<ChildProcess>("'" SONARIN_SLOW_DISK "' '" + behind("") + "' '" +
                                             folder_.path("the disk") + "'");
    isThere = !server_->read().empty();
}

SlowDisk::~SlowDisk() {
    server_.reset();
    ChildProcess("fusermount3 -uz '" + folder_.path("the disk") + "' 2>/dev/null").exitCode();
}

std::string SlowDisk::write(const std::string& name, const std::string& content) const {
    (void)folder_.write("disk/" + name, content);
    return folder_.path("the disk/" + name);
}

std::string SlowDisk::song(const std::string& name, const std::string& title) const {
    return write(name, songFile(title, "Ann"));
}

void installPrograms(const TestFolder& home) {
    for (const char* name : {"programs", "config", "data", "data/applications"}) {
        fs::create_directories(home.path(name));
    }
    const std::vector<std::pair<std::string, std::string>> entries = {
        {"cataloguer", "%u\nMimeType=x-scheme-handler/shelvix;\n"},
        {"browser", "%u\nMimeType=x-scheme-handler/http;x-scheme-handler/https;\n"},
        {"tagger", "--edit %f\nX-HFS-Creator=Abcd;Tagr\n"},
        {"rage", "%U\nNoDisplay=true\nX-HFS-Creator=0x4D6564A8\n"},
        {"category", "%f\nMimeType=audio/mpeg;\nCategories=Audio;AudioVideoEditing;\n"},
        {"keyword", "%f\nMimeType=audio/mpeg;\nKeywords=music;ID3;\n"},
        {"player", "%f\nMimeType=audio/mpeg;\nKeywords=music;\nCategories=Audio;Player;\n"},
        {"nosound", "%f\nMimeType=text/plain;\nKeywords=tag;\n"},
        {"gone", "%f\nTryExec=/nowhere/gone\nX-HFS-Creator=id3x\n"},
        {"hidden", "%f\nHidden=true\nX-HFS-Creator=id3x\n"}};
    for (const auto& [name, entry] : entries) {
        const std::string script =
            home.write("programs/" + name, "#!/bin/sh\nprintf '%s\\n' \"$@\" >> \"$0.log\"\n");
        fs::permissions(script, fs::perms::owner_all);
        home.write("data/applications/" + name + ".desktop",
                   "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=\"" + script + "\" " + entry);
    }
    home.write("config/mimeapps.list", "[Default Applications]\nx-scheme-handler/shelvix=cataloguer.desktop\n"
                                       "x-scheme-handler/http=browser.desktop\n"
                                       "x-scheme-handler/https=browser.desktop\n");
}

std::string calledWith(const std::string& script, int milliseconds) {
    const std::string log = qgetenv("HOME").toStdString() + "/programs/" + script + ".log";
    if (waitFor([&] { return fs::exists(log) && fs::file_size(log) > 0; }, milliseconds)) {
        runFor(50);
    }
    std::ostringstream lines;
    lines << std::ifstream(log).rdbuf();
    fs::remove(log);
    return lines.str();
}

QString preferencesFile() {
    return qEnvironmentVariable("XDG_CONFIG_HOME") + "/sonarin/sonarin.conf";
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
    return sample::id3Tag(sample::textFrame("TIT2", title) +
                          (artist.empty() ? "" : sample::textFrame("TPE1", artist))) +
           sample::mpegAudio(5000);
}

} // namespace sonarin
