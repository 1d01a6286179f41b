// SPDX-License-Identifier: MIT
#include "text/textDecoding.h"

#include "text/byteLanes.h"
#include "text/unicodeForms.h"

#include <array>

namespace sonarin {

namespace {

/// Mac OS Roman, the characters of the bytes 0x80 to 0xFF (the mapping that Unicode, Inc. publishes as
/// ROMAN.TXT, with the euro sign at 0xDB).
constexpr auto macRomanUpperHalf = std::to_array<char16_t>({
    // clang-format off
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5, 0x00E7, 0x00E9, 0x00E8, // 80
    0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3, 0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, // 90
    0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6, 0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8, // A0
    0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8, // B0
    0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB, 0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153, // C0
    0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02, // D0
    0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1, 0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4, // E0
    0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0x0131, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7, // F0
    // clang-format on
});

constexpr char16_t macRomanUnit(char byte) {
    const char16_t value = unitOf(byte);
    return value < 0x80 ? value : macRomanUpperHalf[value - 0x80U];
}

/// What the first pass finds out.
struct Extent {
    std::size_t units = 0;
    bool wide = false;
};

/// Each encoding below tells how much of a piece is whole characters, measures such a piece (false when it is
/// invalid), and writes its units, answering the place behind the last one.
struct Ascii {
    static std::string_view wholeCharacters(std::string_view piece) { return piece; }

    static bool measure(std::string_view piece, Extent& extent) {
        extent.units += piece.size();
        return asciiRun(piece) == piece.size();
    }

    template <class Unit>
    static Unit* write(std::string_view piece, Unit* out) {
        for (const char byte : piece) {
            *out++ = static_cast<Unit>(byte);
        }
        return out;
    }
};

struct Latin1 {
    static std::string_view wholeCharacters(std::string_view piece) { return piece; }

    static bool measure(std::string_view piece, Extent& extent) {
        extent.units += piece.size();
        return true;
    }

    template <class Unit>
    static Unit* write(std::string_view piece, Unit* out) {
        return copyUnits(piece, out);
    }
};

struct MacRoman {
    static std::string_view wholeCharacters(std::string_view piece) { return piece; }

    static bool measure(std::string_view piece, Extent& extent) {
        extent.units += piece.size();
        for (std::size_t i = asciiRun(piece); i < piece.size() && !extent.wide; ++i) {
            extent.wide = macRomanUnit(piece[i]) > 0xFF;
        }
        return true;
    }

    template <class Unit>
    static Unit* write(std::string_view piece, Unit* out) {
        for (const char byte : piece) {
            *out++ = static_cast<Unit>(macRomanUnit(byte));
        }
        return out;
    }
};

struct Utf8 {
    static std::string_view wholeCharacters(std::string_view piece) { return completeUtf8(piece); }

    static bool measure(std::string_view piece, Extent& extent) {
        bool valid = true;
        forEachRun(
            piece, [&](std::string_view ascii) { extent.units += ascii.size(); },
            [&](CodePoint character) {
                valid = character != malformed;
                extent.units += character > 0xFFFF ? 2 : 1;
                extent.wide = extent.wide || character > 0xFF;
                return valid;
            });
        return valid;
    }

    template <class Unit>
    static Unit* write(std::string_view piece, Unit* out) {
        forEachRun(
            piece, [&](std::string_view ascii) { out = Ascii::write(ascii, out); },
            [&](CodePoint character) {
                if constexpr (sizeof(Unit) == 1) {
                    *out++ = static_cast<Unit>(character);
                } else {
                    out = encodeUtf16(character, out);
                }
                return true;
            });
        return out;
    }

private:
    /// Hands out runs of ASCII and single other characters until the end or until `onCharacter` answers
    /// false.
    template <class OnAscii, class OnCharacter>
    static void forEachRun(std::string_view piece, OnAscii onAscii, OnCharacter onCharacter) {
        for (std::size_t i = 0; i < piece.size();) {
            if (unitOf(piece[i]) < 0x80) {
                const std::string_view ascii = piece.substr(i, asciiRun(piece.substr(i)));
                onAscii(ascii);
                i += ascii.size();
            } else if (!onCharacter(decodeUtf8(piece, &i))) {
                return;
            }
        }
    }
};

/// `highByte` is the place of a unit's more significant byte.
template <std::size_t highByte>
struct Utf16 {
    static std::string_view wholeCharacters(std::string_view piece) {
        return piece.substr(0, piece.size() & ~std::size_t{1});
    }

    static bool measure(std::string_view piece, Extent& extent) {
        unsigned all = 0;
        forEachUnit(piece, [&all](unsigned unit) { all |= unit; });
        extent.units += piece.size() / 2;
        extent.wide = extent.wide || all > 0xFF;
        return true;
    }

    template <class Unit>
    static Unit* write(std::string_view piece, Unit* out) {
        forEachUnit(piece, [&out](unsigned unit) { *out++ = static_cast<Unit>(unit); });
        return out;
    }

private:
    template <class OnUnit>
    static void forEachUnit(std::string_view piece, OnUnit onUnit) {
        for (std::size_t i = 0; i + 1 < piece.size(); i += 2) {
            onUnit(unitOf(piece[i + 1 - highByte]) | (unsigned{unitOf(piece[i + highByte])} << 8U));
        }
    }
};
using Utf16LittleEndian = Utf16<1>;
using Utf16BigEndian = Utf16<0>;

/// Calls `onPiece` for the whole characters of one piece after the other; false as soon as it answers false
/// or a piece cannot be had.
template <class Encoding, class OnPiece>
bool forEachPiece(SvxByteSource& source, std::uint64_t size, OnPiece onPiece) {
    for (std::uint64_t position = 0; position < size;) {
        std::string_view piece = source.pieceAt(position);
        if (position + piece.size() < size) {
            piece = Encoding::wholeCharacters(piece);
        }
        if (piece.empty() || !onPiece(piece)) {
            return false;
        }
        position += piece.size();
    }
    return true;
}

template <class Encoding, class Unit>
SvxStringRef fill(SvxByteSource& source, std::uint64_t size, std::size_t units) {
    SvxStringBuilder<Unit> text(units);
    if (!text) {
        return nullptr;
    }
    Unit* out = text.units();
    Unit* const end = out + units;
    // The file may have changed since it was measured, so a piece that no longer fits ends the reading.
    const bool filled = forEachPiece<Encoding>(source, size, [&](std::string_view piece) {
        Extent now;
        if (!Encoding::measure(piece, now) || now.units > static_cast<std::size_t>(end - out) ||
            (now.wide && sizeof(Unit) == 1)) {
            return false;
        }
        out = Encoding::write(piece, out);
        return true;
    });
    return filled && out == end ? text.finish(end) : nullptr;
}

template <class Encoding>
SvxStringRef decode(SvxByteSource& source, std::uint64_t size) {
    Extent extent;
    if (!forEachPiece<Encoding>(source, size,
                                [&](std::string_view piece) { return Encoding::measure(piece, extent); })) {
        return nullptr;
    }
    return extent.wide ? fill<Encoding, char16_t>(source, size, extent.units)
                       : fill<Encoding, char>(source, size, extent.units);
}

} // namespace

std::size_t asciiRun(std::string_view bytes) noexcept {
    std::size_t run = 0;
    while (bytes.size() - run >= sizeof(ByteLanes) && !anyLane(loadLanes(bytes.data() + run) & 0x80)) {
        run += sizeof(ByteLanes);
    }
    while (run < bytes.size() && unitOf(bytes[run]) < 0x80) {
        ++run;
    }
    return run;
}

SvxStringRef SvxStringFromSource(SvxEncoding encoding, SvxByteSource& source) noexcept {
    const std::uint64_t size = source.size();
    switch (encoding) {
    case SvxEncoding::ascii:
        return decode<Ascii>(source, size);
    case SvxEncoding::latin1:
        return decode<Latin1>(source, size);
    case SvxEncoding::macRoman:
        return decode<MacRoman>(source, size);
    case SvxEncoding::utf8:
        return decode<Utf8>(source, size);
    case SvxEncoding::utf16LittleEndian:
        return decode<Utf16LittleEndian>(source, size & ~std::uint64_t{1});
    case SvxEncoding::utf16BigEndian:
        return decode<Utf16BigEndian>(source, size & ~std::uint64_t{1});
    }
    return nullptr;
}

} // namespace sonarin
