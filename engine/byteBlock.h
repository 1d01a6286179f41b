// SPDX-License-Identifier: MIT
#pragma once

#include "platform/host/bytes.h"

#include <cstdint>
#include <memory>
#include <new>
#include <utility>

namespace sonarin {

/// An owned run of bytes that knows its length, such as an embedded picture. Empty means that there is none.
class ByteBlock {
public:
    ByteBlock() = default;

    /// A block of `size` bytes that are not set yet; empty when memory runs out.
    static ByteBlock allocate(std::size_t size) noexcept {
        ByteBlock block;
        block.bytes_.reset(new (std::nothrow) std::uint8_t[size]);
        block.size_ = block.bytes_ ? size : 0;
        return block;
    }

    /// Leaves out the bytes from `size` on.
    void truncate(std::size_t size) noexcept { size_ = size; }
    /// Gives the bytes away.
    [[nodiscard]] std::unique_ptr<std::uint8_t[]> release() noexcept { // NOLINT(*-avoid-c-arrays): as below
        size_ = 0;
        return std::move(bytes_);
    }

    explicit operator bool() const noexcept { return size_ != 0; }
    [[nodiscard]] std::uint8_t* data() noexcept { return bytes_.get(); }
    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] ByteView view() const noexcept { return {bytes_.get(), size_}; }

private:
    std::unique_ptr<std::uint8_t[]> bytes_; // NOLINT(*-avoid-c-arrays): a vector would zero it first
    std::size_t size_ = 0;
};

} // namespace sonarin
