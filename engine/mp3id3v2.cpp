// SPDX-License-Identifier: MIT
#include "engine/fileEngine.h"
#include "engine/mp3tags.h"
#include "text/CMMCoreFunctions.h"
#include "text/stringEngine.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>

namespace sonarin {

namespace {

// Tag header (ID3v2.3, section 3.1): "ID3", major version, revision, flags, synchsafe size.
constexpr std::uint32_t tagHeaderSize = 10;
constexpr std::uint8_t extendedHeaderFlag = 0x40;

enum class FrameKind { text, track, year, picture };

/// What a frame's content is and where it goes.
struct FrameRule {
    std::uint32_t id = 0; ///< as read: 24 bits in version 2, 32 bits later
    FrameKind kind = FrameKind::text;
    SvxStringRef audioTags::*field = nullptr; ///< for texts
};

constexpr std::uint32_t id2(const std::uint32_t paddedCode) {
    return paddedCode >> 8U;
}

constexpr std::array<FrameRule, 12> version2Rules = {{
    {id2(fourCC("TT2 ")), FrameKind::text, &audioTags::mp3SongTitleString},
    {id2(fourCC("TP1 ")), FrameKind::text, &audioTags::mp3ArtistString},
    {id2(fourCC("TAL ")), FrameKind::text, &audioTags::mp3AlbumString},
    {id2(fourCC("TCM ")), FrameKind::text, &audioTags::mp3ComposerString},
    {id2(fourCC("TEN ")), FrameKind::text, &audioTags::mp3EncoderAppString},
    {id2(fourCC("TCO ")), FrameKind::text, &audioTags::mp3Genre2String},
    {id2(fourCC("COM ")), FrameKind::text, &audioTags::mp3CommentString},
    {id2(fourCC("ULT ")), FrameKind::text, &audioTags::mp3LyricsString},
    {id2(fourCC("TDS ")), FrameKind::text, &audioTags::mp3LyricsString},
    {id2(fourCC("TRK ")), FrameKind::track},
    {id2(fourCC("TYE ")), FrameKind::year},
    {id2(fourCC("PIC ")), FrameKind::picture},
}};

constexpr std::array<FrameRule, 12> version3Rules = {{
    {fourCC("TIT2"), FrameKind::text, &audioTags::mp3SongTitleString},
    {fourCC("TPE1"), FrameKind::text, &audioTags::mp3ArtistString},
    {fourCC("TALB"), FrameKind::text, &audioTags::mp3AlbumString},
    {fourCC("TCOM"), FrameKind::text, &audioTags::mp3ComposerString},
    {fourCC("TENC"), FrameKind::text, &audioTags::mp3EncoderAppString},
    {fourCC("TCON"), FrameKind::text, &audioTags::mp3Genre2String},
    {fourCC("COMM"), FrameKind::text, &audioTags::mp3CommentString},
    {fourCC("USLT"), FrameKind::text, &audioTags::mp3LyricsString},
    {fourCC("YTDS"), FrameKind::text, &audioTags::mp3LyricsString},
    {fourCC("TRCK"), FrameKind::track},
    {fourCC("TYER"), FrameKind::year},
    {fourCC("APIC"), FrameKind::picture},
}};

/// How the frames of a tag are laid out (ID3v2.2, section 3.2; ID3v2.3, section 3.3).
struct FrameLayout {
    std::uint32_t headerSize;
    std::uint32_t idBytesStop; ///< the walk ends where this many bytes of the id are all zero
    std::span<const FrameRule> rules;
};

constexpr FrameLayout version2Layout = {6, 1, version2Rules};
constexpr FrameLayout version3Layout = {10, 4, version3Rules};

struct Frame {
    std::uint32_t id = 0;
    std::uint32_t size = 0; ///< of its data; plain big-endian, in version 4 too, whose definition differs
    std::uint64_t dataPosition = 0;
};

/// One pass over the frames of one tag.
class FrameWalk {
public:
    FrameWalk(audioTags* record, rcCacheRec* cache, Pictures pictures)
        : record_(record), cache_(cache), pictures_(pictures) {}

    /// Reads the frames from `position` up to the first that begins at or behind `end`.
    std::int32_t run(const FrameLayout& layout, std::uint64_t position, std::uint64_t end) {
        std::int32_t result = fileNoErr;
        while (position < end) {
            std::array<std::uint8_t, 10> header{};
            result = rcReadFromCache(cache_, position, layout.headerSize, header.data());
            if (result != fileNoErr || isPadding(layout, header)) {
                break;
            }
            Frame frame = decode(layout, header);
            if (frame.size == 0) {
                break;
            }
            frame.dataPosition = position + layout.headerSize;
            take(layout, frame);
            position = frame.dataPosition + frame.size;
        }
        return result;
    }

private:
    static bool isPadding(const FrameLayout& layout, ByteView header) {
        const ByteView idBytes = header.first(layout.idBytesStop);
        return std::all_of(idBytes.begin(), idBytes.end(), [](std::uint8_t byte) { return byte == 0; });
    }

    static Frame decode(const FrameLayout& layout, ByteView header) {
        if (layout.headerSize == version2Layout.headerSize) {
            return {bigEndian24(header), bigEndian24(header, 3)};
        }
        return {bigEndian32(header), bigEndian32(header, 4)};
    }

    void take(const FrameLayout& layout, const Frame& frame) {
        const auto rule = std::find_if(layout.rules.begin(), layout.rules.end(),
                                       [&](const FrameRule& candidate) { return candidate.id == frame.id; });
        if (rule == layout.rules.end()) {
            return;
        }
        // The first data byte is the text encoding, which nobody looks at.
        const std::uint64_t content = frame.dataPosition + 1;
        SvxStringRef text;
        switch (rule->kind) {
        case FrameKind::text:
            mp3ReadSvxStringFromFile(cache_, content, frame.size, &(record_->*rule->field));
            break;
        case FrameKind::track:
            mp3ReadSvxStringFromFile(cache_, content, frame.size, &text);
            mp3DecodeTrackInfo(text, &record_->mp3TheTrack, &record_->mp3TrackAmount);
            break;
        case FrameKind::year:
            mp3ReadSvxStringFromFile(cache_, content, frame.size, &text);
            record_->mp3Year = static_cast<std::uint16_t>(SvxStringGetIntValue(text));
            break;
        case FrameKind::picture:
            mp3ReadCoverArt(record_, content, frame.size, cache_, pictures_);
            break;
        }
    }

    audioTags* record_;
    rcCacheRec* cache_;
    Pictures pictures_;
};

/// Replaces a reference such as "(17)" or "(17)Rock" by the name of that genre; anything else, "(0)" too,
/// stays.
void resolveGenreReference(SvxStringRef* genre) {
    if (SvxStringGetLength(*genre) < 3 || !SvxStringBeginsWithCString(*genre, "(", true)) {
        return;
    }
    SvxIndex digits = 0;
    if (SvxStringGetUniChar(*genre, 2) == u')') {
        digits = 1;
    } else if (SvxStringGetUniChar(*genre, 3) == u')') {
        digits = 2;
    }
    if (digits == 0) {
        return;
    }
    const std::int32_t code = SvxStringGetIntValue(SvxStringCreateWithSubstring(*genre, 1, digits));
    if (code != 0) {
        *genre = mp3LoadGenreString(code + 1);
    }
}

} // namespace

std::int32_t mp3ReadV2Tags(audioTags* record, std::uint64_t* position, rcCacheRec* cache,
                           Pictures pictures) noexcept {
    std::array<std::uint8_t, tagHeaderSize> header{};
    std::int32_t result = rcReadFromCache(cache, *position, header.size(), header.data());
    if (result != fileNoErr) {
        return result;
    }
    const std::uint8_t majorVersion = header[3];
    const std::uint64_t end = *position + tagHeaderSize + synchsafe(header, 6);
    std::uint64_t firstFrame = *position + tagHeaderSize;
    if ((header[5] & extendedHeaderFlag) != 0) {
        std::array<std::uint8_t, 12> extendedHeader{};
        result = rcReadFromCache(cache, firstFrame, extendedHeader.size(), extendedHeader.data());
        firstFrame = result == fileNoErr ? firstFrame + synchsafe(extendedHeader) : end;
    }
    if (majorVersion >= 2) {
        record->mp3TagVersion = majorVersion > 4 ? 3 : majorVersion;
        const FrameLayout& layout = majorVersion == 2 ? version2Layout : version3Layout;
        if (result == fileNoErr) {
            result = FrameWalk(record, cache, pictures).run(layout, firstFrame, end);
        }
    }
    *position = end;
    resolveGenreReference(&record->mp3Genre2String);
    return result;
}

void mp3DecodeTrackInfo(const SvxStringRef& text, std::uint16_t* track, std::uint16_t* amount) noexcept {
    *track = 0;
    *amount = 0;
    static const SvxStringRef slash = SvxStringFromCString("/");
    const SvxIndex at = SvxStringPosition(text, slash, 0, true);
    if (at < 0) {
        *track = static_cast<std::uint16_t>(SvxStringGetIntValue(text));
        return;
    }
    const SvxStringRef before = SvxStringCreateWithSubstring(text, 0, at);
    const SvxStringRef after = SvxStringCreateWithSubstring(text, at + 1, SvxStringGetLength(text) - at - 1);
    *track = static_cast<std::uint16_t>(SvxStringGetIntValue(before));
    *amount = static_cast<std::uint16_t>(SvxStringGetIntValue(after));
}

SvxStringRef mp3LoadGenreString(std::int32_t number) noexcept {
    constexpr std::int16_t genreTable = 513;
    constexpr std::int32_t genres = 126;
    return number >= 1 && number <= genres
               ? SvxStringGetFromTable(genreTable, static_cast<std::int16_t>(number))
               : nullptr;
}

} // namespace sonarin
