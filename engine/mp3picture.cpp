// SPDX-License-Identifier: MIT
#include "engine/fileEngine.h"
#include "engine/mp3tags.h"

#include <array>
#include <optional>
#include <string_view>

namespace sonarin {

namespace {

constexpr std::uint32_t typeJPEG = fourCC("JPEG");
constexpr std::uint32_t typePNG = fourCC("PNGf");
constexpr std::uint32_t typeBMP = fourCC("BMPf");

constexpr std::uint32_t pngSignature = 0x89504E47;
constexpr std::uint32_t jpegWithComment = 0x0000FFFE; ///< two zero bytes and a JPEG comment marker
constexpr std::uint32_t jpegStart = 0x0000FFD8;       ///< two zero bytes and the JPEG start-of-image marker
constexpr std::uint32_t jpgFormat = 0x4A504700;       ///< "JPG" and picture type 0, as in ID3v2.2

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

/// The first place anywhere that looks like the start of a picture.
std::optional<PictureStart> startByScan(ByteView bytes) {
    for (std::size_t position = 0; position + 4 <= bytes.size(); ++position) {
        if (!endsStart[bytes[position + 3]]) {
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

} // namespace

std::int32_t mp3ReadCoverArt(audioTags* record, std::uint64_t offset, std::uint32_t count,
                             rcCacheRec* cache) noexcept {
    constexpr std::uint32_t smallestFrame = 100;
    if (count < smallestFrame) {
        return -1;
    }
    if (!rcRangeIsInFile(*cache, offset, count)) {
        return -2;
    }
    ByteBlock bytes = ByteBlock::allocate(count);
    if (!bytes || rcReadFromCache(cache, offset, count, bytes.data()) != fileNoErr) {
        return -2;
    }
    auto start = startByFormat(bytes.view());
    if (!start) {
        start = startByScan(bytes.view());
    }
    if (!start) {
        return -2;
    }
    bytes.dropFront(start->skip);
    record->mp3CoverArt = std::move(bytes);
    record->mp3CoverArtType = start->type;
    return 0;
}

} // namespace sonarin
