// SPDX-License-Identifier: MIT
#include "engine/id3picture.h"

#include "engine/fileEngine.h"

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

/// A picture that was found.
struct FoundPicture {
    PictureStart start;
    std::array<std::uint8_t, 16> firstBytes{}; ///< as many as were looked at, zero behind them
    std::size_t knownBytes = 0;

    /// `bytes` hold the start; they stand `offset` bytes behind the range's beginning.
    FoundPicture(PictureStart found, ByteView bytes, std::size_t offset) : start(found) {
        const ByteView picture = bytes.subspan(std::min(found.skip - offset, bytes.size()));
        knownBytes = std::min(picture.size(), firstBytes.size());
        std::copy_n(picture.begin(), knownBytes, firstBytes.begin());
    }
};

/// Frame contents that begin with a known format. The skip passes over the format with its zero byte, the
/// picture type and the zero byte of an empty one-byte description; any other description stays in front.
struct FormatRule {
    std::string_view start; ///< with its terminating zero byte
    PictureStart picture;
};

using namespace std::string_view_literals;

constexpr auto formatRules = std::to_array<FormatRule>({
    {"image/jpg\0"sv, {typeJPEG, 12}},
    {"image/jpeg\0"sv, {typeJPEG, 13}},
    {"image/png\0"sv, {typePNG, 12}},
    {"image/bmp\0"sv, {typeBMP, 12}},
    {"JPG\0"sv, {typeJPEG, 5}},
});

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
std::optional<FoundPicture> startByScan(rcCacheRec* cache, FilePlace range) {
    for (std::size_t position = 0; range.size - position >= scannedSize;) {
        ByteView bytes = rcBytesInCache(cache, range.position + position, scannedSize);
        if (bytes.empty()) {
            return std::nullopt;
        }
        bytes = bytes.first(std::min(bytes.size(), range.size - position));
        if (auto start = startIn(bytes)) {
            start->skip += position;
            return FoundPicture(*start, bytes, position);
        }
        position += bytes.size() - (scannedSize - 1);
        if (bytes.back() == 0) { // else a start may go on in a hole
            // The last bytes of a hole may belong to a start, two of which begin with zero bytes.
            const std::uint64_t data =
                rcPastHole(cache, range.position + position + scannedSize) - scannedSize;
            position = std::min<std::uint64_t>(data - range.position, range.size);
        }
    }
    return std::nullopt;
}

std::optional<FoundPicture> findPicture(rcCacheRec* cache, FilePlace range) {
    std::array<std::uint8_t, smallestFrame> head{};
    if (rcReadFromCache(cache, range.position, head.size(), head.data()) != fileNoErr) {
        return std::nullopt;
    }
    const auto start = startByFormat(head);
    return start ? FoundPicture(*start, head, 0) : startByScan(cache, range);
}

/// The picture's bytes; none when they cannot be had, or the file is no longer the one that it was found in.
/// Goes past the cache's buffer, so that what follows is read alike with and without it.
ByteBlock loadPicture(rcCacheRec* cache, FilePlace place, const FoundPicture& found) {
    std::uint64_t size = 0;
    ByteBlock bytes = ByteBlock::allocate(place.size);
    if (!bytes || rcReadPastCache(cache, place.position, place.size, bytes.data()) != fileNoErr ||
        feGetEOF(cache->refNum, &size) != fileNoErr || size != cache->eof ||
        !std::equal(found.firstBytes.begin(),
                    found.firstBytes.begin() + std::min<std::size_t>(found.knownBytes, place.size),
                    bytes.data())) {
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
    if (!rcRangeIsInFile(*cache, offset, count)) {
        return -2;
    }
    const auto found = findPicture(cache, {offset, count});
    if (!found) {
        return -2;
    }
    const std::size_t skip = found->start.skip;
    const FilePlace place = {offset + skip, static_cast<std::uint32_t>(count - skip)};
    if (pictures == Pictures::load) {
        ByteBlock bytes = loadPicture(cache, place, *found);
        if (!bytes) {
            return -2;
        }
        record->mp3CoverArt = std::move(bytes);
    }
    record->mp3CoverArtPlace = place;
    record->mp3CoverArtType = found->start.type;
    return 0;
}

} // namespace sonarin
