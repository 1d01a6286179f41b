// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace sonarin {

/// Where the bytes of an output go.
class OutputSink {
public:
    OutputSink() = default;
    OutputSink(const OutputSink&) = delete;
    OutputSink& operator=(const OutputSink&) = delete;
    virtual ~OutputSink() = default;
    /// Takes all bytes; 0, or the host's number of the error that kept it from doing so.
    virtual int write(std::string_view bytes) = 0;
};

/// An open file, which stays its owner's.
class FileSink final : public OutputSink {
public:
    explicit FileSink(int descriptor) noexcept : descriptor_(descriptor) {}
    int write(std::string_view bytes) override;

private:
    int descriptor_;
};

/// A text in memory.
class StringSink final : public OutputSink {
public:
    int write(std::string_view bytes) override {
        text += bytes;
        return 0;
    }
    std::string text;
};

/// Output gathered so that what belongs together leaves in one piece. However long a text is, no more of it
/// than the buffer is held.
class OutputBuffer {
public:
    /// The sink must outlive the buffer.
    explicit OutputBuffer(OutputSink& sink);

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

    /// Writes what is gathered; errorNumber tells whether this or an earlier write failed.
    void flush();
    [[nodiscard]] bool isEmpty() const noexcept { return used_ == 0; }
    /// What is gathered, which the caller takes over.
    [[nodiscard]] std::string_view takeAll() noexcept { return {buffer_.get(), std::exchange(used_, 0)}; }
    [[nodiscard]] int errorNumber() const noexcept { return errorNumber_; }

private:
    static constexpr std::size_t capacity = 65536;

    void appendBeyondBuffer(std::string_view bytes);
    void write(std::string_view bytes);

    OutputSink& sink_;
    int errorNumber_ = 0;
    std::size_t used_ = 0;
    std::unique_ptr<char[]> buffer_; // NOLINT(*-avoid-c-arrays): a vector would zero it first
};

} // namespace sonarin
