// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <string>
#include <utility>

namespace sonarin {

/// An open file that is closed when its holder goes.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) noexcept : descriptor_(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor();

    explicit operator bool() const noexcept { return descriptor_ >= 0; }
    [[nodiscard]] int get() const noexcept { return descriptor_; }
    /// Hands the open file over to the caller, who closes it.
    [[nodiscard]] int release() noexcept { return std::exchange(descriptor_, -1); }

private:
    int descriptor_ = -1;
};

/// The answer of a system call, which is made again as long as a signal interrupts it. Not for close: the
/// descriptor is gone whatever it answers.
template <class SystemCall>
auto uninterrupted(SystemCall call) {
    auto result = call();
    while (result == -1 && errno == EINTR) {
        result = call();
    }
    return result;
}

/// Opens a file without ever waiting: a FIFO without a writer, or a device that is not ready, does not hold
/// the program up. Never answers descriptor 0. Whether the item is a regular file is not looked at; an empty
/// descriptor means that it could not be opened (errno tells why).
[[nodiscard]] FileDescriptor openWithoutWaiting(const std::string& path, bool writeAccess) noexcept;

/// Opens a regular file for reading; empty for anything else.
[[nodiscard]] FileDescriptor openRegularFile(const std::string& path) noexcept;

} // namespace sonarin
