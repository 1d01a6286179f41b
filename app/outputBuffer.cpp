// SPDX-License-Identifier: MIT
#include "app/outputBuffer.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <poll.h>
#include <unistd.h>

namespace sonarin {

namespace {

/// Where the reader set its end of the pipe not to block, so is ours.
void waitUntilWritable(int descriptor) {
    pollfd waiting{descriptor, POLLOUT, 0};
    (void)poll(&waiting, 1, -1);
}

} // namespace

int FileSink::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            waitUntilWritable(descriptor_);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

OutputBuffer::OutputBuffer(OutputSink& sink)
    : sink_(sink), buffer_(new char[capacity]) {} // NOLINT(*-avoid-c-arrays)

void OutputBuffer::appendBeyondBuffer(std::string_view bytes) {
    flush();
    if (bytes.size() >= capacity) {
        write(bytes);
    } else {
        append(bytes);
    }
}

void OutputBuffer::appendNumber(std::int64_t number) {
    std::array<char, 20> digits{}; // the longest, with its sign
    const char* end = std::to_chars(digits.begin(), digits.end(), number).ptr;
    append({digits.begin(), end});
}

void OutputBuffer::flush() {
    write({buffer_.get(), used_});
    used_ = 0;
}

void OutputBuffer::write(std::string_view bytes) {
    if (!bytes.empty() && errorNumber_ == 0) {
        errorNumber_ = sink_.write(bytes);
    }
}

} // namespace sonarin
