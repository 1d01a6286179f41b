// SPDX-License-Identifier: MIT
#include "engine/fileEngine.h"
#include "engine/mp3tags.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace sonarin {

namespace {

constexpr std::uint32_t typeJPEG = fourCC("JPEG");
constexpr std::uint32_t typePNG = fourCC("PNGf");
constexpr std::uint32_t typeBMP = fourCC("BMPf");

constexpr std::uint32_t pngSignature = 0x89504E47;
constexpr std::uint32_t jpegWithComment = 0x0000FFFE; ///< two zero bytes and a JPEG comment marker
constexpr std::uint32_t jpegStart = 0x0000FFD8;       ///< two zero bytes and the JPEG start-of-image marker
constexpr std::uint32_t jpgFormat = 0x4A504700;       ///< "JPG" and picture type 0, as in ID3v2.2

constexpr std::uint32_t smallestFrame = 100;
constexpr std::size_t scannedSize = 4; ///< of the starts that are looked for everywhere

struct PictureStart {
    std::uint32_t type;
    std::size_t skip; ///< the picture begins behind that many bytes
};

/// Frame contents that begin with a known format. The skip passes over the format with its zero byte, the
/// picture type and the zero byte of an empty one-byte description; any other description stays in front.
struct FormatRule {
    std::string_view start; ///< with its terminating zero byte
    PictureStart picture;
};

using namespace std::string_view_literals;

constexpr std::array<FormatRule, 5> formatRules = {{
    {"image/jpg\0"sv, {typeJPEG, 12}},
    {"image/jpeg\0"sv, {typeJPEG, 13}},
    {"image/png\0"sv, {typePNG, 12}},
    {"image/bmp\0"sv, {typeBMP, 12}},
    {"JPG\0"sv, {typeJPEG, 5}},
}};

std::optional<PictureStart> startByFormat(ByteView bytes) {
    for (const FormatRule& rule : formatRules) {
        if (asCharacters(bytes).substr(0, rule.start.size()) != rule.start) {
            continue;
        }
        PictureStart picture = rule.picture;
        const std::uint32_t first = bigEndian32(bytes, picture.skip);
        if (first == jpegWithComment) {
            picture.type = typeJPEG;
        } else if (first == pngSignature) {
            picture.type = typePNG;
        }
        return picture;
    }
    return std::nullopt;
}

/// The last bytes of the four starts that are looked for everywhere: most places are passed by on one byte.
constexpr std::array<bool, 0x100> endsStart = [] {
    std::array<bool, 0x100> ends{};
    for (const std::uint32_t start : {jpgFormat, jpegWithComment, jpegStart, pngSignature}) {
        ends.at(start & 0xFFU) = true;
    }
    return ends;
}();

/// The first place in `bytes` that looks like the start of a picture.
std::optional<PictureStart> startIn(ByteView bytes) {
    for (std::size_t position = 0; position + scannedSize <= bytes.size(); ++position) {
        if (!endsStart[bytes[position + scannedSize - 1]]) {
            continue;
        }
        switch (bigEndian32(bytes, position)) {
        case jpgFormat:
        case jpegWithComment:
        case jpegStart:
            return PictureStart{typeJPEG, position + 2};
        case pngSignature:
            return PictureStart{typePNG, position};
        default:
            break;
        }
    }
    return std::nullopt;
}

/// The first such place anywhere in the range.
std::optional<PictureStart> startByScan(rcCacheRec* cache, FilePlace range) {
    for (std::size_t position = 0; range.size - position >= scannedSize;) {
        ByteView bytes = rcBytesInCache(cache, range.position + position, scannedSize);
        if (bytes.empty()) {
            return std::nullopt;
        }
        bytes = bytes.first(std::min(bytes.size(), range.size - position));
        if (auto start = startIn(bytes)) {
            start->skip += position;
            return start;
        }
        position += bytes.size() - (scannedSize - 1);
    }
    return std::nullopt;
}

std::optional<PictureStart> findPicture(rcCacheRec* cache, FilePlace range) {
    const ByteView head = rcBytesInCache(cache, range.position, smallestFrame);
    if (head.empty()) {
        return std::nullopt;
    }
    const auto start = startByFormat(head);
    return start ? start : startByScan(cache, range);
}

/// The picture's bytes; none when they cannot be had, or are no longer those that were found there.
ByteBlock loadPicture(rcCacheRec* cache, FilePlace place) {
    std::array<std::uint8_t, 16> found{};
    const auto compared = static_cast<std::uint32_t>(std::min<std::size_t>(found.size(), place.size));
    ByteBlock bytes = ByteBlock::allocate(place.size);
    if (!bytes || rcReadFromCache(cache, place.position, compared, found.data()) != fileNoErr ||
        rcReadFromCache(cache, place.position, place.size, bytes.data()) != fileNoErr ||
        !std::equal(found.begin(), found.begin() + compared, bytes.data())) {
        return {};
    }
    return bytes;
}

} // namespace

std::int32_t mp3ReadCoverArt(audioTags* record, std::uint64_t offset, std::uint32_t count, rcCacheRec* cache,
                             Pictures pictures) noexcept {
    if (count < smallestFrame) {
        return -1;
    }
    const auto start =
        rcRangeIsInFile(*cache, offset, count) ? findPicture(cache, {offset, count}) : std::nullopt;
    if (!start) {
        return -2;
    }
    const FilePlace place = {offset + start->skip, static_cast<std::uint32_t>(count - start->skip)};
    if (pictures == Pictures::load) {
        ByteBlock bytes = loadPicture(cache, place);
        if (!bytes) {
            return -2;
        }
        record->mp3CoverArt = std::move(bytes);
    }
    record->mp3CoverArtPlace = place;
    record->mp3CoverArtType = start->type;
    return 0;
}

} // namespace sonarin
