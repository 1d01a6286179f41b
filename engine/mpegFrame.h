// SPDX-License-Identifier: MIT
#pragma once

#include "platform/host/bytes.h"

#include <cstdint>

/// MPEG audio frame headers (ISO/IEC 11172-3, 2.4.1.3).
namespace sonarin {

struct MpegFrameHeader {
    std::uint8_t version;       ///< as coded: 0 MPEG-2.5, 2 MPEG-2, 3 MPEG-1
    std::uint8_t layer;         ///< as coded: 1 Layer III, 2 Layer II
    std::uint8_t protection;    ///< as coded: 1 when no CRC follows
    std::uint8_t channelMode;   ///< 0 stereo, 1 joint stereo, 2 dual channel, 3 single channel
    std::uint16_t bitRate;      ///< kbit/s
    std::uint16_t samplingRate; ///< Hz
};

inline constexpr std::size_t mpegFrameHeaderSize = 4;

/// The channel mode of mono, which records have from other formats too.
inline constexpr std::uint8_t singleChannel = 3;

/// The position in `bytes`, which hold at least four, of the first acceptable header; without one, the first
/// position that has fewer than four bytes left.
///
/// Acceptable is a header of Layer II or III whose version, bit rate and sampling rate are neither reserved,
/// forbidden nor free; nothing behind the four bytes is looked at.
[[nodiscard]] std::size_t findMpegFrameHeader(ByteView bytes) noexcept;

/// The facts in an acceptable header.
[[nodiscard]] MpegFrameHeader decodeMpegFrameHeader(ByteView bytes) noexcept;

/// The samples of a frame, for each channel: 1152, but half of that in Layer III of MPEG-2 and MPEG-2.5.
[[nodiscard]] std::uint32_t samplesPerFrame(const MpegFrameHeader& header) noexcept;

/// The distance from a frame's first byte to its Xing header: behind the four header bytes and the side
/// information, whose size depends on version and channel mode. A CRC is not allowed for.
[[nodiscard]] std::uint32_t xingDistance(const MpegFrameHeader& header) noexcept;

} // namespace sonarin
