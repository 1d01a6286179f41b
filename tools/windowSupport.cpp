// SPDX-License-Identifier: MIT
#include "tools/windowSupport.h"

#include "app/window/cocoaUtils.h"
#include "tools/sampleBytes.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDeadlineTimer>

namespace sonarin {

std::unique_ptr<ChildProcess> testBus;

bool waitFor(const std::function<bool()>& condition, int milliseconds) {
    const QDeadlineTimer end(milliseconds);
    bool holds = condition();
    while (!holds && !end.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        usleep(1000);
        holds = condition();
    }
    return holds;
}

void runFor(int milliseconds) {
    (void)waitFor([] { return false; }, milliseconds);
}

void waitForFile(const AppController& controller) {
    (void)waitFor([&] { return !controller.isReading(); }, 30000);
}

QString pathOf(const std::string& path) {
    return cocoaUtils::stringFromText(feMakePathText(path));
}

std::string songFile(const std::string& title, const std::string& artist) {
    return sample::id3Tag(sample::textFrame("TIT2", title) +
                          (artist.empty() ? "" : sample::textFrame("TPE1", artist))) +
           sample::mpegAudio(5000);
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

void installPrograms(const TestFolder& home) {
    for (const auto& [name, entry] : std::initializer_list<std::pair<std::string, std::string>>{
             {"cataloguer", "%u\nMimeType=x-scheme-handler/shelvix;\n"},
             {"browser", "%u\nMimeType=x-scheme-handler/http;x-scheme-handler/https;\n"},
             {"tagger", "--edit %f\nX-HFS-Creator=Abcd;Tagr\n"},
             {"rage", "%U\nNoDisplay=true\nX-HFS-Creator=0x4D6564A8\n"},
             {"category", "%f\nMimeType=audio/mpeg;\nCategories=Audio;AudioVideoEditing;\n"},
             {"keyword", "%f\nMimeType=audio/mpeg;\nKeywords=music;ID3;\n"},
             {"player", "%f\nMimeType=audio/mpeg;\nKeywords=music;\nCategories=Audio;Player;\n"},
             {"nosound", "%f\nMimeType=text/plain;\nKeywords=tag;\n"},
             {"gone", "%f\nTryExec=/nowhere/gone\nX-HFS-Creator=id3x\n"},
             {"hidden", "%f\nHidden=true\nX-HFS-Creator=id3x\n"}}) {
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
    std::ifstream lines(log);
    fs::remove(log);
    return {std::istreambuf_iterator<char>(lines), {}};
}

} // namespace sonarin
