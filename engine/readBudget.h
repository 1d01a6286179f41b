// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace sonarin {

/// How much a walk may still have read for it where a file can name the same bytes over and over. Places that
/// lie apart never use it up; those that overlap do, so that time and memory stay in proportion to the file's
/// size.
class ReadBudget {
public:
    explicit ReadBudget(std::uint64_t fileSize) noexcept : fileSize_(fileSize), left_(fileSize + slack) {}

    /// Whether `size` bytes at `position` may be read; if so, they count, and if not, nothing more is read.
    /// What goes beyond the file's end is never read, so that it may be asked for at no cost.
    [[nodiscard]] bool allows(std::uint64_t position, std::uint64_t size) noexcept {
        if (position > fileSize_ || size > fileSize_ - position) {
            return true;
        }
        const bool isLeft = size <= left_;
        left_ = isLeft ? left_ - size : 0;
        return isLeft;
    }

private:
    static constexpr std::uint64_t slack = std::uint64_t{1} << 20U; ///< for what is only written wrong

    std::uint64_t fileSize_;
    std::uint64_t left_;
};

} // namespace sonarin
