// SPDX-License-Identifier: MIT
#include "engine/mpegFile.h"

#include "engine/fileEngine.h"
#include "engine/id3standard.h"
#include "engine/id3v1.h"
#include "engine/id3v2.h"
#include "engine/mpegFrame.h"
#include "engine/mpegLength.h"
#include "text/stringEngine.h"

#include <algorithm>
#include <array>
#include <optional>

namespace sonarin {

namespace {

/// Moves `*position` to the first acceptable frame header at or after it.
std::optional<MpegFrameHeader> findFirstFrame(rcCacheRec* cache, std::uint64_t* position) {
    for (;;) {
        const ByteView bytes = rcBytesInCache(cache, *position, mpegFrameHeaderSize);
        if (bytes.empty()) {
            return std::nullopt;
        }
        const std::size_t found = findMpegFrameHeader(bytes);
        *position += found;
        if (bytes.size() - found >= mpegFrameHeaderSize) {
            return decodeMpegFrameHeader(bytes.subspan(found));
        }
        *position = rcPastHole(cache, *position); // a sparse file's hole may be larger than any disk
    }
}

/// The duration in seconds of `bytes` at `bitRate` kbit/s, in the low 16 bits that the record keeps.
std::uint16_t durationAt(std::uint32_t bitRate, std::uint64_t bytes) {
    return static_cast<std::uint16_t>(divide(bytes * 8 / 1000, bitRate));
}

void storeFrameFacts(const MpegFrameHeader& header, std::uint64_t audioBytes, audioTags* record) {
    record->mp3Version = header.version;
    record->mp3Layer = header.layer;
    record->mp3HasCRC = header.protection;
    record->mp3SamplingRate = header.samplingRate;
    record->mp3BitRate = header.bitRate;
    record->mp3ChannelMode = header.channelMode;
    record->mp3SongLen = durationAt(header.bitRate, audioBytes);
    record->mp3HasVBR = 0;
}

/// The number of frames that a Xing header at `position` gives; 0 when there is none or it does not tell.
std::uint32_t xingFrameCount(rcCacheRec* cache, std::uint64_t position) {
    constexpr std::uint32_t frameCountPresent = 1;
    std::array<std::uint8_t, 12> xing{};
    if (rcReadFromCache(cache, position, xing.size(), xing.data()) != fileNoErr ||
        bigEndian32(xing) != fourCC("Xing") || (bigEndian32(xing, 4) & frameCountPresent) == 0) {
        return 0;
    }
    return bigEndian32(xing, 8);
}

/// Replaces bit rate and duration by the averages over `frames` frames in `bytes` bytes. The arithmetic is of
/// single precision but for the last division, and takes 1152 samples a frame for every version and layer.
void storeAverages(std::uint32_t frames, std::uint64_t bytes, audioTags* record) {
    constexpr double bitsPerKilobitTimesSamples = 144000.0; // 1152 / 8 * 1000
    constexpr double largest = 4294967295.0;
    const float frameLength = static_cast<float>(bytes) / static_cast<float>(frames);
    const float rate = static_cast<float>(record->mp3SamplingRate) * frameLength;
    record->mp3BitRate = static_cast<std::uint32_t>(
        std::clamp(static_cast<double>(rate) / bitsPerKilobitTimesSamples, 0.0, largest));
    const std::uint16_t seconds = durationAt(record->mp3BitRate, bytes);
    record->mp3SongLen = static_cast<std::uint16_t>(seconds != 0 ? seconds - 1 : 0);
    record->mp3HasVBR = 1;
}

/// Reads the ID3v2 tag at the file's start, if there is one, and moves `*position` behind it. True when it
/// gave text that makes the ID3v1 block superfluous.
bool readLeadingTag(rcCacheRec* cache, std::uint64_t* position, std::uint32_t start, audioTags* record,
                    const ReadOptions& options) {
    if (start >> 8U != fourCC("ID3 ") >> 8U) {
        return false;
    }
    mp3ReadV2Tags(record, position, cache, options);
    return SvxStringGetLength(record->mp3SongTitleString) + SvxStringGetLength(record->mp3ArtistString) +
               SvxStringGetLength(record->mp3AlbumString) + SvxStringGetLength(record->mp3CommentString) !=
           0;
}

} // namespace

std::uint8_t mp3GetFileInfo(const SvxStringRef& path, audioTags* record,
                            const ReadOptions& options) noexcept {
    CachedFile file(path, options.progress);
    rcCacheRec* cache = file.cache();
    std::uint32_t start = 0;
    if (!file || rcReadUInt32FromCache(cache, 0, rcByteOrderBig, &start) != fileNoErr) {
        return 0;
    }
    const std::uint64_t size = cache->eof;
    std::uint64_t position = 0;
    const bool tagGaveText = readLeadingTag(cache, &position, start, record, options);

    const std::optional<MpegFrameHeader> header = findFirstFrame(cache, &position);
    if (!header) {
        return 0;
    }
    storeFrameFacts(*header, size - position, record);
    if (options.tags == TagReading::byStandard) {
        mp3StoreLength(cache, position, *header, record);
        if (record->mp3TagVersion == 0) {
            id3ReadAppendedTag(record, cache, options.pictures);
        }
    } else {
        const std::uint64_t xingPosition = position + xingDistance(*header);
        const std::uint32_t frames = xingFrameCount(cache, xingPosition);
        if (frames != 0) {
            storeAverages(frames, size - xingPosition, record);
        }
    }
    if (!tagGaveText || options.tags == TagReading::byStandard) {
        mp3ReadV1Tag(record, cache, size, options.tags);
    }
    return 1;
}

} // namespace sonarin
