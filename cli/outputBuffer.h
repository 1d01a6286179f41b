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

    [[gnu::always_inline]] void append(std::string_view bytes) {
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

    /// Room for `size` bytes (at most `largestRoom`), which the caller sets from the front; `take` then
    /// counts those before `end` as appended.
    static constexpr std::size_t largestRoom = 4096;
    [[nodiscard]] char* room(std::size_t size) {
        if (size > capacity - used_) {
            flush();
        }
        return buffer_.get() + used_;
    }
    void take(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.get()); }

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
