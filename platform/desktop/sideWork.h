// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace sonarin {

/// Work that may hang in the system (a share that has gone away, a disk that spins up) and so is done beside
/// the window.
///
/// Which thread may touch what: the window, its controller and all that they own belong to the thread that
/// runs the event loop. A piece of work runs in one of a few other threads and touches only what it was
/// given: things that it shares with nobody until it has ended (then they are the window's), or that are
/// atomic. It never touches a widget, the controller or a QObject. What it ended with is taken over by its
/// second function, which runs in the window's thread.
///
/// The threads are never waited for. One that hangs is left behind: it ends by itself when the system
/// answers, or with the program.
class SideWork : public QObject {
    Q_OBJECT

public:
    /// One piece of work, as its giver knows it.
    struct Job;
    using JobRef = std::shared_ptr<Job>;

    explicit SideWork(QObject* parent = nullptr);
    SideWork(const SideWork&) = delete;
    SideWork& operator=(const SideWork&) = delete;
    /// Work that has not begun is forgotten.
    ~SideWork() override;

    /// Has `work` run in another thread, and then `done` in this one, also when `work` throws. `path` is what
    /// the work may hang on: two pieces run at a time for one file system, and one for another folder of it
    /// as long as fewer than six run; eight in all. What is more waits its turn.
    JobRef start(std::string path, std::function<void()> work, std::function<void()> done);

    /// Work that nobody wants any more: does not begin if it has not, and its `done` is not called.
    void forget(const JobRef& job);

    /// Whether the work cannot begin before other work has ended.
    [[nodiscard]] bool mustWaitItsTurn(const JobRef& job) const;

    /// How long somebody waits who would rather go on with the result than without.
    enum class Patience : std::uint8_t {
        little, ///< 5 ms, with the window standing still
        usual   ///< 100 ms, of which the window stands still for 20; little within another such wait
    };
    /// Waits until the condition holds, which something's `done` is to bring about. False when it does not.
    bool waitUntil(const std::function<bool()>& condition, Patience patience = Patience::usual);
    /// Whether that is going on.
    [[nodiscard]] bool isWaiting() const { return isWaiting_; }

    /// Whether all threads of all objects of this class have ended, or do so within that time. The program
    /// must not tidy up what they may still use.
    static bool haveThreadsEnded(std::chrono::milliseconds patience);

signals:
    /// Some work has ended, and its `done` was called.
    void ended();

private:
    struct Shared;
    static void startThread(const std::shared_ptr<Shared>& shared);
    static void runThread(const std::shared_ptr<Shared>& shared);
    void takeEnded();
    void waitUndisturbed(const std::function<bool()>& condition, std::chrono::milliseconds time);

    std::shared_ptr<Shared> shared_;
    bool isWaiting_ = false;
};

} // namespace sonarin
