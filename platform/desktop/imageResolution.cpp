// SPDX-License-Identifier: MIT
#include "platform/desktop/imageResolution.h"

#include "platform/host/bytes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace sonarin {

namespace {

constexpr double inchesPerMetre = 1 / 0.0254;

template <std::size_t Size>
bool beginsWith(ByteView bytes, const std::array<std::uint8_t, Size>& start) {
    return bytes.size() >= Size && std::equal(start.begin(), start.end(), bytes.begin());
}

/// Whole dots per inch are meant where rounding them to dots per metre gives that number: 2835 is 72.
double fromDotsPerMetre(std::uint32_t dots) {
    const double exact = dots / inchesPerMetre;
    const double whole = std::round(exact);
    return std::lround(whole * inchesPerMetre) == static_cast<long>(dots) ? whole : exact;
}

/// PNG, section 11.3.5.3: pHYs stands before the image data; unit 1 is the metre.
ImageResolution ofPng(ByteView bytes) {
    constexpr std::uint32_t physChunk = fourCC("pHYs");
    constexpr std::uint32_t dataChunk = fourCC("IDAT");
    constexpr std::size_t wholePhys = 8 + 9;
    std::size_t position = 8;
    while (bytes.size() - position >= wholePhys) {
        const std::uint32_t size = bigEndian32(bytes, position);
        const std::uint32_t type = bigEndian32(bytes, position + 4);
        if (type == physChunk && bytes[position + 16] == 1) {
            return {fromDotsPerMetre(bigEndian32(bytes, position + 8)),
                    fromDotsPerMetre(bigEndian32(bytes, position + 12))};
        }
        if (type == dataChunk || type == physChunk || size > bytes.size() - position - wholePhys) {
            break;
        }
        position += std::size_t{size} + 12;
    }
    return {};
}

/// JFIF 1.02: the APP0 segment stands right behind the start of the image; unit 1 is the inch, 2 the
/// centimetre.
ImageResolution ofJpeg(ByteView bytes) {
    constexpr std::array<std::uint8_t, 4> app0 = {0xFF, 0xD8, 0xFF, 0xE0};
    constexpr std::array<std::uint8_t, 5> jfif = {'J', 'F', 'I', 'F', 0};
    if (bytes.size() < 18 || !beginsWith(bytes, app0) || !beginsWith(bytes.subspan(6), jfif)) {
        return {};
    }
    const double unit = bytes[13] == 1 ? 1.0 : bytes[13] == 2 ? 2.54 : 0.0;
    return {bigEndian16(bytes, 14) * unit, bigEndian16(bytes, 16) * unit};
}

/// BITMAPINFOHEADER: dots per metre at offset 24 of a header that begins behind 14 bytes.
ImageResolution ofBmp(ByteView bytes) {
    constexpr std::uint32_t headerSize = 40;
    if (bytes.size() < 14 + headerSize || littleEndian32(bytes, 14) < headerSize) {
        return {};
    }
    return {fromDotsPerMetre(littleEndian32(bytes, 38)), fromDotsPerMetre(littleEndian32(bytes, 42))};
}

} // namespace

ImageResolution recordedResolution(ByteView bytes) noexcept {
    constexpr std::array<std::uint8_t, 8> png = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    constexpr std::array<std::uint8_t, 2> jpeg = {0xFF, 0xD8};
    constexpr std::array<std::uint8_t, 2> bmp = {'B', 'M'};
    if (beginsWith(bytes, png)) {
        return ofPng(bytes);
    }
    if (beginsWith(bytes, jpeg)) {
        return ofJpeg(bytes);
    }
    return beginsWith(bytes, bmp) ? ofBmp(bytes) : ImageResolution();
}

} // namespace sonarin
