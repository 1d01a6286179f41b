// SPDX-License-Identifier: MIT
#include "engine/mpegLength.h"

#include "engine/fileEngine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace sonarin {

namespace {

struct StreamLength {
    bool isVariable;
    std::uint32_t frames;
    std::uint32_t bytes;  ///< 0 when it is not said
    std::uint32_t silent; ///< samples that the encoder added at both ends
};

/// The longest header, with the extension's part that is used; zero where the file ends before.
using HeaderBytes = std::array<std::uint8_t, 144>;

HeaderBytes headerAt(rcCacheRec* cache, std::uint64_t position) {
    HeaderBytes bytes{};
    const std::uint64_t left = cache->eof > position ? cache->eof - position : 0;
    const auto known = static_cast<std::uint32_t>(std::min<std::uint64_t>(left, bytes.size()));
    if (rcReadFromCache(cache, position, known, bytes.data()) != fileNoErr) {
        return {};
    }
    return bytes;
}

/// The encoders that write the extension: LAME from 3.90 to 3.100, and those that took it over.
bool hasExtension(ByteView bytes) {
    switch (bigEndian32(bytes)) {
    case fourCC("LAME"):
        return bytes[6] == '9' || bytes[6] == '1';
    case fourCC("L3.9"):
    case fourCC("Lavf"):
    case fourCC("Lavc"):
        return true;
    default:
        return false;
    }
}

/// Twelve bits each for what was added at the start and at the end, behind the encoder's name and other
/// things.
std::uint32_t silentSamples(ByteView extension) {
    constexpr std::size_t place = 21;
    const std::uint32_t both = bigEndian24(extension, place);
    return (both >> 12U) + (both & 0xFFFU);
}

std::optional<StreamLength> xingLength(ByteView bytes) {
    const std::uint32_t magic = bigEndian32(bytes);
    if (magic != fourCC("Xing") && magic != fourCC("Info")) {
        return std::nullopt;
    }
    const std::uint32_t flags = bigEndian32(bytes, 4);
    std::size_t position = 8;
    const auto number = [&](std::uint32_t flag) {
        const bool isThere = (flags & flag) != 0;
        position += isThere ? 4 : 0;
        return isThere ? bigEndian32(bytes, position - 4) : 0;
    };
    StreamLength length{magic == fourCC("Xing"), number(1), number(2), 0};
    position += (flags & 4U) != 0 ? 100 : 0; // the table of places to seek
    number(8);                               // the quality
    const ByteView extension = bytes.subspan(position);
    length.silent = hasExtension(extension) ? silentSamples(extension) : 0;
    return length;
}

/// The Fraunhofer encoder's header, always as far from the frame's start.
std::optional<StreamLength> vbriLength(ByteView bytes) {
    if (bigEndian32(bytes) != fourCC("VBRI")) {
        return std::nullopt;
    }
    return StreamLength{true, bigEndian32(bytes, 14), bigEndian32(bytes, 10), 0};
}

} // namespace

void mp3StoreLength(rcCacheRec* cache, std::uint64_t frame, const MpegFrameHeader& header,
                    audioTags* record) noexcept {
    constexpr std::uint32_t vbriDistance = 36;
    constexpr double largest = 4294967295.0;
    std::optional<StreamLength> length = xingLength(headerAt(cache, frame + xingDistance(header)));
    if (!length) {
        length = vbriLength(headerAt(cache, frame + vbriDistance));
    }
    if (!length || length->frames == 0) {
        return;
    }
    const std::uint64_t all = std::uint64_t{length->frames} * samplesPerFrame(header);
    const std::uint64_t samples = all > length->silent ? all - length->silent : all;
    record->mp3SongLen = static_cast<std::uint16_t>(samples / header.samplingRate);
    record->mp3HasVBR = length->isVariable ? 1 : 0;
    if (length->isVariable) {
        const std::uint64_t bytes = length->bytes != 0 ? length->bytes : cache->eof - frame;
        const double kilobits =
            static_cast<double>(bytes) * 8 * header.samplingRate / static_cast<double>(all) / 1000;
        record->mp3BitRate = static_cast<std::uint32_t>(std::min(std::round(kilobits), largest));
    }
}

} // namespace sonarin
