// SPDX-License-Identifier: MIT
#include "engine/id3standard.h"

#include "engine/fileEngine.h"
#include "engine/fileText.h"
#include "engine/id3content.h"
#include "engine/id3frames.h"
#include "engine/id3genres.h"
#include "engine/id3stored.h"
#include "engine/id3v2.h"
#include "text/stringEngine.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace sonarin {

namespace {

constexpr std::uint32_t frameHeaderSize = 10; ///< since version 3

/// A tag's header (ID3v2.4, section 3.1).
struct TagHeader {
    std::uint8_t version; ///< the major one, 2 to 4
    std::uint8_t flags;
    std::uint32_t size; ///< of what follows the header, without a footer

    [[nodiscard]] bool isUnsynchronised() const { return (flags & 0x80U) != 0; }
    /// Version 2 has compression there, without saying how: such a tag is to be ignored.
    [[nodiscard]] bool isCompressed() const { return version == 2 && (flags & 0x40U) != 0; }
    [[nodiscard]] bool hasExtendedHeader() const { return (flags & 0x40U) != 0; }
    [[nodiscard]] bool hasFooter() const { return version == 4 && (flags & 0x10U) != 0; }
    [[nodiscard]] bool isKnown() const { return version >= 2 && version <= 4 && !isCompressed(); }
    [[nodiscard]] const FrameLayout& layout() const { return version == 2 ? version2Layout : version3Layout; }
};

/// Nothing where there is no tag, whose header begins with "ID3" and whose footer with "3DI".
std::optional<TagHeader> decodeTagHeader(ByteView bytes, std::uint32_t paddedMark) {
    constexpr std::uint8_t highestVersion = 0xFE;
    const ByteView size = bytes.subspan(6, 4);
    if (bigEndian24(bytes) != (paddedMark >> 8U) || bytes[3] > highestVersion || bytes[4] > highestVersion ||
        std::any_of(size.begin(), size.end(), [](std::uint8_t byte) { return byte > 0x7F; })) {
        return std::nullopt;
    }
    return TagHeader{bytes[3], bytes[5], synchsafe(size)};
}

/// The bytes from the place behind the tag header to the first frame. Where what says it has an extended
/// header holds none that fits, its frames begin at once: some writers only set the flag.
std::uint32_t extendedHeaderSize(const TagHeader& header, rcCacheRec* cache, std::uint64_t position,
                                 std::uint64_t end) {
    std::array<std::uint8_t, 4> bytes{};
    if (!header.hasExtendedHeader() ||
        rcReadFromCache(cache, position, bytes.size(), bytes.data()) != fileNoErr) {
        return 0;
    }
    // Version 3 does not count the size itself, and writes it as a plain number.
    const std::uint64_t size =
        header.version == 3 ? std::uint64_t{bigEndian32(bytes)} + bytes.size() : synchsafe(bytes);
    return size <= end - position ? static_cast<std::uint32_t>(size) : 0;
}

/// How a frame's data is stored (ID3v2.3, section 3.3.1; ID3v2.4, section 4.1.2).
struct StoredForm {
    bool isClosed = false; ///< grouped or encrypted
    bool isCompressed = false;
    bool isUnsynchronised = false;
    bool hasLength = false; ///< four bytes with the length that the data has otherwise stand before it
};

StoredForm storedForm(const TagHeader& header, std::uint32_t flags) {
    const auto has = [flags](std::uint32_t flag) { return (flags & flag) != 0; };
    switch (header.version) {
    case 3:
        return {has(0x40) || has(0x20), has(0x80), false, has(0x80)};
    case 4:
        return {has(0x40) || has(0x04), has(0x08), header.isUnsynchronised() || has(0x02), has(0x01)};
    default:
        return {};
    }
}

struct PictureSignature {
    std::string_view start;
    std::uint32_t type;
};
using namespace std::string_view_literals;
constexpr auto pictureSignatures = std::to_array<PictureSignature>({{"\xFF\xD8"sv, fourCC("JPEG")},
                                                                    {"\x89PNG"sv, fourCC("PNGf")},
                                                                    {"BM"sv, fourCC("BMPf")},
                                                                    {"GIF8"sv, fourCC("GIFf")},
                                                                    {"II*\0"sv, fourCC("TIFF")},
                                                                    {"MM\0*"sv, fourCC("TIFF")}});

std::uint32_t pictureType(const FrameContent& picture) {
    const std::uint32_t known = std::min(picture.size(), 4U);
    const auto start =
        asCharacters(rcBytesInCache(picture.cache(), picture.position(), known)).substr(0, known);
    const auto* found =
        std::find_if(pictureSignatures.begin(), pictureSignatures.end(), [&](const PictureSignature& one) {
            return start.substr(0, one.start.size()) == one.start;
        });
    return found == pictureSignatures.end() ? 0 : found->type;
}

class FramesByStandard final : public FrameReading {
public:
    /// `end` is the tag's, in the cache's positions.
    FramesByStandard(audioTags* record, rcCacheRec* cache, const TagHeader& header, std::uint64_t end,
                     Pictures pictures)
        : record_(record), cache_(cache), header_(header), end_(end), pictures_(pictures) {}

    /// A frame that goes beyond the tag's end is none.
    [[nodiscard]] std::optional<std::uint32_t> sizeOf(const Frame& frame) override {
        const std::uint32_t size = header_.version == 4 ? sizeInVersion4(frame) : frame.size;
        return isInTag(frame, size) ? std::optional(size) : std::nullopt;
    }

    void take(const FrameRule& rule, const Frame& frame) override {
        const StoredForm form = storedForm(header_, frame.flags);
        FrameContent content(cache_, frame.dataPosition, frame.size);
        std::array<std::uint8_t, 4> length{};
        if (form.isClosed || (form.isCompressed && !form.hasLength)) {
            return;
        }
        if (form.hasLength) {
            const FrameContent field = content.take(length.size());
            if (rcReadFromCache(cache_, field.position(), field.size(), length.data()) != fileNoErr) {
                return;
            }
        }
        if (!form.isCompressed && !form.isUnsynchronised) {
            read(rule, content);
            return;
        }
        ByteBlock bytes =
            restore(content, form, header_.version == 3 ? bigEndian32(length) : synchsafe(length));
        if (bytes) {
            rcCacheRec memory;
            rcOpenMemory(&memory, std::move(bytes));
            read(rule, {&memory, 0, static_cast<std::uint32_t>(memory.eof)});
        }
    }

private:
    /// Sizes have seven bits a byte, but well-known writers put plain numbers there. What the first size of
    /// 128 and more is, all are.
    [[nodiscard]] std::uint32_t sizeInVersion4(const Frame& frame) {
        if (!arePlain_ && frame.size >= 0x80 && isInTag(frame, frame.size)) {
            arePlain_ = !hasSevenBits(frame.size) || fitsPlainBetter(frame);
        }
        return decodeSize(frame, arePlain_.value_or(false));
    }

    [[nodiscard]] bool fitsPlainBetter(const Frame& frame) const {
        const Fit asWritten = fitOf(frame, false);
        const Fit plain = fitOf(frame, true);
        return !asWritten.endsWell && (plain.endsWell || plain.frames > asWritten.frames);
    }

    static bool hasSevenBits(std::uint32_t size) { return (size & 0x80808080U) == 0; }

    static std::uint32_t decodeSize(const Frame& frame, bool isPlain) {
        if (isPlain || !hasSevenBits(frame.size)) {
            return frame.size;
        }
        return ((frame.size & 0x7F000000U) >> 3U) | ((frame.size & 0x7F0000U) >> 2U) |
               ((frame.size & 0x7F00U) >> 1U) | (frame.size & 0x7FU);
    }

    [[nodiscard]] bool isInTag(const Frame& frame, std::uint32_t size) const {
        return frame.dataPosition <= end_ && size <= end_ - frame.dataPosition;
    }

    /// What comes of taking sizes for one kind.
    struct Fit {
        std::size_t frames = 0; ///< that follow one another, besides the first
        bool endsWell = false;  ///< with the tag, or with zero bytes up to its end
    };

    [[nodiscard]] Fit fitOf(Frame frame, bool isPlain) const {
        Fit fit;
        for (;; ++fit.frames) {
            const std::uint32_t size = decodeSize(frame, isPlain);
            if (!isInTag(frame, size)) {
                return fit;
            }
            const std::uint64_t next = frame.dataPosition + size;
            std::array<std::uint8_t, frameHeaderSize> header{};
            if (end_ - next < header.size()) {
                fit.endsWell = isZeroFrom(next);
                return fit;
            }
            if (rcReadFromCache(cache_, next, header.size(), header.data()) != fileNoErr) {
                return fit;
            }
            if (bigEndian32(header) == 0) {
                fit.endsWell = isZeroFrom(next);
                return fit;
            }
            if (!mayBeId(header)) {
                return fit;
            }
            frame = {0, bigEndian32(header, 4), 0, next + header.size()};
        }
    }

    /// Some writers take ids of version 2 over, with a zero byte or a blank in fourth place.
    static bool mayBeId(ByteView header) {
        const auto mayBeIn = [](std::uint8_t byte) {
            return (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9');
        };
        return std::all_of(header.begin(), header.begin() + 3, mayBeIn) &&
               (mayBeIn(header[3]) || header[3] == '\0' || header[3] == ' ');
    }

    [[nodiscard]] bool isZeroFrom(std::uint64_t position) const {
        while (position < end_) {
            const ByteView bytes = rcBytesInCache(cache_, position, 1);
            const std::uint64_t count = std::min<std::uint64_t>(bytes.size(), end_ - position);
            if (count == 0 || !std::all_of(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count),
                                           [](std::uint8_t byte) { return byte == 0; })) {
                return false;
            }
            position += count;
        }
        return true;
    }

    /// The content's bytes as they were before they were stored; empty when they cannot be had.
    [[nodiscard]] ByteBlock restore(const FrameContent& content, const StoredForm& form, std::size_t length) {
        ByteBlock bytes = ByteBlock::allocate(content.size());
        if (!bytes ||
            rcReadPastCache(cache_, content.position(), content.size(), bytes.data()) != fileNoErr) {
            return {};
        }
        if (form.isUnsynchronised) {
            id3Resynchronise(&bytes);
        }
        if (!form.isCompressed) {
            return bytes;
        }
        return id3MayInflate(bytes.size(), length) ? id3Inflate(bytes.view(), length, &inflatable_)
                                                   : ByteBlock();
    }

    void read(const FrameRule& rule, FrameContent content) {
        const std::uint8_t encoding = content.takeByte();
        switch (rule.kind) {
        case FrameKind::text:
            joinTo(&(record_->*rule.field), SvxStringJoinParts(values(content, encoding), separator));
            break;
        case FrameKind::genre:
            joinTo(&(record_->*rule.field), id3GenreNames(values(content, encoding)));
            break;
        case FrameKind::remark:
            readRemark(&(record_->*rule.field), content, encoding);
            break;
        case FrameKind::track:
            if (const SvxStringRef text = firstValue(content, encoding)) {
                mp3DecodeTrackInfo(text, &record_->mp3TheTrack, &record_->mp3TrackAmount);
            }
            break;
        case FrameKind::year:
        case FrameKind::recordingTime:
            readYear(rule.kind, firstValue(content, encoding));
            break;
        case FrameKind::picture:
            readPicture(content, encoding);
            break;
        }
    }

    /// Up to the first terminator, or in version 4 the values that terminators separate.
    [[nodiscard]] SvxStringRef values(const FrameContent& content, std::uint8_t encoding) const {
        return header_.version == 4 ? content.text(encoding) : firstValue(content, encoding);
    }

    static SvxStringRef firstValue(FrameContent content, std::uint8_t encoding) {
        return SvxStringJoinParts(content.takeString(encoding).text(encoding), separator);
    }

    static void joinTo(SvxStringRef* field, SvxStringRef text) {
        if (!*field) {
            *field = std::move(text);
        } else if (text && !SvxStringIsEqual(*field, text)) {
            SvxStringAppendAfterBlank(field, SvxStringFromLatin1("/"));
            SvxStringAppendAfterBlank(field, text);
        }
    }

    void readRemark(SvxStringRef* field, FrameContent content, std::uint8_t encoding) {
        constexpr std::uint32_t languageSize = 3;
        content.take(languageSize);
        const FrameContent descriptor = content.takeString(encoding);
        const SvxStringRef name = SvxStringJoinParts(descriptor.text(encoding), separator);
        bool& isPlain = field == &record_->mp3CommentString ? hasPlainComment_ : hasPlainLyrics_;
        if (isPlain || (name && *field) || containsITunesData(name)) {
            return;
        }
        if (SvxStringRef text = firstValue(content, encoding)) {
            *field = std::move(text);
            isPlain = !name;
        }
    }

    /// The recording time begins with the year.
    void readYear(FrameKind kind, const SvxStringRef& text) {
        const std::uint16_t year = id3Year(text);
        if (year != 0 &&
            (record_->mp3Year == 0 || (kind == FrameKind::recordingTime && !hasRecordingTime_))) {
            record_->mp3Year = year;
            hasRecordingTime_ = kind == FrameKind::recordingTime;
        }
    }

    void readPicture(FrameContent content, std::uint8_t encoding) {
        constexpr std::uint32_t formatSize = 3; // of version 2; later the MIME type
        constexpr std::uint8_t latin1 = 0;
        constexpr std::uint8_t frontCover = 3;
        const FrameContent format =
            header_.version == 2 ? content.take(formatSize) : content.takeString(latin1);
        const bool isFront = content.takeByte() == frontCover;
        content.takeString(encoding); // the description
        const bool hasPicture = record_->mp3CoverArtPlace.size != 0;
        const bool isLink = SvxStringIsEqual(format.text(latin1), SvxStringFromLatin1("-->"));
        if (content.size() == 0 || isLink || hasFrontCover_ || (hasPicture && !isFront)) {
            return;
        }
        if (pictures_ == Pictures::load) {
            ByteBlock bytes = ByteBlock::allocate(content.size());
            if (!bytes || rcReadPastCache(content.cache(), content.position(), content.size(),
                                          bytes.data()) != fileNoErr) {
                return;
            }
            record_->mp3CoverArt = std::move(bytes);
        }
        record_->mp3CoverArtPlace = {content.position(), content.size()};
        record_->mp3CoverArtType = pictureType(content);
        hasFrontCover_ = isFront;
    }

    static constexpr std::string_view separator = " / ";

    audioTags* record_;
    rcCacheRec* cache_;
    const TagHeader& header_;
    std::uint64_t end_;
    Pictures pictures_;
    /// What is left to inflate in all frames together: those that are small in the file may be large in
    /// memory, and many.
    std::size_t inflatable_ = id3MostInflatedInTag;
    std::optional<bool> arePlain_; ///< the sizes, in version 4, once that is known
    bool hasPlainComment_ = false;
    bool hasPlainLyrics_ = false;
    bool hasRecordingTime_ = false;
    bool hasFrontCover_ = false;
};

/// Before version 4 a tag is unsynchronised as a whole, and its sizes are those that frames had before.
bool resynchronise(rcCacheRec* cache, std::uint64_t position, std::uint64_t end, rcCacheRec* memory) {
    ByteBlock bytes = ByteBlock::allocate(static_cast<std::size_t>(end - position));
    if (!bytes || rcReadPastCache(cache, position, static_cast<std::uint32_t>(bytes.size()), bytes.data()) !=
                      fileNoErr) {
        return false;
    }
    id3Resynchronise(&bytes);
    rcOpenMemory(memory, std::move(bytes));
    return true;
}

} // namespace

std::uint64_t id3ReadTag(audioTags* record, std::uint64_t position, std::uint64_t limit, rcCacheRec* cache,
                         Pictures pictures) noexcept {
    std::array<std::uint8_t, tagHeaderSize> bytes{};
    limit = std::min(limit, cache->eof);
    if (position > limit || limit - position < bytes.size() ||
        rcReadFromCache(cache, position, bytes.size(), bytes.data()) != fileNoErr) {
        return position;
    }
    const std::optional<TagHeader> header = decodeTagHeader(bytes, fourCC("ID3 "));
    if (!header) {
        return position;
    }
    std::uint64_t first = position + tagHeaderSize;
    const std::uint64_t tagEnd = first + header->size;
    std::uint64_t end = std::min(tagEnd, limit);
    if (header->isKnown()) {
        record->mp3TagVersion = header->version;
        rcCacheRec memory;
        const bool isStoredAsIs = header->version == 4 || !header->isUnsynchronised();
        if (!isStoredAsIs) {
            if (!resynchronise(cache, first, end, &memory)) {
                return tagEnd;
            }
            cache = &memory;
            first = 0;
            end = memory.eof;
        }
        first += extendedHeaderSize(*header, cache, first, end);
        FramesByStandard reading(record, cache, *header, end, pictures);
        walkFrames(header->layout(), cache, first, end, reading);
    }
    return tagEnd + (header->hasFooter() ? tagHeaderSize : 0);
}

void id3ReadAppendedTag(audioTags* record, rcCacheRec* cache, Pictures pictures) noexcept {
    constexpr std::uint64_t id3v1Size = 128;
    for (const std::uint64_t behind : {std::uint64_t{0}, id3v1Size}) {
        std::array<std::uint8_t, tagHeaderSize> bytes{};
        if (cache->eof < behind + bytes.size()) {
            return;
        }
        const std::uint64_t end = cache->eof - behind;
        if (rcReadFromCache(cache, end - bytes.size(), bytes.size(), bytes.data()) != fileNoErr) {
            return;
        }
        const std::optional<TagHeader> footer = decodeTagHeader(bytes, fourCC("3DI "));
        const std::uint64_t size = footer ? tagHeaderSize + std::uint64_t{footer->size} + tagHeaderSize : 0;
        if (footer && size <= end) {
            id3ReadTag(record, end - size, end - tagHeaderSize, cache, pictures);
            return;
        }
    }
}

std::uint16_t id3Year(const SvxStringRef& text) noexcept {
    constexpr std::int32_t last = 9999;
    const std::int32_t year = SvxStringGetIntValue(text);
    return year > 0 && year <= last ? static_cast<std::uint16_t>(year) : 0;
}

bool id3IsTagChunk(const Chunk& chunk) noexcept {
    return chunk.id == fourCC("ID3 ") || chunk.id == fourCC("id3 ");
}

void id3ReadTagChunk(audioTags* record, const Chunk& chunk, rcCacheRec* cache, Pictures pictures) noexcept {
    if (record->mp3TagVersion == 0) {
        const std::uint64_t start = chunk.position + chunkHeaderSize;
        id3ReadTag(record, start, start + chunk.size, cache, pictures);
    }
}

} // namespace sonarin
