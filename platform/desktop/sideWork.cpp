// SPDX-License-Identifier: MIT
#include "platform/desktop/sideWork.h"

#include "platform/host/fileDescriptor.h"
#include "platform/host/mountPoints.h"

#include <QEventLoop>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <sys/eventfd.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace sonarin {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t mostThreads = 8;
constexpr std::ptrdiff_t mostOnOneFileSystem = 2;
constexpr std::size_t mostByFolders = 6; ///< so that other file systems have something left

std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

/// How many threads there are.
struct ThreadCount {
    std::mutex mutex;
    std::condition_variable noneLeft;
    int threads = 0;

    void add(int number) {
        const std::lock_guard lock(mutex);
        threads += number;
        if (threads == 0) {
            noneLeft.notify_all();
        }
    }
};

/// Never destroyed: a thread that was left behind may end after everything else.
ThreadCount& threadCount() {
    static auto* count = new ThreadCount; // NOLINT(*-owning-memory)
    return *count;
}

} // namespace

struct SideWork::Job {
    std::string path;
    std::function<void()> work; ///< the thread's, once it has begun
    std::function<void()> done; ///< the window's; none when it is not to be called
};

/// What the window and the threads share, for as long as one of them is there.
struct SideWork::Shared {
    const FileDescriptor wake{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)}; ///< readable when some work has ended
    std::mutex mutex;                                                  ///< guards all that follows
    std::condition_variable canBegin;
    std::condition_variable hasEnded;
    std::deque<JobRef> waiting;
    std::vector<JobRef> running;
    std::deque<JobRef> ended; ///< whose `done` is to be called
    std::size_t threads = 0;
    std::size_t idleThreads = 0;
    bool isClosed = false;

    /// The first that may begin; null when none may.
    JobRef takeNext() {
        const std::vector<std::string> mountPoints =
            running.empty() || waiting.empty() ? std::vector<std::string>() : hostMountPoints();
        const auto next = std::find_if(waiting.begin(), waiting.end(),
                                       [&](const JobRef& job) { return mayBegin(*job, mountPoints); });
        if (next == waiting.end()) {
            return nullptr;
        }
        JobRef job = *next;
        waiting.erase(next);
        running.push_back(job);
        return job;
    }

    /// What a link leads to is not known, so that one folder is not taken for all of its file system.
    [[nodiscard]] bool mayBegin(const Job& job, const std::vector<std::string>& mountPoints) const {
        const std::string mountPoint = mountPointOf(job.path, mountPoints);
        const auto neighbours = std::count_if(running.begin(), running.end(), [&](const JobRef& other) {
            return mountPointOf(other->path, mountPoints) == mountPoint;
        });
        const bool isAlone = std::none_of(running.begin(), running.end(), [&](const JobRef& other) {
            return folderOf(other->path) == folderOf(job.path);
        });
        return neighbours < mostOnOneFileSystem || (isAlone && running.size() < mostByFolders);
    }
};

SideWork::SideWork(QObject* parent) : QObject(parent), shared_(std::make_shared<Shared>()) {
    auto* notifier = new QSocketNotifier(shared_->wake.get(), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &SideWork::takeEnded);
}

SideWork::~SideWork() {
    const std::lock_guard lock(shared_->mutex);
    shared_->isClosed = true;
    shared_->waiting.clear();
    shared_->ended.clear();
    for (const JobRef& job : shared_->running) {
        job->done = nullptr;
    }
    shared_->canBegin.notify_all();
}

SideWork::JobRef SideWork::start(std::string path, std::function<void()> work, std::function<void()> done) {
    auto job = std::make_shared<Job>(Job{std::move(path), std::move(work), std::move(done)});
    const std::lock_guard lock(shared_->mutex);
    shared_->waiting.push_back(job);
    // Some that wait may have to go on waiting: both the idle thread and a new one look what may begin.
    shared_->canBegin.notify_one();
    if (shared_->waiting.size() > shared_->idleThreads && shared_->threads < mostThreads) {
        startThread(shared_);
    }
    return job;
}

void SideWork::startThread(const std::shared_ptr<Shared>& shared) {
    try {
        std::thread([shared] { runThread(shared); }).detach();
        ++shared->threads;
        threadCount().add(1);
    } catch (const std::system_error&) {
        return; // a thread that there is will take the work over
    }
}

void SideWork::forget(const JobRef& job) {
    const std::lock_guard lock(shared_->mutex);
    job->done = nullptr;
    std::erase(shared_->waiting, job);
}

/// One idle thread is enough for what comes next.
void SideWork::runThread(const std::shared_ptr<Shared>& shared) {
    std::unique_lock lock(shared->mutex);
    while (!shared->isClosed) {
        JobRef job = shared->takeNext();
        if (!job && shared->idleThreads > 0) {
            break;
        }
        if (!job) {
            ++shared->idleThreads;
            shared->canBegin.wait(lock);
            --shared->idleThreads;
            continue;
        }
        lock.unlock();
        try {
            job->work();
        } catch (const std::exception&) {
            // Out of memory: what the work has not done stays undone.
        }
        job->work = nullptr;
        lock.lock();
        std::erase(shared->running, job);
        if (job->done) {
            shared->ended.push_back(std::move(job));
            shared->hasEnded.notify_all();
            (void)eventfd_write(shared->wake.get(), 1);
        }
    }
    --shared->threads;
    lock.unlock();
    threadCount().add(-1);
}

/// One at a time: the window may stay in what is called, as in an alert, and take the next from there.
void SideWork::takeEnded() {
    std::function<void()> done;
    {
        const std::lock_guard lock(shared_->mutex);
        if (!shared_->ended.empty()) {
            done = std::exchange(shared_->ended.front()->done, nullptr);
            shared_->ended.pop_front();
        }
        if (shared_->ended.empty()) {
            eventfd_t ignored = 0;
            (void)eventfd_read(shared_->wake.get(), &ignored);
        }
    }
    if (done) {
        done();
    }
    emit ended();
}

bool SideWork::mustWaitItsTurn(const JobRef& job) const {
    const std::lock_guard lock(shared_->mutex);
    const bool isWaiting =
        std::find(shared_->waiting.begin(), shared_->waiting.end(), job) != shared_->waiting.end();
    return isWaiting && !shared_->running.empty() &&
           (shared_->running.size() == mostThreads || !shared_->mayBegin(*job, hostMountPoints()));
}

bool SideWork::waitUntil(const std::function<bool()>& condition, Patience patience) {
    constexpr auto little = 5ms;
    constexpr auto undisturbed = 20ms;
    constexpr auto withEvents = 80ms;
    const bool isPatient = patience == Patience::usual && !isWaiting_;
    waitUndisturbed(condition, isPatient ? undisturbed : little);
    if (condition() || !isPatient) {
        return condition();
    }
    QEventLoop loop;
    connect(this, &SideWork::ended, &loop, [&] {
        if (condition()) {
            loop.quit();
        }
    });
    QTimer limit;
    limit.callOnTimeout(&loop, &QEventLoop::quit);
    limit.start(withEvents);
    isWaiting_ = true;
    loop.exec();
    isWaiting_ = false;
    return condition();
}

void SideWork::waitUndisturbed(const std::function<bool()>& condition, std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (!condition()) {
        {
            std::unique_lock lock(shared_->mutex);
            if (!shared_->hasEnded.wait_until(lock, end, [this] { return !shared_->ended.empty(); })) {
                return;
            }
        }
        takeEnded();
    }
}

bool SideWork::haveThreadsEnded(std::chrono::milliseconds patience) {
    ThreadCount& count = threadCount();
    std::unique_lock lock(count.mutex);
    return count.noneLeft.wait_for(lock, patience, [&] { return count.threads == 0; });
}

} // namespace sonarin

#include "moc_sideWork.cpp"
