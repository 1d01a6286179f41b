// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

namespace sonarin {

/// Output to an open file, gathered so that what belongs together leaves in one system call. However long a
/// text is, no more of it than the buffer is held.
class OutputBuffer {
public:
    explicit OutputBuffer(int descriptor);

    void append(std::string_view bytes) {
        if (bytes.size() > capacity - used_) {
            appendBeyondBuffer(bytes);
            return;
        }
        std::memcpy(buffer_.get() + used_, bytes.data(), bytes.size());
        used_ += bytes.size();
    }
    void append(char byte) {
        if (used_ == capacity) {
            flush();
        }
        buffer_[used_++] = byte;
    }
    void appendNumber(std::int64_t number);

    /// Writes what is gathered. False when this or an earlier write failed; errorNumber tells why.
    bool flush();
    [[nodiscard]] int errorNumber() const noexcept { return errorNumber_; }

private:
    static constexpr std::size_t capacity = 65536;

    void appendBeyondBuffer(std::string_view bytes);
    void write(std::string_view bytes);

    int descriptor_;
    int errorNumber_ = 0;
    std::size_t used_ = 0;
    std::unique_ptr<char[]> buffer_; // NOLINT(*-avoid-c-arrays): a vector would zero it first
};

} // namespace sonarin
