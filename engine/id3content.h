// SPDX-License-Identifier: MIT
#pragma once

#include "engine/readCache.h"
#include "text/SvxString.h"

#include <cstdint>

namespace sonarin {

/// The content of one ID3v2 frame, or what is left of it, as the frame's own fields take it apart: a range of
/// a cache, over the file or over bytes in memory.
class FrameContent {
public:
    /// The range must lie within what the cache reads.
    FrameContent(rcCacheRec* cache, std::uint64_t position, std::uint32_t size) noexcept
        : cache_(cache), position_(position), size_(size) {}

    [[nodiscard]] rcCacheRec* cache() const noexcept { return cache_; }
    [[nodiscard]] std::uint64_t position() const noexcept { return position_; }
    [[nodiscard]] std::uint32_t size() const noexcept { return size_; }

    /// Takes the first byte off; 0 when there is none or it cannot be read.
    std::uint8_t takeByte() noexcept;
    /// Takes that many bytes off, or all that there are.
    FrameContent take(std::uint32_t count) noexcept;
    /// Takes the bytes off up to the first terminator of that encoding, and the terminator, which is not part
    /// of the answer; without one all.
    FrameContent takeString(std::uint8_t encoding) noexcept;

    /// The bytes as a text of the declared encoding (ID3v2.4, section 4): 0 ISO-8859-1, 1 UTF-16 with a
    /// byte-order mark (without one least significant byte first), 2 UTF-16 most significant byte first,
    /// 3 UTF-8. Absent for any other, and for what is none. Terminators are U+0000 in it; a mark at its start
    /// is left out.
    [[nodiscard]] SvxStringRef text(std::uint8_t encoding) const noexcept;

private:
    rcCacheRec* cache_;
    std::uint64_t position_;
    std::uint32_t size_;
};

} // namespace sonarin
