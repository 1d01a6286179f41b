// SPDX-License-Identifier: MIT
#include "engine/id3frames.h"

#include "engine/fileEngine.h"

#include <algorithm>
#include <array>

namespace sonarin {

namespace {

constexpr std::uint32_t id2(const std::uint32_t paddedCode) {
    return paddedCode >> 8U;
}

constexpr auto version2Rules = std::to_array<FrameRule>({
    {id2(fourCC("TT2 ")), FrameKind::text, &audioTags::mp3SongTitleString},
    {id2(fourCC("TP1 ")), FrameKind::text, &audioTags::mp3ArtistString},
    {id2(fourCC("TAL ")), FrameKind::text, &audioTags::mp3AlbumString},
    {id2(fourCC("TCM ")), FrameKind::text, &audioTags::mp3ComposerString},
    {id2(fourCC("TEN ")), FrameKind::text, &audioTags::mp3EncoderAppString},
    {id2(fourCC("TCO ")), FrameKind::genre, &audioTags::mp3Genre2String},
    {id2(fourCC("COM ")), FrameKind::remark, &audioTags::mp3CommentString},
    {id2(fourCC("ULT ")), FrameKind::remark, &audioTags::mp3LyricsString},
    {id2(fourCC("TDS ")), FrameKind::text, &audioTags::mp3LyricsString},
    {id2(fourCC("TRK ")), FrameKind::track},
    {id2(fourCC("TYE ")), FrameKind::year},
    {id2(fourCC("PIC ")), FrameKind::picture},
});

constexpr auto version3Rules = std::to_array<FrameRule>({
    {fourCC("TIT2"), FrameKind::text, &audioTags::mp3SongTitleString},
    {fourCC("TPE1"), FrameKind::text, &audioTags::mp3ArtistString},
    {fourCC("TALB"), FrameKind::text, &audioTags::mp3AlbumString},
    {fourCC("TCOM"), FrameKind::text, &audioTags::mp3ComposerString},
    {fourCC("TENC"), FrameKind::text, &audioTags::mp3EncoderAppString},
    {fourCC("TCON"), FrameKind::genre, &audioTags::mp3Genre2String},
    {fourCC("COMM"), FrameKind::remark, &audioTags::mp3CommentString},
    {fourCC("USLT"), FrameKind::remark, &audioTags::mp3LyricsString},
    {fourCC("YTDS"), FrameKind::text, &audioTags::mp3LyricsString},
    {fourCC("TRCK"), FrameKind::track},
    {fourCC("TYER"), FrameKind::year},
    {fourCC("TDRC"), FrameKind::recordingTime},
    {fourCC("APIC"), FrameKind::picture},
});

Frame decodeVersion2(ByteView header) {
    return {bigEndian24(header), bigEndian24(header, 3)};
}

Frame decodeVersion3(ByteView header) {
    return {bigEndian32(header), bigEndian32(header, 4), bigEndian16(header, 8)};
}

} // namespace

constexpr FrameLayout version2Layout = {6, 0xFF0000, decodeVersion2, version2Rules};
constexpr FrameLayout version3Layout = {10, 0xFFFFFFFF, decodeVersion3, version3Rules};

std::int32_t walkFrames(const FrameLayout& layout, rcCacheRec* cache, std::uint64_t position,
                        std::uint64_t end, FrameReading& reading) noexcept {
    std::int32_t result = fileNoErr;
    while (position < end) {
        std::array<std::uint8_t, version3Layout.headerSize> header{}; // the longer one
        result = rcReadFromCache(cache, position, layout.headerSize, header.data());
        Frame frame = layout.decode(header);
        if (result != fileNoErr || (frame.id & layout.paddedId) == 0) {
            break;
        }
        frame.dataPosition = position + layout.headerSize;
        const std::optional<std::uint32_t> size = reading.sizeOf(frame);
        if (!size) {
            break;
        }
        frame.size = *size;
        const auto rule = std::find_if(layout.rules.begin(), layout.rules.end(),
                                       [&](const FrameRule& candidate) { return candidate.id == frame.id; });
        if (rule != layout.rules.end()) {
            reading.take(*rule, frame);
        }
        position = frame.dataPosition + frame.size;
    }
    return result;
}

} // namespace sonarin
