// SPDX-License-Identifier: MIT
#include "text/stringEngine.h"

#include "text/textDecoding.h"
#include "text/textSearch.h"
#include "text/utf8Form.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <exception>
#include <limits>
#include <optional>
#include <tuple>

namespace sonarin {

namespace {

/// Runs `test` on two present texts; false when one is absent or memory runs out.
template <class Test>
bool testTexts(const SvxStringRef& text, const SvxStringRef& needle, Test test) noexcept {
    try {
        return text && needle && test(*text, *needle);
    } catch (const std::exception&) {
        return false;
    }
}

template <class Unit, class Units>
SvxStringRef copyOf(Units units) {
    SvxStringBuilder<Unit> text(units.size());
    return text ? text.finish(copyUnits(units, text.units())) : nullptr;
}

/// Keeps wide units only where they are needed.
SvxStringRef makeText(std::string_view narrow) {
    return copyOf<char>(narrow);
}

SvxStringRef makeText(std::u16string_view wide) {
    const bool narrow = std::all_of(wide.begin(), wide.end(), [](char16_t unit) { return unit <= 0xFF; });
    return narrow ? copyOf<char>(wide) : copyOf<char16_t>(wide);
}

/// The tests with a needle in Mac OS Roman. An ASCII one, the usual kind, needs no decoding.
template <class Test>
bool testWithCString(const SvxStringRef& text, const char* needleBytes, bool caseSensitive,
                     Test test) noexcept {
    if (needleBytes == nullptr) {
        return false;
    }
    try {
        const std::string_view needle(needleBytes);
        const bool isAscii = asciiRun(needle) == needle.size();
        const SvxStringRef decoded = isAscii ? makeText(needle) : SvxStringFromCString(needle);
        return text && decoded && test(*text, *decoded, caseSensitive);
    } catch (const std::exception&) {
        return false;
    }
}

class MemoryBytes final : public SvxByteSource {
public:
    explicit MemoryBytes(std::string_view bytes) noexcept : bytes_(bytes) {}
    [[nodiscard]] std::uint64_t size() const noexcept override { return bytes_.size(); }
    [[nodiscard]] std::string_view pieceAt(std::uint64_t position) noexcept override {
        constexpr std::size_t longestPiece = std::size_t{1} << 30U;
        return bytes_.substr(static_cast<std::size_t>(position), longestPiece);
    }

private:
    std::string_view bytes_;
};

/// The size of the UTF-8 form; nothing when a lone surrogate stands in it.
template <class Units>
std::optional<std::size_t> utf8Size(Units units) {
    std::size_t size = 0;
    const bool isWhole = writeUtf8(
        units, [&size](std::string_view bytes) { size += bytes.size(); }, noSubstitute);
    return isWhole ? std::optional(size) : std::nullopt;
}

bool isWhiteSpace(char16_t unit) {
    return unit == u' ' || (unit >= u'\t' && unit <= u'\r');
}
bool isDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

template <class Units>
std::int32_t leadingInteger(Units units) {
    using Limits = std::numeric_limits<std::int32_t>;
    std::size_t i = 0;
    const auto unit = [&] { return i < units.size() ? unitOf(units[i]) : u'\0'; };
    while (isWhiteSpace(unit())) {
        ++i;
    }
    const bool negative = unit() == u'-';
    if (negative || unit() == u'+') {
        ++i;
    }
    std::int64_t value = 0;
    for (; isDigit(unit()); ++i) {
        value = std::min<std::int64_t>(value * 10 + (unit() - u'0'), std::int64_t{Limits::max()} + 1);
    }
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(negative ? -value : value, Limits::min(), Limits::max()));
}

std::size_t placeholderLength(std::string_view format) {
    for (const std::string_view placeholder : {"%@", "%li", "%i"}) {
        if (format.substr(0, placeholder.size()) == placeholder) {
            return placeholder.size();
        }
    }
    return 0;
}

using Digits = std::array<char, 24>;

/// The decimal form, written to `storage`.
std::string_view decimal(std::int64_t number, Digits& storage) {
    const char* end = std::to_chars(storage.data(), storage.data() + storage.size(), number).ptr;
    return {storage.data(), static_cast<std::size_t>(end - storage.data())};
}

/// Calls `onPiece` for the pieces of a formatted text, in order, as stored elements: literals and values.
template <class OnPiece>
void forEachPiece(std::string_view format, std::initializer_list<SvxFormatValue> values, OnPiece onPiece) {
    const auto* value = values.begin();
    while (!format.empty()) {
        const std::size_t placeholder =
            format.front() == '%' && value != values.end() ? placeholderLength(format) : 0;
        if (placeholder == 0) {
            const std::string_view literal = format.substr(0, format.find('%', 1));
            onPiece(literal);
            format.remove_prefix(literal.size());
            continue;
        }
        format.remove_prefix(placeholder);
        if (const auto* number = std::get_if<std::int64_t>(value)) {
            Digits digits{};
            onPiece(decimal(*number, digits));
        } else if (const auto* literal = std::get_if<std::string_view>(value)) {
            onPiece(*literal);
        } else if (const auto& text = *std::get_if<SvxStringRef>(value)) {
            text->visit(onPiece);
        }
        ++value;
    }
}

template <class Unit>
SvxStringRef makeFormatted(std::string_view format, std::initializer_list<SvxFormatValue> values,
                           std::size_t mostUnits) {
    SvxStringBuilder<Unit> text(mostUnits);
    if (!text) {
        return nullptr;
    }
    Unit* out = text.units();
    forEachPiece(format, values, [&out](auto piece) { out = copyUnits(piece, out); });
    return text.finish(out);
}

/// Calls `onPart` for the parts that SvxStringJoinParts joins.
template <class Units, class OnPart>
void forEachPart(Units units, OnPart onPart) {
    constexpr char16_t byteOrderMark = 0xFEFF;
    while (!units.empty()) {
        Units part = units.substr(0, units.find(typename Units::value_type{}));
        units.remove_prefix(std::min(part.size() + 1, units.size()));
        if (!part.empty() && unitOf(part.front()) == byteOrderMark) {
            part.remove_prefix(1);
        }
        if (!part.empty()) {
            onPart(part);
        }
    }
}

template <class Unit, class Units>
SvxStringRef joined(Units units, std::string_view separator, std::size_t count) {
    SvxStringBuilder<Unit> text(count);
    if (!text) {
        return nullptr;
    }
    Unit* out = text.units();
    forEachPart(units, [&](auto part) {
        out = out != text.units() ? copyUnits(separator, out) : out;
        out = copyUnits(part, out);
    });
    return text.finish(out);
}

template <class Unit>
void appendAfterBlank(SvxStringRef* text, const SvxString& addition) {
    const SvxIndex length = (*text)->length();
    SvxStringBuilder<Unit> joined(text, static_cast<std::size_t>(length + 1 + addition.length()));
    if (joined) {
        Unit* out = joined.units() + length;
        *out++ = ' ';
        *text = joined.finish(addition.visit([out](auto units) { return copyUnits(units, out); }));
    }
}

constexpr bool standsForItselfInURL(char byte) {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9') ||
           std::string_view("-_.!~*'()").find(byte) != std::string_view::npos;
}

void appendForURL(std::string_view bytes, std::string& escaped) {
    constexpr std::string_view hexDigits = "0123456789ABCDEF";
    for (const char byte : bytes) {
        if (standsForItselfInURL(byte)) {
            escaped += byte;
        } else {
            escaped += {'%', hexDigits[unitOf(byte) >> 4U], hexDigits[unitOf(byte) & 0xFU]};
        }
    }
}

} // namespace

SvxStringRef SvxStringGetEmpty() noexcept {
    return nullptr;
}

void SvxStringInvalidate(SvxStringRef* text) noexcept {
    *text = nullptr;
}

bool SvxStringIsValid(const SvxStringRef& text) noexcept {
    return static_cast<bool>(text);
}

std::int32_t SvxStringRelease(SvxStringRef* text) noexcept {
    *text = nullptr;
    return 0;
}

SvxStringRef SvxStringFromCString(std::string_view bytes) noexcept {
    MemoryBytes source(bytes);
    return SvxStringFromSource(SvxEncoding::macRoman, source);
}

SvxStringRef SvxStringFromUTF8(std::string_view bytes) noexcept {
    MemoryBytes source(bytes);
    SvxStringRef text = SvxStringFromSource(SvxEncoding::utf8, source);
    return text ? text : SvxStringFromSource(SvxEncoding::macRoman, source);
}

SvxStringRef SvxStringFromLatin1(std::string_view bytes) noexcept {
    return makeText(bytes);
}

SvxStringRef SvxStringFromUTF16(std::u16string_view units) noexcept {
    return makeText(units);
}

SvxStringRef SvxStringCreateWithSubstring(const SvxStringRef& text, SvxIndex start,
                                          SvxIndex length) noexcept {
    if (!text || start < 0 || length < 0 || length > text->length() - start) {
        return nullptr;
    }
    return text->visit([&](auto units) {
        return makeText(units.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(length)));
    });
}

SvxStringRef SvxStringJoinParts(const SvxStringRef& text, std::string_view separator) noexcept {
    if (!text) {
        return nullptr;
    }
    return text->visit([&](auto units) -> SvxStringRef {
        std::size_t parts = 0;
        std::size_t count = 0;
        bool isWide = false;
        forEachPart(units, [&](auto part) {
            count += (parts++ != 0 ? separator.size() : 0) + part.size();
            isWide = isWide ||
                     std::any_of(part.begin(), part.end(), [](auto unit) { return unitOf(unit) > 0xFF; });
        });
        if (parts == 1 && count == units.size()) {
            return text;
        }
        return count == 0 ? nullptr
               : isWide   ? joined<char16_t>(units, separator, count)
                          : joined<char>(units, separator, count);
    });
}

SvxStringRef fourCharacterText(std::uint32_t code) noexcept {
    const std::array<char, 4> characters = {
        static_cast<char>(code >> 24U), static_cast<char>(code >> 16U & 0xFFU),
        static_cast<char>(code >> 8U & 0xFFU), static_cast<char>(code & 0xFFU)};
    return code == 0 ? nullptr : SvxStringFromCString({characters.data(), characters.size()});
}

SvxStringRef SvxStringCreateWithFormat(std::string_view format,
                                       std::initializer_list<SvxFormatValue> values) noexcept {
    // A little room stays unused, which is cheaper than looking through the format twice.
    std::size_t mostUnits = format.size();
    bool wide = false;
    for (const SvxFormatValue& value : values) {
        if (const auto* literal = std::get_if<std::string_view>(&value)) {
            mostUnits += literal->size();
        } else if (const auto* text = std::get_if<SvxStringRef>(&value)) {
            mostUnits += static_cast<std::size_t>(SvxStringGetLength(*text));
            wide = wide || (*text && (*text)->isWide());
        } else {
            mostUnits += std::tuple_size_v<Digits>;
        }
    }
    return wide ? makeFormatted<char16_t>(format, values, mostUnits)
                : makeFormatted<char>(format, values, mostUnits);
}

void SvxStringAppendAfterBlank(SvxStringRef* text, const SvxStringRef& addition) noexcept {
    if (*text && addition) {
        const SvxStringRef kept = addition; // NOLINT(*-copy-initialization): it may be the text itself
        (*text)->isWide() || kept->isWide() ? appendAfterBlank<char16_t>(text, *kept)
                                            : appendAfterBlank<char>(text, *kept);
    }
}

SvxIndex SvxStringGetLength(const SvxStringRef& text) noexcept {
    return text ? text->length() : 0;
}

char16_t SvxStringGetUniChar(const SvxStringRef& text, SvxIndex index) noexcept {
    return text && index >= 0 && index < text->length() ? text->unitAt(index) : u'\0';
}

SvxIndex SvxStringFindUnit(const SvxStringRef& text, char unit, SvxIndex start, SvxIndex end) noexcept {
    return text->visit([&](auto units) {
        using Unit = typename decltype(units)::value_type;
        const auto range =
            units.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
        const std::size_t found = range.find(static_cast<Unit>(unit));
        return found == range.npos ? end : start + static_cast<SvxIndex>(found);
    });
}

std::int32_t SvxStringGetIntValue(const SvxStringRef& text) noexcept {
    return text ? text->visit([](auto units) { return leadingInteger(units); }) : 0;
}

bool SvxStringIsEqual(const SvxStringRef& a, const SvxStringRef& b) noexcept {
    if (!a || !b) {
        return !a && !b;
    }
    return a->visit([&b](auto left) {
        return b->visit([left](auto right) {
            return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                              [](auto x, auto y) { return unitOf(x) == unitOf(y); });
        });
    });
}

SvxIndex SvxStringPosition(const SvxStringRef& text, const SvxStringRef& needle, std::uint32_t start,
                           bool caseSensitive) noexcept {
    if (!text || !needle) {
        return -1;
    }
    try {
        const SvxIndex from = std::min<SvxIndex>(start, text->length());
        return findText(*text, *needle, from, caseSensitive).value_or(-1);
    } catch (const std::exception&) {
        return -1;
    }
}

bool SvxStringBeginsWith(const SvxStringRef& text, const SvxStringRef& needle, bool caseSensitive) noexcept {
    return testTexts(text, needle,
                     [&](const auto& t, const auto& n) { return matchesAtStart(t, n, caseSensitive); });
}

bool SvxStringEndsWith(const SvxStringRef& text, const SvxStringRef& needle, bool caseSensitive) noexcept {
    return testTexts(text, needle,
                     [&](const auto& t, const auto& n) { return matchesAtEnd(t, n, caseSensitive); });
}

bool SvxStringContains(const SvxStringRef& text, const SvxStringRef& needle, bool caseSensitive) noexcept {
    return testTexts(text, needle, [&](const auto& t, const auto& n) {
        return findText(t, n, 0, caseSensitive).has_value();
    });
}

bool SvxStringBeginsWithCString(const SvxStringRef& text, const char* needle, bool caseSensitive) noexcept {
    return testWithCString(text, needle, caseSensitive, matchesAtStart);
}

bool SvxStringEndsWithCString(const SvxStringRef& text, const char* needle, bool caseSensitive) noexcept {
    return testWithCString(text, needle, caseSensitive, matchesAtEnd);
}

std::uint32_t SvxStringGetUTF8Size(const SvxStringRef& text) noexcept {
    if (!text) {
        return 0;
    }
    return text->visit([](auto units) {
        const bool isConvertible = utf8Size(units).has_value();
        return isConvertible ? utf8SizeIn32Bits(*utf8Size(beforeZero(units))) : 0;
    });
}

void SvxStringCopyToUTF8(const SvxStringRef& text, char* destination, std::uint32_t* size) noexcept {
    *size = SvxStringGetUTF8Size(text);
    if (*size == 0) {
        return;
    }
    text->visit([destination](auto units) {
        char* out = destination;
        (void)writeUtf8(
            beforeZero(units),
            [&out](std::string_view bytes) { out = std::copy(bytes.begin(), bytes.end(), out); },
            noSubstitute);
    });
}

SvxStringRef SvxStringConvertToURL(const SvxStringRef& text) noexcept {
    try {
        std::string escaped;
        if (text) {
            text->visit([&escaped](auto units) {
                (void)writeUtf8(
                    units, [&escaped](std::string_view bytes) { appendForURL(bytes, escaped); },
                    replacementCharacter);
            });
        }
        return makeText(escaped);
    } catch (const std::exception&) {
        return nullptr;
    }
}

} // namespace sonarin
