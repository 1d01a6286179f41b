// SPDX-License-Identifier: MIT
#pragma once

#include "app/window/AppController.h"
#include "platform/desktop/fileUri.h"
#include "tools/childProcess.h"
#include "tools/testFolder.h"

#include <map>

/// What the tests of the window share: a bus of their own, programs on it, a disk that is slow, and sources
/// that answer what the test says.
namespace sonarin {

namespace fs = std::filesystem;

/// Runs the event loop until the condition holds; false when it does not within that time.
bool waitFor(const std::function<bool()>& condition, int milliseconds = 5000);
/// Runs the event loop for that time.
void runFor(int milliseconds);

/// Waits until the file chosen last has been read, which a busy machine may leave to go on by itself.
void waitForFile(const AppController& controller);

QString pathOf(const std::string& path);
inline QString fileUri(const std::string& path) {
    return fileUriOfPath(QByteArray::fromStdString(path));
}

/// An MPEG file with those texts in its tag.
std::string songFile(const std::string& title, const std::string& artist = "");

/// The session bus of this test program. The address stays the same when it is started again.
extern std::unique_ptr<ChildProcess> testBus;
void startTestBus();

/// Whether a Sonarin is on the bus.
bool isOnTheBus();

/// Another program on the bus, under one or more names with a blank between them.
class BusProgram : public ChildProcess {
public:
    explicit BusProgram(const std::string& names) : ChildProcess("'" SONARIN_PUBLISHER "' " + names) {
        (void)read(); // until it has its names
    }
    /// Tells it a property, in the words of tools/publisher.cpp; answers its answer.
    std::string tell(const QString& line) {
        write(line.toStdString() + '\n');
        return read();
    }
    void play(const std::string& path, const QString& status = QStringLiteral("Playing")) {
        tell("m xesam:url " + fileUri(path));
        tell("s PlaybackStatus " + status);
    }
    void select(const QStringList& uris, int activeSince) {
        tell((QStringList{"as", "Selected"} + uris).join(u' '));
        tell("x ActiveSince " + QString::number(activeSince));
    }
};

/// A disk whose files are slow by their names, as tools/slow_disk.py says. What hangs on it goes on
/// when its owner goes.
class SlowDisk {
public:
    SlowDisk() {
        const std::string place = folder_.path("the disk");
        fs::create_directories(behind(""));
        fs::create_directory(place);
        server_ =
            std::make_unique<ChildProcess>("'" SONARIN_SLOW_DISK "' '" + behind("") + "' '" + place + "'");
        isThere = !server_->read().empty();
    }
    ~SlowDisk() {
        server_.reset();
        ChildProcess("fusermount3 -uz '" + folder_.path("the disk") + "' 2>/dev/null").exitCode();
    }

    /// Puts a file onto the disk; answers its path there.
    [[nodiscard]] std::string write(const std::string& name, const std::string& content) const {
        (void)folder_.write("disk/" + name, content);
        return folder_.path("the disk/" + name);
    }
    [[nodiscard]] std::string song(const std::string& name, const std::string& title) const {
        return write(name, songFile(title, "Ann"));
    }
    /// Where its files are, for who does not want to wait.
    [[nodiscard]] std::string behind(const std::string& name) const { return folder_.path("disk/" + name); }
    /// Whatever hangs goes on.
    void answer() const { (void)folder_.write("disk/answer", ""); }
    void hangAgain() const { fs::remove(behind("answer")); }

    bool isThere = false; ///< stays so where the system lets nobody make such a disk

private:
    TestFolder folder_;
    std::unique_ptr<ChildProcess> server_;
};

/// Answers what the test says.
class FixedSources final : public SelectionSources {
public:
    void ask(Question /*question*/) override { ++questions; }
    void forget() override {}
    Paths answer(Question question) override { return answers[question]; }
    [[nodiscard]] bool isPlayerRunning() const override { return isRunning; }
    [[nodiscard]] Teller teller(Question /*question*/) const override { return who; }

    std::map<Question, Paths> answers;
    bool isRunning = true;
    Teller who;
    int questions = 0;
};

/// Puts desktop entries of scripts into the user's data folder, which is `home`/data: one that takes the
/// cataloguer's URLs, and tag editors. Each writes what it is called with into a file.
void installPrograms(const TestFolder& home);
/// What the script of that name was called with since the last time, one argument a line; waits for the first
/// call.
std::string calledWith(const std::string& script, int milliseconds = 5000);

} // namespace sonarin
