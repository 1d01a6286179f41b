// SPDX-License-Identifier: MIT
#pragma once

#include "app/outputBuffer.h"
#include "cli/spillFile.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace sonarin {

/// Puts what several threads print into one order: each prints for a turn, and turns come out by their
/// numbers, all of which must be taken. What comes too early is held: a few MiB in memory, more in a
/// temporary file. Only who is twenty thousand turns ahead, or finds no room on the disk, waits.
class OrderedOutput {
public:
    /// Both sinks must outlive this. With `blankLineBetween`, a blank line stands between the outputs of two
    /// turns; `sharesTerminal` says that both sinks are shown on one terminal.
    OrderedOutput(OutputSink& out, OutputSink& err, bool blankLineBetween, bool sharesTerminal);

    /// Prints a part of a turn.
    void append(std::uint64_t turn, std::string_view bytes);
    /// Prints the last part of a turn, and to the error output, behind it, a complaint if there is one.
    void finish(std::uint64_t turn, std::string_view bytes, const std::string& complaint);

    /// Whether output is kept for a while (see tend) instead of written with every turn.
    void gather(bool isGathering);
    /// Writes what was gathered, and `progress` as the last line of the error output's terminal, in place of
    /// an earlier one. Does nothing when somebody is printing.
    void tend(std::string_view progress);

    /// Writes what was gathered and takes the progress line away; the second does not wait for who is
    /// printing.
    void end();
    void tryEnd();

    /// Not 0 as soon as the output can take no more: the host's number of the error.
    [[nodiscard]] int errorNumber() const noexcept { return errorNumber_; }
    /// Makes it so, for everybody.
    void giveUp(int errorNumber);
    /// How many turns were finished, in order or not.
    [[nodiscard]] std::uint64_t finished() const noexcept { return finished_; }

private:
    struct Turn {
        std::vector<SpillFile::Place> spilled; ///< comes before the bytes
        std::string bytes;
        std::string complaint;
        bool isFinished = false;
        bool hasBegun = false; ///< some of it was printed
    };
    static constexpr std::size_t mostHeld = std::size_t{4} << 20U;
    static constexpr std::uint64_t mostAhead = 20000;

    void wait(std::unique_lock<std::mutex>& lock, std::uint64_t turn);
    Turn& turnOf(std::uint64_t turn);
    void take(std::unique_lock<std::mutex>& lock, std::uint64_t turn, std::string_view bytes);
    bool hold(std::uint64_t turn, std::string_view bytes);
    void beginPrinting(Turn& turn);
    void printHeld(Turn& turn);
    void print(Turn& turn, std::string_view bytes);
    void complain(const std::string& complaint);
    void hideProgress();
    void flush();
    void noteError();

    std::atomic<int> errorNumber_ = 0;
    std::atomic<std::uint64_t> finished_ = 0;
    std::mutex mutex_; ///< guards everything below
    std::condition_variable moved_;
    OutputBuffer out_;
    OutputSink& err_;
    bool blankLineBetween_;
    bool sharesTerminal_;
    bool isGathering_ = false;
    bool hasPrinted_ = false;
    bool showsProgress_ = false;
    std::deque<Turn> turns_; ///< from next_ on, those that have said something
    std::uint64_t next_ = 0;
    SpillFile spillFile_;
    std::size_t held_ = 0;       ///< bytes in turns_, but for
    std::size_t complaints_ = 0; ///< those of complaints
    std::size_t waiting_ = 0;
};

/// What one thread prints for one turn after the other: into its own buffer first.
class TurnSink final : public OutputSink {
public:
    explicit TurnSink(OrderedOutput& output) noexcept : output_(output) {}
    void begin(std::uint64_t turn) noexcept { turn_ = turn; }
    int write(std::string_view bytes) override {
        output_.append(turn_, bytes);
        return 0;
    }

private:
    OrderedOutput& output_;
    std::uint64_t turn_ = 0;
};

} // namespace sonarin
