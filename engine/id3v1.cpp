// SPDX-License-Identifier: MIT
#include "engine/id3v1.h"

#include "engine/fileEngine.h"
#include "engine/id3genres.h"
#include "engine/id3standard.h"
#include "text/stringEngine.h"

#include <array>
#include <utility>

namespace sonarin {

namespace {

constexpr std::size_t blockSize = 128;

/// Without the blanks and zero bytes at the end.
std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.back() == ' ' || text.back() == '\0')) {
        text.remove_suffix(1);
    }
    return text;
}

std::string_view textField(ByteView block, std::size_t offset, std::size_t size) {
    return trimmed(asCharacters(block.subspan(offset, size)));
}

/// ID3v1.1 takes the comment's last two bytes for a zero and the track number.
bool hasTrack(ByteView block) {
    return block[125] == 0 && block[126] != 0;
}

void storeUnlessEmpty(std::string_view text, SvxStringRef* field) {
    if (!text.empty()) {
        *field = SvxStringFromCString(text);
    }
}

/// Texts are ISO-8859-1 and end before the first zero byte; what an ID3v2 tag gave stays.
class BlockByStandard {
public:
    BlockByStandard(ByteView block, audioTags* record) : block_(block), record_(record) {}

    /// Whether anything is missing that the block could give.
    static bool isWanted(const audioTags& record) {
        return !record.mp3SongTitleString || !record.mp3ArtistString || !record.mp3AlbumString ||
               !record.mp3CommentString || !record.mp3Genre2String || record.mp3Year == 0 ||
               record.mp3TheTrack == 0;
    }

    void store() {
        if (record_->mp3TagVersion == 0) {
            record_->mp3TagVersion = 1;
            record_->mp3Genre = static_cast<std::int8_t>(block_[127]); // NOLINT(*-signed-char-misuse)
        }
        storeText(3, 30, &record_->mp3SongTitleString);
        storeText(33, 30, &record_->mp3ArtistString);
        storeText(63, 30, &record_->mp3AlbumString);
        storeText(97, 30, &record_->mp3CommentString); // of which a zero byte parts a track
        if (hasTrack(block_) && record_->mp3TheTrack == 0) {
            record_->mp3TheTrack = block_[126];
        }
        if (record_->mp3Year == 0) {
            record_->mp3Year = id3Year(text(93, 4));
        }
        if (!record_->mp3Genre2String) {
            record_->mp3Genre2String = id3GenreName(block_[127]);
        }
    }

private:
    [[nodiscard]] SvxStringRef text(std::size_t offset, std::size_t size) const {
        const std::string_view field = asCharacters(block_.subspan(offset, size));
        return SvxStringFromLatin1(trimmed(field.substr(0, field.find('\0'))));
    }

    void storeText(std::size_t offset, std::size_t size, SvxStringRef* field) const {
        SvxStringRef found = text(offset, size);
        if (!*field && SvxStringGetLength(found) != 0) {
            *field = std::move(found);
        }
    }

    ByteView block_;
    audioTags* record_;
};

} // namespace

void mp3ReadV1Tag(audioTags* record, rcCacheRec* cache, std::uint64_t fileSize, TagReading reading) noexcept {
    const bool isByStandard = reading == TagReading::byStandard;
    if (isByStandard && !BlockByStandard::isWanted(*record)) {
        return;
    }
    std::array<std::uint8_t, blockSize> block{};
    if (fileSize < block.size() ||
        rcReadFromCache(cache, fileSize - block.size(), block.size(), block.data()) != fileNoErr ||
        bigEndian24(block) != (fourCC("TAG ") >> 8U)) {
        return;
    }
    if (isByStandard) {
        BlockByStandard(block, record).store();
        return;
    }
    record->mp3TagVersion = 1;
    record->mp3SongTitleString = SvxStringFromCString(textField(block, 3, 30));
    storeUnlessEmpty(textField(block, 33, 30), &record->mp3ArtistString);
    storeUnlessEmpty(textField(block, 63, 30), &record->mp3AlbumString);

    if (hasTrack(block)) {
        record->mp3TheTrack = block[126];
    }
    storeUnlessEmpty(textField(block, 97, hasTrack(block) ? 28 : 30), &record->mp3CommentString);

    const SvxStringRef year = SvxStringFromCString(asCharacters(ByteView(block).subspan(93, 4)));
    record->mp3Year = static_cast<std::uint16_t>(SvxStringGetIntValue(year));
    record->mp3Genre = static_cast<std::int8_t>(block[127]); // NOLINT(*-signed-char-misuse)
    record->mp3Genre2String = mp3LoadGenreString(record->mp3Genre + 1);
}

} // namespace sonarin
