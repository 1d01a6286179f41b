// SPDX-License-Identifier: MIT
#include "cli/orderedOutput.h"

#include <utility>

namespace sonarin {

OrderedOutput::OrderedOutput(OutputSink& out, OutputSink& err, bool blankLineBetween, bool sharesTerminal)
    : out_(out), err_(err), blankLineBetween_(blankLineBetween), sharesTerminal_(sharesTerminal) {}

void OrderedOutput::append(std::uint64_t turn, std::string_view bytes) {
    std::unique_lock lock(mutex_);
    take(lock, turn, bytes);
}

void OrderedOutput::finish(std::uint64_t turn, std::string_view bytes, const std::string& complaint) {
    std::unique_lock lock(mutex_);
    take(lock, turn, bytes);
    if (complaints_ + complaint.size() > mostHeld) {
        wait(lock, turn);
    }
    ++finished_;
    Turn& own = turnOf(turn);
    own.complaint = complaint;
    complaints_ += complaint.size();
    own.isFinished = true;
    for (; !turns_.empty() && turns_.front().isFinished; ++next_) {
        printHeld(turns_.front());
        complain(turns_.front().complaint);
        complaints_ -= turns_.front().complaint.size();
        turns_.pop_front();
    }
    if (turns_.empty()) {
        spillFile_.clear();
    } else {
        printHeld(turns_.front());
    }
    if (!isGathering_) {
        flush();
    }
    if (waiting_ > 0) {
        moved_.notify_all();
    }
}

/// Until it is the turn of who waits. Who is next never waits, so that the others come to an end as well.
void OrderedOutput::wait(std::unique_lock<std::mutex>& lock, std::uint64_t turn) {
    ++waiting_;
    moved_.wait(lock, [&] { return turn == next_ || errorNumber_ != 0; });
    --waiting_;
}

OrderedOutput::Turn& OrderedOutput::turnOf(std::uint64_t turn) {
    const auto index = static_cast<std::size_t>(turn - next_);
    if (turns_.size() <= index) {
        turns_.resize(index + 1);
    }
    return turns_[index];
}

void OrderedOutput::take(std::unique_lock<std::mutex>& lock, std::uint64_t turn, std::string_view bytes) {
    if (turn != next_ && hold(turn, bytes)) {
        return;
    }
    if (turn != next_) {
        wait(lock, turn);
    }
    if (turn != next_) {
        return; // there is nothing to wait for any more
    }
    Turn& own = turnOf(turn);
    printHeld(own);
    print(own, bytes);
}

/// Keeps a part of a turn that is not next; false when it is too far ahead, or there is no room.
bool OrderedOutput::hold(std::uint64_t turn, std::string_view bytes) {
    if (turn - next_ > mostAhead) {
        return false;
    }
    Turn& own = turnOf(turn);
    own.bytes += bytes;
    held_ += bytes.size();
    if (held_ <= mostHeld) {
        return true;
    }
    const auto place = spillFile_.keep(own.bytes);
    if (place) {
        own.spilled.push_back(*place);
        held_ -= own.bytes.size();
        std::string().swap(own.bytes); // gives its memory back
        return true;
    }
    own.bytes.resize(own.bytes.size() - bytes.size());
    held_ -= bytes.size();
    return false;
}

void OrderedOutput::printHeld(Turn& turn) {
    for (const SpillFile::Place& place : std::exchange(turn.spilled, {})) {
        beginPrinting(turn);
        if (const int error = spillFile_.copyTo(out_, place); error != 0) {
            errorNumber_ = error;
        }
    }
    print(turn, turn.bytes);
    held_ -= turn.bytes.size();
    turn.bytes.clear();
}

void OrderedOutput::print(Turn& turn, std::string_view bytes) {
    if (!bytes.empty()) {
        beginPrinting(turn);
        out_.append(bytes);
        noteError();
    }
}

void OrderedOutput::beginPrinting(Turn& turn) {
    if (sharesTerminal_) {
        hideProgress();
    }
    if (!turn.hasBegun && hasPrinted_ && blankLineBetween_) {
        out_.append('\n');
    }
    turn.hasBegun = true;
    hasPrinted_ = true;
}

void OrderedOutput::complain(const std::string& complaint) {
    if (complaint.empty()) {
        return;
    }
    flush();
    hideProgress();
    (void)err_.write(complaint);
}

void OrderedOutput::hideProgress() {
    if (showsProgress_) {
        (void)err_.write("\r\x1b[K"); // ECMA-48: erase in line
        showsProgress_ = false;
    }
}

void OrderedOutput::flush() {
    if (!out_.isEmpty()) {
        out_.flush();
        noteError();
    }
}

void OrderedOutput::gather(bool isGathering) {
    const std::lock_guard lock(mutex_);
    isGathering_ = isGathering;
}

void OrderedOutput::noteError() {
    if (out_.errorNumber() != 0) {
        errorNumber_ = out_.errorNumber();
    }
}

void OrderedOutput::giveUp(int errorNumber) {
    const std::lock_guard lock(mutex_);
    errorNumber_ = errorNumber;
    moved_.notify_all();
}

void OrderedOutput::tend(std::string_view progress) {
    const std::unique_lock lock(mutex_, std::try_to_lock);
    if (!lock) {
        return;
    }
    flush();
    // A row of output that is not at its end would be erased together with the progress.
    const bool isWithinTurn = sharesTerminal_ && !turns_.empty() && turns_.front().hasBegun;
    if (!progress.empty() && !isWithinTurn) {
        hideProgress();
        (void)err_.write(progress);
        showsProgress_ = true;
    }
}

void OrderedOutput::end() {
    const std::lock_guard lock(mutex_);
    flush();
    hideProgress();
}

void OrderedOutput::tryEnd() {
    if (const std::unique_lock lock(mutex_, std::try_to_lock); lock) {
        flush();
        hideProgress();
    }
}

} // namespace sonarin
