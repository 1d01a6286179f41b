// SPDX-License-Identifier: MIT
#include "engine/id3stored.h"

#include <algorithm>
#include <zlib.h>

namespace sonarin {

namespace {

constexpr std::uint8_t marker = 0xFF; ///< begins what a player takes for a frame header

/// Whether every 0xFF is followed by a byte with which no frame header goes on.
bool isUnsynchronised(ByteView bytes) {
    constexpr std::uint8_t goesOn = 0xE0;
    for (auto at = bytes.begin(); (at = std::find(at, bytes.end(), marker)) != bytes.end();) {
        ++at;
        if (at != bytes.end() && *at >= goesOn) {
            return false;
        }
    }
    return true;
}

} // namespace

void id3Resynchronise(ByteBlock* bytes) noexcept {
    if (!isUnsynchronised(bytes->view())) {
        return;
    }
    std::uint8_t* const end = bytes->data() + bytes->size();
    std::uint8_t* out = bytes->data();
    for (std::uint8_t* from = bytes->data(); from != end;) {
        std::uint8_t* const found = std::find(from, end, marker);
        std::uint8_t* const next = found == end ? end : found + 1;
        out = std::copy(from, next, out);
        from = next != end && *next == 0 ? next + 1 : next;
    }
    bytes->truncate(static_cast<std::size_t>(out - bytes->data()));
}

ByteBlock id3Inflate(ByteView stored, std::size_t size, std::size_t* budget) noexcept {
    ByteBlock bytes = size <= *budget ? ByteBlock::allocate(size) : ByteBlock();
    if (!bytes) {
        return {};
    }
    uLongf inflated = size;
    const int result = uncompress(bytes.data(), &inflated, stored.data(), stored.size());
    *budget -= inflated;
    if (result != Z_OK) {
        return {};
    }
    bytes.truncate(inflated);
    return bytes;
}

} // namespace sonarin
