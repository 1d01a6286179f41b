// SPDX-License-Identifier: MIT
#include "text/stringEngine.h"

#include "text/textDecoding.h"
#include "text/textSearch.h"
#include "text/unicodeForms.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <exception>
#include <limits>
#include <optional>

namespace sonarin {

namespace {

/// Runs `make`, which makes a text, and answers the absent value when memory runs out.
template <class Make>
SvxStringRef textOrAbsent(Make make) noexcept {
    try {
        return make();
    } catch (const std::exception&) {
        return nullptr;
    }
}

/// Runs `test` on two present texts; false when one is absent or memory runs out.
template <class Test>
bool testTexts(const SvxStringRef& text, const SvxStringRef& needle, Test test) noexcept {
    try {
        return text && needle && test(*text, *needle);
    } catch (const std::exception&) {
        return false;
    }
}

/// The tests with a needle in Mac OS Roman. An ASCII one, the usual kind, needs no decoding.
template <class Test>
bool testWithCString(const SvxStringRef& text, std::string_view needle, bool caseSensitive, Test test) noexcept {
    try {
        if (asciiRun(needle) == needle.size()) {
            return text && test(*text, SvxString(std::string(needle)), caseSensitive);
        }
        const SvxStringRef decoded = SvxStringFromCString(needle);
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

template <class Units>
bool isNarrow(Units units) {
    return std::all_of(units.begin(), units.end(), [](auto stored) { return unitOf(stored) <= 0xFF; });
}

/// Keeps wide units only where they are needed.
template <class Units>
SvxStringRef makeText(Units units) {
    if constexpr (sizeof(units[0]) == 1) {
        return std::make_shared<const SvxString>(std::string(units));
    } else if (isNarrow(units)) {
        std::string narrow(units.size(), '\0');
        std::transform(units.begin(), units.end(), narrow.begin(),
                       [](char16_t unit) { return static_cast<char>(unit); });
        return std::make_shared<const SvxString>(std::move(narrow));
    } else {
        return std::make_shared<const SvxString>(std::u16string(units));
    }
}

std::u16string widened(std::string_view narrow) {
    std::u16string wide(narrow.size(), u'\0');
    std::transform(narrow.begin(), narrow.end(), wide.begin(), [](char stored) { return unitOf(stored); });
    return wide;
}

/// The size of the UTF-8 form up to the first U+0000; nothing when a lone surrogate stands anywhere.
std::optional<std::size_t> utf8Size(const SvxString& text) {
    return text.visit([](auto units) -> std::optional<std::size_t> {
        std::size_t size = 0;
        bool convertible = true;
        bool ended = false;
        forEachCharacter(units, [&](CodePoint character) {
            convertible = !isSurrogate(character);
            ended = ended || character == 0;
            size += ended || !convertible ? 0 : encodeUtf8(character).size;
            return convertible;
        });
        return convertible ? std::optional(size) : std::nullopt;
    });
}

bool isWhiteSpace(char16_t unit) { return unit == u' ' || (unit >= u'\t' && unit <= u'\r'); }
bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

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
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(negative ? -value : value, Limits::min(), Limits::max()));
}

std::size_t placeholderLength(std::string_view format) {
    for (const std::string_view placeholder : {"%@", "%li", "%i"}) {
        if (format.substr(0, placeholder.size()) == placeholder) {
            return placeholder.size();
        }
    }
    return 0;
}

/// Calls `onLiteral` and `onValue` for the pieces of a formatted text in order.
template <class OnLiteral, class OnValue>
void forEachPiece(std::string_view format, std::initializer_list<SvxFormatValue> values, OnLiteral onLiteral,
                  OnValue onValue) {
    const auto* value = values.begin();
    while (!format.empty()) {
        const std::size_t placeholder =
            format.front() == '%' && value != values.end() ? placeholderLength(format) : 0;
        if (placeholder != 0) {
            onValue(*value++);
            format.remove_prefix(placeholder);
            continue;
        }
        const std::string_view literal = format.substr(0, format.find('%', 1));
        onLiteral(literal);
        format.remove_prefix(literal.size());
    }
}

/// Adds up the size and width of a formatted text, so that its storage is taken once.
struct FormattedExtent {
    std::size_t units = 0;
    bool wide = false;

    void add(const SvxFormatValue& value) {
        constexpr std::size_t longestNumber = 20;
        const auto* text = std::get_if<SvxStringRef>(&value);
        if (text == nullptr) {
            units += longestNumber;
        } else if (*text) {
            (*text)->visit([this](auto more) {
                units += more.size();
                wide = wide || sizeof(more[0]) == 2;
            });
        }
    }
};

template <class Units>
void appendUnits(Units& out, std::string_view units) {
    if constexpr (sizeof(out[0]) == 1) {
        out += units;
    } else {
        for (const char stored : units) {
            out += unitOf(stored);
        }
    }
}

void appendUnits(std::u16string& out, std::u16string_view units) { out += units; }
void appendUnits(std::string& /*out*/, std::u16string_view /*units*/) {} // a wide value makes a wide text

template <class Units>
void appendValue(Units& out, const SvxFormatValue& value) {
    if (const auto* text = std::get_if<SvxStringRef>(&value)) {
        if (*text) {
            (*text)->visit([&out](auto units) { appendUnits(out, units); });
        }
        return;
    }
    std::array<char, 24> digits{};
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), *std::get_if<std::int64_t>(&value)).ptr;
    appendUnits(out, std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data())));
}

template <class Units>
SvxStringRef makeFormatted(std::string_view format, std::initializer_list<SvxFormatValue> values,
                           std::size_t units) {
    Units storage;
    storage.reserve(units);
    forEachPiece(
        format, values, [&](std::string_view literal) { appendUnits(storage, literal); },
        [&](const SvxFormatValue& value) { appendValue(storage, value); });
    return std::make_shared<const SvxString>(std::move(storage));
}

template <class Units>
void makeRoomFor(Units& units, std::size_t more) {
    const std::size_t needed = units.size() + more;
    if (needed > units.capacity()) {
        units.reserve(std::max(needed, 2 * units.capacity()));
    }
}

constexpr bool standsForItselfInURL(CodePoint character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
           (character >= '0' && character <= '9') ||
           (character > 0 && character < 0x80 &&
            std::string_view("-_.!~*'()").find(static_cast<char>(character)) != std::string_view::npos);
}

} // namespace

void SvxString::extendAfterBlank(const SvxString& addition) {
    addition.visit([this](auto more) {
        constexpr bool moreIsNarrow = sizeof(more[0]) == 1;
        if (auto* narrow = std::get_if<std::string>(&units_)) {
            if constexpr (moreIsNarrow) {
                makeRoomFor(*narrow, more.size() + 1);
                *narrow += ' ';
                *narrow += more;
                return;
            } else {
                units_ = widened(*narrow);
            }
        }
        auto& wide = *std::get_if<std::u16string>(&units_);
        makeRoomFor(wide, more.size() + 1);
        wide += u' ';
        for (const auto stored : more) {
            wide += unitOf(stored);
        }
    });
}

SvxStringRef SvxStringGetEmpty() noexcept { return nullptr; }

void SvxStringInvalidate(SvxStringRef* text) noexcept { text->reset(); }

bool SvxStringIsValid(const SvxStringRef& text) noexcept { return text != nullptr; }

std::int32_t SvxStringRelease(SvxStringRef* text) noexcept {
    text->reset();
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

SvxStringRef SvxStringFromUTF16(std::u16string_view units) noexcept {
    return textOrAbsent([units] { return makeText(units); });
}

SvxStringRef SvxStringCreateWithSubstring(const SvxStringRef& text, SvxIndex start, SvxIndex length) noexcept {
    if (!text || start < 0 || length < 0 || start > text->length() || length > text->length() - start) {
        return nullptr;
    }
    return textOrAbsent([&] {
        return text->visit([&](auto units) {
            return makeText(units.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(length)));
        });
    });
}

SvxStringRef fourCharacterText(std::uint32_t code) noexcept {
    const std::array<char, 4> characters = {static_cast<char>(code >> 24U), static_cast<char>(code >> 16U & 0xFFU),
                                            static_cast<char>(code >> 8U & 0xFFU), static_cast<char>(code & 0xFFU)};
    return code == 0 ? nullptr : SvxStringFromCString({characters.data(), characters.size()});
}

SvxStringRef SvxStringCreateWithFormat(std::string_view format,
                                       std::initializer_list<SvxFormatValue> values) noexcept {
    return textOrAbsent([&] {
        FormattedExtent extent;
        forEachPiece(
            format, values, [&](std::string_view literal) { extent.units += literal.size(); },
            [&](const SvxFormatValue& value) { extent.add(value); });
        return extent.wide ? makeFormatted<std::u16string>(format, values, extent.units)
                           : makeFormatted<std::string>(format, values, extent.units);
    });
}

void SvxStringAppendAfterBlank(SvxStringRef* text, const SvxStringRef& addition) noexcept {
    if (!*text || !addition) {
        return;
    }
    if (text->use_count() != 1) {
        SvxStringRef joined = SvxStringCreateWithFormat("%@ %@", {*text, addition});
        if (joined) {
            *text = std::move(joined);
        }
        return;
    }
    try {
        std::const_pointer_cast<SvxString>(*text)->extendAfterBlank(*addition);
    } catch (const std::exception&) {
        // Out of memory: the text stays as it was.
    }
}

SvxIndex SvxStringGetLength(const SvxStringRef& text) noexcept { return text ? text->length() : 0; }

char16_t SvxStringGetUniChar(const SvxStringRef& text, SvxIndex index) noexcept {
    return text && index >= 0 && index < text->length() ? text->unitAt(index) : u'\0';
}

std::int32_t SvxStringGetIntValue(const SvxStringRef& text) noexcept {
    return text ? text->visit([](auto units) { return leadingInteger(units); }) : 0;
}

bool SvxStringIsEqual(const SvxStringRef& a, const SvxStringRef& b) noexcept {
    if (!a || !b) {
        return a == b;
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
    if (!text || !needle || text->length() <= static_cast<SvxIndex>(start)) {
        return -1;
    }
    try {
        return findText(*text, *needle, start, caseSensitive).value_or(-1);
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
    return text ? static_cast<std::uint32_t>(utf8Size(*text).value_or(0)) : 0;
}

void SvxStringCopyToUTF8(const SvxStringRef& text, char* destination, std::uint32_t* size) noexcept {
    *size = SvxStringGetUTF8Size(text);
    if (*size == 0) {
        return;
    }
    text->visit([destination](auto units) {
        char* out = destination;
        forEachCharacter(units, [&out](CodePoint character) {
            if (character == 0) {
                return false;
            }
            const Utf8Character encoded = encodeUtf8(character);
            out = std::copy_n(encoded.bytes.begin(), encoded.size, out);
            return true;
        });
    });
}

SvxStringRef SvxStringConvertToURL(const SvxStringRef& text) noexcept {
    return textOrAbsent([&text] {
        constexpr std::string_view hexDigits = "0123456789ABCDEF";
        constexpr CodePoint replacementCharacter = 0xFFFD;
        std::string escaped;
        const auto escape = [&](CodePoint character) {
            if (standsForItselfInURL(character)) {
                escaped += static_cast<char>(character);
                return true;
            }
            const Utf8Character encoded = encodeUtf8(isSurrogate(character) ? replacementCharacter : character);
            for (const char stored : encoded.view()) {
                const auto byte = static_cast<unsigned char>(stored);
                escaped += {'%', hexDigits[byte >> 4U], hexDigits[byte & 0xFU]};
            }
            return true;
        };
        if (text) {
            text->visit([&](auto units) { forEachCharacter(units, escape); });
        }
        return std::make_shared<const SvxString>(std::move(escaped));
    });
}

} // namespace sonarin
