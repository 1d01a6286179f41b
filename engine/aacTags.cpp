// SPDX-License-Identifier: MIT
#include "engine/aacTags.h"

#include "engine/fileEngine.h"
#include "engine/fileText.h"
#include "engine/id3genres.h"
#include "engine/id3picture.h"
#include "engine/readBudget.h"
#include "text/stringEngine.h"

#include <algorithm>
#include <array>
#include <bit>

namespace sonarin {

namespace {

constexpr std::uint32_t headerSize = sizeof(aacAtomHeader);
constexpr std::int32_t noSuchAtom = -1;
constexpr std::int32_t valueTooSmall = -2;
constexpr std::int32_t noText = -4;

std::int32_t readHeader(rcCacheRec* cache, std::uint64_t position, aacAtomHeader* header) {
    const std::int32_t result = rcReadFromCache(cache, position, headerSize, header);
    if (result == fileNoErr) {
        aacSwapAtom(header);
    }
    return result;
}

/// The code of the item types that begin with a copyright sign.
consteval std::uint32_t copyrightCode(const char (&rest)[4]) { // NOLINT(*-avoid-c-arrays)
    return fourCC({'\xA9', rest[0], rest[1], rest[2], '\0'});
}

struct TextItem {
    std::uint32_t type;
    SvxStringRef audioTags::*field;
};

constexpr auto textItems = std::to_array<TextItem>({
    {copyrightCode("nam"), &audioTags::mp3SongTitleString},
    {copyrightCode("ART"), &audioTags::mp3ArtistString},
    {copyrightCode("alb"), &audioTags::mp3AlbumString},
    {copyrightCode("wrt"), &audioTags::mp3ComposerString},
    {copyrightCode("cmt"), &audioTags::mp3CommentString},
    {copyrightCode("too"), &audioTags::mp3EncoderAppString},
    {copyrightCode("lyr"), &audioTags::mp3LyricsString},
    {fourCC("desc"), &audioTags::mp3LyricsString},
});

/// One pass over the items of the list. An item holds a value atom, whose value begins 24 bytes in.
class ItemWalk {
public:
    ItemWalk(audioTags* record, rcCacheRec* cache, Pictures pictures)
        : record_(record), cache_(cache), pictures_(pictures) {}

    void run(std::uint64_t position, std::uint64_t end) {
        while (position < end && result_ == fileNoErr) {
            aacAtomHeader item;
            if (readHeader(cache_, position, &item) != fileNoErr) {
                return;
            }
            take(position, item);
            if (item.size == 0) {
                return;
            }
            position += item.size;
        }
    }

private:
    void take(std::uint64_t position, const aacAtomHeader& item) {
        switch (item.type) {
        case copyrightCode("day"):
            takeYear(position);
            return;
        case fourCC("gnre"):
            takeGenre(position);
            return;
        case fourCC("trkn"):
            takeTrack(position);
            return;
        case fourCC("covr"):
            mp3ReadCoverArt(record_, position, item.size, cache_, pictures_);
            return;
        default:
            break;
        }
        const auto* text = std::find_if(textItems.begin(), textItems.end(), [&](const TextItem& candidate) {
            return candidate.type == item.type;
        });
        if (text != textItems.end() && mayReadText(position)) {
            aacReadQuickTimeToSvxStringRef(cache_, position, &(record_->*text->field));
        }
    }

    /// A value's size is not limited by its item's.
    bool mayReadText(std::uint64_t position) {
        aacAtomHeader value;
        return readHeader(cache_, position + headerSize, &value) == fileNoErr &&
               budget_.allows(position + headerSize, value.size);
    }

    /// The first four characters of a date, taken for digits unseen.
    void takeYear(std::uint64_t position) {
        std::array<std::uint8_t, 4> date{};
        result_ = rcReadFromCache(cache_, position + 24, date.size(), date.data());
        if (result_ != fileNoErr) {
            return;
        }
        std::uint32_t year = 0;
        for (const std::uint8_t digit : date) {
            year = year * 10 + digit - '0';
        }
        record_->mp3Year = static_cast<std::uint16_t>(year);
    }

    void takeGenre(std::uint64_t position) {
        std::array<std::uint8_t, 4> value{};
        result_ = rcReadFromCache(cache_, position + 22, value.size(), value.data());
        if (result_ != fileNoErr) {
            return;
        }
        const std::uint32_t number = bigEndian16(value, 2);
        record_->mp3Genre = static_cast<std::int16_t>(number);
        record_->mp3Genre2String = mp3LoadGenreString(static_cast<std::int32_t>(number));
    }

    void takeTrack(std::uint64_t position) {
        // A missing number leaves its field as it was; only the second one's failure ends the walk.
        (void)rcReadUInt16FromCache(cache_, position + 26, rcByteOrderBig, &record_->mp3TheTrack);
        result_ = rcReadUInt16FromCache(cache_, position + 28, rcByteOrderBig, &record_->mp3TrackAmount);
    }

    audioTags* record_;
    rcCacheRec* cache_;
    Pictures pictures_;
    ReadBudget budget_{cache_->eof};
    std::int32_t result_ = fileNoErr; ///< of the last read that may end the walk
};

/// kbit/s of 1024 bits over the whole file but what stands before the movie header and 4096 bytes more,
/// rounded up to a multiple of 8. Rates are 16.16 fixed-point numbers; both divisions truncate.
std::uint32_t estimateBitRate(std::uint32_t timeScale, std::uint32_t duration, std::uint64_t fileSize,
                              std::uint64_t movieHeader) {
    constexpr std::uint32_t otherBytes = 4096;
    const auto bytes =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(fileSize - movieHeader) - otherBytes);
    const std::uint64_t rate = divide(std::uint64_t{timeScale} << 16U, duration);
    const std::uint64_t bytesPerSecond = (static_cast<std::uint64_t>(std::max(bytes, 0)) * rate) >> 16U;
    const std::uint64_t eighths = bytesPerSecond / 128;
    return static_cast<std::uint32_t>((eighths + 7) / 8 * 8);
}

/// Duration and bit rate from the movie header at `position`. False when it cannot be read.
bool readMovieHeader(rcCacheRec* cache, std::uint64_t position, audioTags* record) {
    std::array<std::uint8_t, 24> fields{}; // of version 0; the version is not looked at
    if (rcReadFromCache(cache, position + headerSize, fields.size(), fields.data()) != fileNoErr) {
        return false;
    }
    const std::uint32_t timeScale = bigEndian32(fields, 12);
    const std::uint32_t duration = bigEndian32(fields, 16);
    record->mp3SongLen = static_cast<std::uint16_t>(divide(duration, timeScale));
    if (record->mp3SongLen != 0) {
        record->mp3BitRate = estimateBitRate(timeScale, duration, cache->eof, position);
    }
    return true;
}

} // namespace

void aacSwapAtom(aacAtomHeader* header) noexcept {
    const auto bytes = std::bit_cast<std::array<std::uint8_t, headerSize>>(*header);
    header->size = bigEndian32(bytes);
    header->type = bigEndian32(bytes, 4);
}

std::int32_t findQTAtom(std::uint32_t type, std::uint64_t* position, std::uint32_t limit, rcCacheRec* cache,
                        aacAtomHeader* header) noexcept {
    header->type = 0;
    for (;;) {
        std::int32_t result = readHeader(cache, *position, header);
        if (result != fileNoErr) {
            return result;
        }
        if (header->type == type) {
            return fileNoErr;
        }
        std::uint64_t step = header->size;
        if (step == 1) {
            result = rcReadUInt64FromCache(cache, *position + headerSize, rcByteOrderBig, &step);
            if (result != fileNoErr) {
                return result;
            }
        }
        // No step would never come to an end. By subtraction, so that none wraps around.
        if (step == 0 || step >= limit - std::min<std::uint64_t>(limit, *position)) {
            return noSuchAtom;
        }
        *position += step;
    }
}

std::int32_t aacReadQuickTimeToSvxStringRef(rcCacheRec* cache, std::uint64_t itemPosition,
                                            SvxStringRef* field) noexcept {
    constexpr std::uint32_t fieldsBeforeValue = 16;
    aacAtomHeader value;
    const std::int32_t result = readHeader(cache, itemPosition + headerSize, &value);
    if (result != fileNoErr) {
        return result;
    }
    if (value.size < fieldsBeforeValue) {
        return valueTooSmall;
    }
    const std::uint32_t length = value.size - fieldsBeforeValue;
    const std::uint64_t start = itemPosition + headerSize + fieldsBeforeValue;
    if (length != 0 && !rcRangeIsInFile(*cache, start, length)) {
        return fileEofErr;
    }
    SvxStringRef text = readUTF8Text(cache, start, length);
    if (!text) {
        return noText;
    }
    if (beginsWithITunesData(text)) {
        return fileNoErr;
    }
    if (SvxStringIsValid(*field)) {
        SvxStringAppendAfterBlank(field, text);
    } else {
        *field = std::move(text);
    }
    return fileNoErr;
}

bool aacGetFileInfo(const SvxStringRef& path, audioTags* record, const ReadOptions& options) noexcept {
    CachedFile file(path, options.progress);
    rcCacheRec* cache = file.cache();
    aacAtomHeader atom;
    if (!file || readHeader(cache, 0, &atom) != fileNoErr || atom.type != fourCC("ftyp")) {
        return false;
    }
    // Searches end where the low 32 bits of the file's size say.
    const auto limit = static_cast<std::uint32_t>(cache->eof);
    std::uint64_t position = atom.size;
    if (findQTAtom(fourCC("moov"), &position, limit, cache, &atom) != fileNoErr) {
        return false;
    }
    position += headerSize;
    if (findQTAtom(fourCC("mvhd"), &position, limit, cache, &atom) != fileNoErr ||
        !readMovieHeader(cache, position, record)) {
        return false;
    }
    position += atom.size;
    if (findQTAtom(fourCC("udta"), &position, limit, cache, &atom) != fileNoErr) {
        return false;
    }
    // The list stands in "meta", the first child, whose header is followed by version and flags.
    position += headerSize + headerSize + 4;
    if (findQTAtom(fourCC("ilst"), &position, limit, cache, &atom) != fileNoErr) {
        return false;
    }
    ItemWalk(record, cache, options.pictures).run(position + headerSize, position + atom.size);
    return true;
}

} // namespace sonarin
