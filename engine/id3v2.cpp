// SPDX-License-Identifier: MIT
#include "engine/id3v2.h"

#include "engine/fileEngine.h"
#include "engine/id3frameText.h"
#include "engine/id3frames.h"
#include "engine/id3genres.h"
#include "engine/id3picture.h"
#include "engine/id3standard.h"
#include "text/stringEngine.h"

#include <array>
#include <optional>

namespace sonarin {

namespace {

constexpr std::uint8_t extendedHeaderFlag = 0x40;

/// Texts are recognised by their bytes, and every size is a plain number, in version 4 too, whose definition
/// differs.
class FramesByTheirBytes final : public FrameReading {
public:
    FramesByTheirBytes(audioTags* record, rcCacheRec* cache, Pictures pictures, ReadBudget* budget)
        : record_(record), cache_(cache), pictures_(pictures), budget_(budget) {}

    [[nodiscard]] std::optional<std::uint32_t> sizeOf(const Frame& frame) override {
        const bool isRead = frame.size != 0 && budget_->allows(frame.dataPosition, frame.size);
        return isRead ? std::optional(frame.size) : std::nullopt;
    }

    void take(const FrameRule& rule, const Frame& frame) override {
        // The first data byte is the text encoding, which nobody looks at.
        const std::uint64_t content = frame.dataPosition + 1;
        SvxStringRef text;
        switch (rule.kind) {
        case FrameKind::text:
        case FrameKind::genre:
        case FrameKind::remark:
            mp3ReadSvxStringFromFile(cache_, content, frame.size, &(record_->*rule.field));
            break;
        case FrameKind::track:
            mp3ReadSvxStringFromFile(cache_, content, frame.size, &text);
            mp3DecodeTrackInfo(text, &record_->mp3TheTrack, &record_->mp3TrackAmount);
            break;
        case FrameKind::year:
            mp3ReadSvxStringFromFile(cache_, content, frame.size, &text);
            record_->mp3Year = static_cast<std::uint16_t>(SvxStringGetIntValue(text));
            break;
        case FrameKind::recordingTime:
            break; // only the year's own frame gives one
        case FrameKind::picture:
            mp3ReadCoverArt(record_, content, frame.size, cache_, pictures_);
            break;
        }
    }

private:
    audioTags* record_;
    rcCacheRec* cache_;
    Pictures pictures_;
    ReadBudget* budget_;
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
                           const ReadOptions& options) noexcept {
    ReadBudget budget(cache->eof); // the frames of one tag lie apart
    return mp3ReadV2TagsWithin(&budget, record, position, cache, options);
}

std::int32_t mp3ReadV2TagsWithin(ReadBudget* budget, audioTags* record, std::uint64_t* position,
                                 rcCacheRec* cache, const ReadOptions& options) noexcept {
    if (options.tags == TagReading::byStandard) {
        *position = id3ReadTag(record, *position, cache->eof, cache, options.pictures);
        return fileNoErr;
    }
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
            FramesByTheirBytes reading(record, cache, options.pictures, budget);
            result = walkFrames(layout, cache, firstFrame, end, reading);
        }
    }
    *position = end;
    resolveGenreReference(&record->mp3Genre2String);
    return result;
}

void mp3DecodeTrackInfo(const SvxStringRef& text, std::uint16_t* track, std::uint16_t* amount) noexcept {
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

} // namespace sonarin
