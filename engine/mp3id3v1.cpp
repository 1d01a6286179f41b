// SPDX-License-Identifier: MIT
#include "engine/fileEngine.h"
#include "engine/mp3tags.h"
#include "text/stringEngine.h"

#include <array>

namespace sonarin {

namespace {

constexpr std::size_t blockSize = 128;

/// One text field of the block, without the blanks and zero bytes at its end.
std::string_view textField(ByteView block, std::size_t offset, std::size_t size) {
    std::string_view text = asCharacters(block.subspan(offset, size));
    while (!text.empty() && (text.back() == ' ' || text.back() == '\0')) {
        text.remove_suffix(1);
    }
    return text;
}

void storeUnlessEmpty(std::string_view text, SvxStringRef* field) {
    if (!text.empty()) {
        *field = SvxStringFromCString(text);
    }
}

} // namespace

void mp3ReadV1Tag(audioTags* record, rcCacheRec* cache, std::uint64_t fileSize) noexcept {
    std::array<std::uint8_t, blockSize> block{};
    if (fileSize < block.size() ||
        rcReadFromCache(cache, fileSize - block.size(), block.size(), block.data()) != fileNoErr ||
        bigEndian24(block) != (fourCC("TAG ") >> 8U)) {
        return;
    }
    record->mp3TagVersion = 1;
    record->mp3SongTitleString = SvxStringFromCString(textField(block, 3, 30));
    storeUnlessEmpty(textField(block, 33, 30), &record->mp3ArtistString);
    storeUnlessEmpty(textField(block, 63, 30), &record->mp3AlbumString);

    // ID3v1.1 takes the comment's last two bytes for a zero and the track number.
    const bool hasTrack = block[125] == 0 && block[126] != 0;
    if (hasTrack) {
        record->mp3TheTrack = block[126];
    }
    storeUnlessEmpty(textField(block, 97, hasTrack ? 28 : 30), &record->mp3CommentString);

    const SvxStringRef year = SvxStringFromCString(asCharacters(ByteView(block).subspan(93, 4)));
    record->mp3Year = static_cast<std::uint16_t>(SvxStringGetIntValue(year));
    record->mp3Genre = static_cast<std::int8_t>(block[127]); // NOLINT(*-signed-char-misuse)
    record->mp3Genre2String = mp3LoadGenreString(record->mp3Genre + 1);
}

} // namespace sonarin
