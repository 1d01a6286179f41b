// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

/// Sixteen bytes at a time: what lets long runs of bytes be scanned about as fast as they are read. The
/// vector type is the one that g++ and clang share; they make it fit any processor.
namespace sonarin {

using ByteLanes = std::uint8_t __attribute__((vector_size(16)));

/// The 16 bytes at `bytes`, aligned or not.
inline ByteLanes loadLanes(const void* bytes) {
    ByteLanes lanes;
    std::memcpy(&lanes, bytes, sizeof lanes);
    return lanes;
}

/// Whether any lane is not zero.
inline bool anyLane(ByteLanes lanes) {
    std::array<std::uint64_t, 2> halves{};
    std::memcpy(halves.data(), &lanes, sizeof lanes);
    return (halves[0] | halves[1]) != 0;
}

} // namespace sonarin
