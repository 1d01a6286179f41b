// SPDX-License-Identifier: MIT
#include "cli/showFiles.h"

#include "app/failureCause.h"
#include "app/shownFile.h"
#include "app/textOutput.h"
#include "cli/complaint.h"
#include "cli/endSignals.h"
#include "cli/fileNames.h"
#include "cli/jsonOutput.h"
#include "cli/orderedOutput.h"
#include "engine/fileEngine.h"
#include "platform/host/errorText.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <new>
#include <optional>
#include <string_view>
#include <sys/resource.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace sonarin {

namespace {

using Clock = std::chrono::steady_clock;

/// Whether the descriptor is a terminal that knows escape sequences.
bool isSmartTerminal(int descriptor) {
    // There is no second thread yet.
    const char* terminal = std::getenv("TERM"); // NOLINT(concurrency-mt-unsafe)
    return terminal != nullptr && std::string_view(terminal) != "dumb" && isatty(descriptor) == 1;
}

bool wantsColour() {
    const bool isUnwanted = std::getenv("NO_COLOR") != nullptr; // NOLINT(concurrency-mt-unsafe)
    return !isUnwanted && isSmartTerminal(STDOUT_FILENO);
}

/// The printing of one call's files by one thread or several: each takes the next name as soon as it is done
/// with one, so that a slow file holds up nobody but itself.
class Showing {
public:
    explicit Showing(const CommandLine& call)
        : call_(call), names_(call), out_(STDOUT_FILENO), err_(STDERR_FILENO),
          output_(out_, err_, !isJson(), isatty(STDOUT_FILENO) == 1 && showsProgress_),
          inColour_(!isJson() && wantsColour()) {}

    Showing(const Showing&) = delete;
    Showing& operator=(const Showing&) = delete;
    ~Showing() { end(); }

    int run() {
        holdBackWriteSignals();
        if (call_.jobs > 1) {
            getHelp();
        } else if (showsProgress_) {
            tendAlone();
        }
        work(true);
        end();
        output_.end();
        if (notedEndSignal() != 0) {
            endBySignal(notedEndSignal());
        }
        if (output_.errorNumber() == EPIPE) {
            endByPipeSignal();
        }
        if (const int error = output_.errorNumber(); error != 0) {
            complain(complaintOf((error == ENOMEM ? "" : "standard output: ") + hostErrorText(error)));
            return exitNotRead;
        }
        return allRead_ ? exitAllRead : exitNotRead;
    }

private:
    void end() {
        for (std::thread& helper : std::exchange(helpers_, {})) {
            helper.join();
        }
        stopTending();
    }

    [[nodiscard]] bool isJson() const { return call_.action == CommandLine::Action::showJson; }

    std::optional<FileName> nextName(std::uint64_t* turn) {
        const std::lock_guard lock(namesMutex_);
        if (notedEndSignal() != 0 || output_.errorNumber() != 0) {
            return std::nullopt;
        }
        std::optional<FileName> name = names_.next();
        *turn = name ? turns_++ : turns_;
        return name;
    }

    /// Reads one file after the other until there is none left.
    void work(bool maySeekHelp) try {
        TurnSink sink(output_);
        OutputBuffer out(sink);
        std::uint64_t turn = 0;
        while (const auto name = nextName(&turn)) {
            sink.begin(turn);
            const std::string complaint = show(*name, out);
            output_.finish(turn, out.takeAll(), complaint);
            if (!complaint.empty()) {
                allRead_ = false;
            }
            if (maySeekHelp && turn == fewFiles) {
                getHelp();
            }
        }
    } catch (const std::bad_alloc&) {
        output_.giveUp(ENOMEM);
    }

    /// Prints one file's facts; answers the complaint about it, if there is one.
    [[nodiscard]] std::string show(const FileName& name, OutputBuffer& out) const {
        if (!name.problem.empty()) {
            return complaintAbout(feMakePathText(name.path), name.problem);
        }
        const ShownFile file = readShownFile(feMakePathText(name.path), readOptions(call_, Pictures::find));
        if (isJson()) {
            appendJson(out, file);
        } else {
            appendText(out, file.path, file.attributes, file.isRead() ? &file.record : nullptr, inColour_);
        }
        return file.isRead() ? std::string() : complaintAbout(file.path, failureCause(file.path, file.type));
    }

    // --- when there are many files ------------------------------------------------------------------

    /// How many files there is reason to read at once: each takes a descriptor.
    [[nodiscard]] unsigned threadsToUse() const {
        constexpr rlim_t otherDescriptors = 16;
        rlimit open{};
        getrlimit(RLIMIT_NOFILE, &open);
        const rlim_t most = open.rlim_cur > otherDescriptors ? open.rlim_cur - otherDescriptors : 1;
        const std::size_t files = call_.nameList || call_.recursive ? call_.jobs : call_.files.size();
        const std::size_t wanted =
            call_.jobs != 0 ? std::min<std::size_t>(call_.jobs, files) : std::thread::hardware_concurrency();
        return static_cast<unsigned>(std::min<rlim_t>(wanted, most));
    }

    /// Starts what looks after the output, and more threads where that was asked for or left open; this one
    /// is the first.
    void getHelp() {
        try {
            startTending();
            const unsigned wanted = call_.jobs == 1 ? 1 : threadsToUse();
            while (helpers_.size() + 1 < wanted) {
                helpers_.emplace_back([this] { work(false); });
            }
        } catch (const std::system_error&) {
            // The system has no more threads: those that there are do it.
        }
    }

    void tendAlone() {
        try {
            startTending();
        } catch (const std::system_error&) {
            // No thread to spare: nobody sees how far it is.
        }
    }

    /// Starts what looks after the output while the files are being read, however long one takes.
    void startTending() {
        if (tender_.joinable()) {
            return;
        }
        tender_ = std::thread([this] { tend(); });
        noteEndSignals();
        output_.gather(isatty(STDOUT_FILENO) != 1);
    }

    void tend() {
        using namespace std::chrono_literals;
        std::unique_lock lock(tenderMutex_);
        while (!tenderEnds_.wait_for(lock, 100ms, [this] { return isDone_; })) {
            if (notedEndSignal() != 0) {
                std::this_thread::sleep_for(100ms); // time to write a line to its end
                output_.tryEnd();
                endBySignal(notedEndSignal());
            }
            if (output_.errorNumber() == EPIPE) {
                output_.tryEnd();
                endByPipeSignal(); // whoever waits for the next name would notice much later
            }
            output_.tend(progress());
        }
    }

    void stopTending() {
        if (tender_.joinable()) {
            {
                const std::lock_guard lock(tenderMutex_);
                isDone_ = true;
            }
            tenderEnds_.notify_all();
            tender_.join();
        }
    }

    /// "12000 files, 5300 a second, 42%"; nothing while the work may soon be done.
    [[nodiscard]] std::string progress() const {
        const std::chrono::duration<double> elapsed = Clock::now() - start_;
        if (!showsProgress_ || elapsed.count() < 1.0) {
            return {};
        }
        const auto files = output_.finished();
        const auto rate = static_cast<std::uint64_t>(static_cast<double>(files) / elapsed.count());
        std::string line = std::to_string(files) + " files, " + std::to_string(rate) + " a second";
        if (const auto share = names_.share()) {
            line += ", " + std::to_string(static_cast<int>(*share * 100)) + "%";
        }
        return line;
    }

    /// They take half a millisecond, about as long as two threads take to start and end.
    static constexpr std::uint64_t fewFiles = 64;

    const CommandLine& call_;
    const bool showsProgress_ = isSmartTerminal(STDERR_FILENO);
    const Clock::time_point start_ = Clock::now();
    std::mutex namesMutex_; ///< guards names_ and turns_
    FileNames names_;
    std::uint64_t turns_ = 0;
    FileSink out_;
    FileSink err_;
    OrderedOutput output_;
    bool inColour_;
    std::atomic<bool> allRead_ = true;
    std::vector<std::thread> helpers_;
    std::thread tender_;
    std::mutex tenderMutex_; ///< guards isDone_
    std::condition_variable tenderEnds_;
    bool isDone_ = false;
};

} // namespace

int showFiles(const CommandLine& call) {
    return Showing(call).run();
}

} // namespace sonarin
