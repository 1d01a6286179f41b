// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdint>

namespace sonarin {

/// How much a walk may still have read for it where a file can name the same bytes over and over. Places that
/// lie apart never use it up; those that overlap do, so that time and memory stay in proportion to the file's
/// size.
class ReadBudget {
public:
    explicit ReadBudget(std::uint64_t fileSize) noexcept : fileSize_(fileSize), left_(fileSize + slack) {}

    /// Whether `size` bytes at `position`, as many of them as the file has, may be read; if so, they count.
    [[nodiscard]] bool allows(std::uint64_t position, std::uint64_t size) noexcept {
        const std::uint64_t count = std::min(size, fileSize_ - std::min(position, fileSize_));
        if (count > left_) {
            return false;
        }
        left_ -= count;
        return true;
    }

private:
    static constexpr std::uint64_t slack = std::uint64_t{1} << 20U; ///< for what is only written wrong

    std::uint64_t fileSize_;
    std::uint64_t left_;
};

} // namespace sonarin
