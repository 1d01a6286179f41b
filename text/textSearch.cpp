// SPDX-License-Identifier: MIT
#include "text/textSearch.h"

#include "text/byteLanes.h"
#include "text/unicodeForms.h"

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <vector>

namespace sonarin {

namespace {

const icu::Normalizer2& normalizer(bool composing) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* instance =
        composing ? icu::Normalizer2::getNFCInstance(status) : icu::Normalizer2::getNFDInstance(status);
    return *instance;
}

/// Whether no character before `character` can combine with it. Code points below U+0300 never combine
/// backwards.
bool startsCharacter(CodePoint character) {
    return character < 0x300 || normalizer(true).hasBoundaryBefore(character) != 0;
}

// --- needles of plain ASCII -----------------------------------------------------------------------------
//
// Suffixes, markers and separators are ASCII, and most texts are too. A unit of the text then stands for one
// unit of the needle at the most, so that the units can be compared one by one, without a normalized copy.
// The exception are the characters that fold to several ASCII letters (ß and the ligatures of U+FB00 to
// U+FB06): where one of them could match the needle, the general road is taken.

/// Whether two letters are what one such character folds to, or its beginning.
bool isFoldedPair(char first, char second) {
    return (first == 's' && (second == 's' || second == 't')) ||
           (first == 'f' && (second == 'f' || second == 'i' || second == 'l'));
}

/// Whether such characters may be in it. A narrow text can hold the sharp s only.
bool mayHoldFoldingOnes(const SvxString& text) {
    return text.isWide() || text.visit([](auto stored) {
        return std::any_of(stored.begin(), stored.end(), [](auto unit) { return unitOf(unit) == 0xDF; });
    });
}

/// A needle that can be compared unit by unit.
struct PlainNeedle {
    std::string units;          ///< its letters folded; empty when it is not plain
    bool hasFoldedPair = false; ///< whether one character of a text could match two of its units

    [[nodiscard]] bool servesFor(const SvxString& text) const {
        return !units.empty() && !(hasFoldedPair && mayHoldFoldingOnes(text));
    }
};

PlainNeedle plainNeedle(const SvxString& needle, bool caseSensitive) {
    return needle.visit([caseSensitive](auto units) {
        std::string folded;
        for (const auto stored : units) {
            const char16_t unit = unitOf(stored);
            if (unit >= 0x80) {
                return PlainNeedle();
            }
            folded += static_cast<char>(asciiCounterpart(unit, caseSensitive));
        }
        const bool hasPair = std::ranges::adjacent_find(folded, isFoldedPair) != folded.end();
        return PlainNeedle{std::move(folded), !caseSensitive && hasPair};
    });
}

/// Case folding of narrow units, as a table, since all texts read from files are searched.
using NarrowFolding = std::array<std::uint8_t, 0x100>;
constexpr NarrowFolding narrowFolding = [] {
    NarrowFolding table{};
    for (std::size_t unit = 0; unit < table.size(); ++unit) {
        table.at(unit) = static_cast<std::uint8_t>(unit >= 'A' && unit <= 'Z' ? unit + 0x20 : unit);
    }
    return table;
}();

constexpr char16_t counterpart(char stored, bool caseSensitive) {
    return caseSensitive ? unitOf(stored) : narrowFolding[unitOf(stored)];
}
char16_t counterpart(char16_t stored, bool caseSensitive) {
    return asciiCounterpart(stored, caseSensitive);
}

template <class Units>
bool matchesAt(Units units, std::size_t at, std::string_view needle, bool caseSensitive) {
    const auto part = units.substr(at, needle.size());
    if (part.size() < needle.size()) {
        return false;
    }
    for (std::size_t i = needle.size(); i-- > 0;) {
        if (counterpart(part[i], caseSensitive) != unitOf(needle[i])) {
            return false;
        }
    }
    std::size_t end = at + needle.size();
    return end == units.size() || startsCharacter(decodeUtf16(units, &end));
}

/// The lanes that hold `folded` or, where case is ignored, its upper-case form.
ByteLanes lanesEqual(ByteLanes lanes, char folded, bool caseSensitive) {
    const bool eitherCase = !caseSensitive && folded >= 'a' && folded <= 'z';
    return (eitherCase ? lanes | 0x20 : lanes) == static_cast<std::uint8_t>(folded);
}

/// Sixteen places at a time by the needle's first and last unit, which together are rare in any text.
std::optional<SvxIndex> findPlain(std::string_view units, std::string_view needle, std::size_t start,
                                  bool caseSensitive) {
    std::size_t at = start;
    for (; units.size() - at >= sizeof(ByteLanes) + needle.size(); at += sizeof(ByteLanes)) {
        const ByteLanes firsts = loadLanes(units.data() + at);
        const ByteLanes lasts = loadLanes(units.data() + at + needle.size() - 1);
        if (!anyLane(lanesEqual(firsts, needle.front(), caseSensitive) &
                     lanesEqual(lasts, needle.back(), caseSensitive))) {
            continue;
        }
        for (std::size_t i = at; i < at + sizeof(ByteLanes); ++i) {
            if (matchesAt(units, i, needle, caseSensitive)) {
                return static_cast<SvxIndex>(i);
            }
        }
    }
    for (; units.size() - at >= needle.size(); ++at) {
        if (counterpart(units[at], caseSensitive) == unitOf(needle.front()) &&
            matchesAt(units, at, needle, caseSensitive)) {
            return static_cast<SvxIndex>(at);
        }
    }
    return std::nullopt;
}

/// Horspool's search: where the unit under the needle's last place does not occur in the needle, the needle
/// moves on by its whole length.
std::optional<SvxIndex> findPlain(std::u16string_view units, std::string_view needle, std::size_t start,
                                  bool caseSensitive) {
    constexpr std::size_t longestShift = 0xFF;
    if (units.size() - start < needle.size()) {
        return std::nullopt;
    }
    const std::size_t last = needle.size() - 1;
    const std::size_t fullShift = std::min(needle.size(), longestShift);
    std::array<std::uint8_t, 0x80> shifts{};
    shifts.fill(static_cast<std::uint8_t>(fullShift));
    for (std::size_t i = 0; i < last; ++i) {
        shifts.at(unitOf(needle[i])) = static_cast<std::uint8_t>(std::min(last - i, longestShift));
    }
    for (std::size_t at = start; at < units.size() - last;) {
        const char16_t unit = counterpart(units[at + last], caseSensitive);
        if (unit == unitOf(needle[last]) && matchesAt(units, at, needle, caseSensitive)) {
            return static_cast<SvxIndex>(at);
        }
        at += unit < shifts.size() ? shifts[unit] : fullShift;
    }
    return std::nullopt;
}

// --- all other needles ----------------------------------------------------------------------------------

/// A text in comparable form, with the places where a match may begin or end.
struct Comparable {
    struct Boundary {
        std::size_t folded; ///< index into `units`
        SvxIndex stored;    ///< index into the text as stored
    };
    std::u16string units;
    std::vector<Boundary> boundaries;
};

Comparable makeComparable(std::u16string_view stored, bool caseSensitive) {
    const icu::Normalizer2& decompose = normalizer(false);
    Comparable result;
    for (std::size_t begin = 0; begin < stored.size();) {
        std::size_t end = begin;
        decodeUtf16(stored, &end);
        for (std::size_t next = end; next < stored.size(); end = next) {
            if (startsCharacter(decodeUtf16(stored, &next))) {
                break;
            }
        }
        const std::u16string_view character = stored.substr(begin, end - begin);
        UErrorCode status = U_ZERO_ERROR;
        icu::UnicodeString folded = decompose.normalize(
            icu::UnicodeString(character.data(), static_cast<std::int32_t>(character.size())), status);
        if (!caseSensitive) {
            folded = decompose.normalize(folded.foldCase(), status);
        }
        result.boundaries.push_back({result.units.size(), static_cast<SvxIndex>(begin)});
        result.units.append(folded.getBuffer(), static_cast<std::size_t>(folded.length()));
        begin = end;
    }
    result.boundaries.push_back({result.units.size(), static_cast<SvxIndex>(stored.size())});
    return result;
}

std::u16string wideCopy(const SvxString& text, SvxIndex start) {
    return text.visit([start](auto units) {
        std::u16string copy;
        for (const auto stored : units.substr(static_cast<std::size_t>(start))) {
            copy += unitOf(stored);
        }
        return copy;
    });
}

bool isBoundary(const Comparable& text, std::size_t folded) {
    const auto found = std::lower_bound(
        text.boundaries.begin(), text.boundaries.end(), folded,
        [](const Comparable::Boundary& boundary, std::size_t value) { return boundary.folded < value; });
    return found != text.boundaries.end() && found->folded == folded;
}

bool matchesAt(const Comparable& text, std::size_t at, const std::u16string& needle) {
    return text.units.compare(at, needle.size(), needle) == 0 && isBoundary(text, at + needle.size());
}

std::optional<SvxIndex> findGeneral(const SvxString& text, const SvxString& needle, SvxIndex start,
                                    bool caseSensitive) {
    const Comparable haystack = makeComparable(wideCopy(text, start), caseSensitive);
    const std::u16string wanted = makeComparable(wideCopy(needle, 0), caseSensitive).units;
    for (const Comparable::Boundary& boundary : haystack.boundaries) {
        if (matchesAt(haystack, boundary.folded, wanted)) {
            return boundary.stored + start;
        }
    }
    return std::nullopt;
}

} // namespace

char16_t asciiCounterpart(char16_t unit, bool caseSensitive) noexcept {
    if (unit < 0x80) {
        return !caseSensitive && unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 0x20) : unit;
    }
    switch (unit) {
    case 0x017F: // long s, which only folding makes an s
        return caseSensitive ? unit : u's';
    case 0x037E: // Greek question mark
        return u';';
    case 0x1FEF: // Greek varia
        return u'`';
    case 0x212A: // Kelvin sign
        return caseSensitive ? u'K' : u'k';
    default:
        return unit;
    }
}

std::optional<SvxIndex> findText(const SvxString& text, const SvxString& needle, SvxIndex start,
                                 bool caseSensitive) {
    if (needle.length() == 0) {
        return std::nullopt;
    }
    const PlainNeedle plain = plainNeedle(needle, caseSensitive);
    if (!plain.servesFor(text)) {
        return findGeneral(text, needle, start, caseSensitive);
    }
    return text.visit([&](auto units) {
        return findPlain(units, plain.units, static_cast<std::size_t>(start), caseSensitive);
    });
}

bool matchesAtStart(const SvxString& text, const SvxString& needle, bool caseSensitive) {
    if (needle.length() == 0) {
        return false;
    }
    const PlainNeedle plain = plainNeedle(needle, caseSensitive);
    if (!plain.servesFor(text)) {
        const Comparable haystack = makeComparable(wideCopy(text, 0), caseSensitive);
        return matchesAt(haystack, 0, makeComparable(wideCopy(needle, 0), caseSensitive).units);
    }
    return text.visit([&](auto units) { return matchesAt(units, 0, plain.units, caseSensitive); });
}

bool matchesAtEnd(const SvxString& text, const SvxString& needle, bool caseSensitive) {
    if (needle.length() == 0) {
        return false;
    }
    const PlainNeedle plain = plainNeedle(needle, caseSensitive);
    if (!plain.servesFor(text)) {
        const Comparable haystack = makeComparable(wideCopy(text, 0), caseSensitive);
        const std::u16string wanted = makeComparable(wideCopy(needle, 0), caseSensitive).units;
        if (wanted.size() > haystack.units.size()) {
            return false;
        }
        const std::size_t at = haystack.units.size() - wanted.size();
        return isBoundary(haystack, at) && matchesAt(haystack, at, wanted);
    }
    return text.visit([&](auto units) {
        return units.size() >= plain.units.size() &&
               matchesAt(units, units.size() - plain.units.size(), plain.units, caseSensitive);
    });
}

} // namespace sonarin
