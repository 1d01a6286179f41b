// SPDX-License-Identifier: MIT
#include "engine/id3genres.h"

#include "text/CMMCoreFunctions.h"
#include "text/stringEngine.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace sonarin {

namespace {

using namespace std::string_view_literals;

constexpr std::int16_t genreTable = 513;
constexpr std::int32_t lastCode = 191;

/// The name that a reference stands for.
struct Genre {
    SvxStringRef name;    ///< absent where it is none that is known
    SvxStringRef written; ///< as writers repeat it behind the reference
};

Genre referredGenre(const SvxStringRef& reference) {
    constexpr SvxIndex mostDigits = 3;
    const SvxIndex length = SvxStringGetLength(reference);
    if (length == 0 || length > mostDigits) {
        return {};
    }
    for (SvxIndex i = 0; i < length; ++i) {
        const char16_t unit = SvxStringGetUniChar(reference, i);
        if (unit < u'0' || unit > u'9') {
            const bool isRemix = SvxStringIsEqual(reference, SvxStringFromLatin1("RX"));
            const bool isCover = SvxStringIsEqual(reference, SvxStringFromLatin1("CR"));
            const SvxStringRef name = isRemix   ? SvxStringFromLatin1("Remix")
                                      : isCover ? SvxStringFromLatin1("Cover")
                                                : nullptr;
            return {name, name};
        }
    }
    const std::int32_t code = SvxStringGetIntValue(reference);
    return code > lastCode
               ? Genre()
               : Genre{id3GenreName(code),
                       SvxStringGetFromEnglishTable(genreTable, static_cast<std::int16_t>(code + 1))};
}

bool isSameName(const SvxStringRef& a, const SvxStringRef& b) {
    return SvxStringGetLength(a) == SvxStringGetLength(b) && SvxStringBeginsWith(a, b, false);
}

/// Takes the values of a content type frame apart.
class GenreList {
public:
    explicit GenreList(const SvxStringRef& content) : content_(content) {}

    SvxStringRef names() {
        const SvxIndex length = SvxStringGetLength(content_);
        for (SvxIndex start = 0; start < length && !isFull();) {
            const SvxIndex end = SvxStringFindUnit(content_, '\0', start, length);
            addValue(start, end);
            start = end + 1;
        }
        return joined();
    }

private:
    [[nodiscard]] bool isFull() const { return count_ == genres_.size(); }

    [[nodiscard]] SvxStringRef part(SvxIndex start, SvxIndex end) const {
        return SvxStringCreateWithSubstring(content_, start, end - start);
    }

    [[nodiscard]] SvxIndex behindBlanks(SvxIndex position, SvxIndex end) const {
        while (position < end && SvxStringGetUniChar(content_, position) == u' ') {
            ++position;
        }
        return position;
    }

    void addValue(SvxIndex valueStart, SvxIndex end) {
        const std::size_t before = count_;
        const SvxIndex start = behindBlanks(valueStart, end);
        while (end > start && SvxStringGetUniChar(content_, end - 1) == u' ') {
            --end;
        }
        SvxIndex position = start;
        while (position < end && SvxStringGetUniChar(content_, position) == u'(') {
            const SvxIndex close = SvxStringFindUnit(content_, ')', position, end);
            const Genre genre = close == end ? Genre() : referredGenre(part(position + 1, close));
            if (!genre.name || isFull()) {
                break;
            }
            add(genre);
            position = behindBlanks(close + 1, end);
        }
        // A name that begins with a parenthesis has it twice.
        const bool isEscaped = SvxStringGetUniChar(content_, position) == u'(' &&
                               SvxStringGetUniChar(content_, position + 1) == u'(';
        const SvxStringRef rest = part(position + (isEscaped ? 1 : 0), end);
        const Genre genre = position == start ? referredGenre(rest) : Genre();
        const bool isRepeated =
            std::any_of(genres_.begin() + before, genres_.begin() + count_, [&](const Genre& known) {
                return isSameName(known.name, rest) || isSameName(known.written, rest);
            });
        if (!isRepeated) {
            add(genre.name ? genre : Genre{rest, rest});
        }
    }

    void add(const Genre& genre) {
        if (SvxStringGetLength(genre.name) != 0 && !isFull()) {
            genres_.at(count_++) = genre;
        }
    }

    SvxStringRef joined() {
        const SvxStringRef separator = SvxStringFromLatin1("/");
        SvxStringRef list = genres_.front().name;
        for (std::size_t i = 1; i < count_; ++i) {
            SvxStringAppendAfterBlank(&list, separator);
            SvxStringAppendAfterBlank(&list, genres_.at(i).name);
        }
        return list;
    }

    const SvxStringRef& content_;
    std::array<Genre, 100> genres_;
    std::size_t count_ = 0;
};

} // namespace

SvxStringRef id3GenreName(std::int32_t code) noexcept {
    return code >= 0 && code <= lastCode
               ? SvxStringGetFromTable(genreTable, static_cast<std::int16_t>(code + 1))
               : nullptr;
}

SvxStringRef mp3LoadGenreString(std::int32_t number) noexcept {
    constexpr std::int32_t genres = 126;
    return number >= 1 && number <= genres ? id3GenreName(number - 1) : nullptr;
}

SvxStringRef id3GenreNames(const SvxStringRef& content) noexcept {
    // Without the byte-order marks that values may begin with.
    const SvxStringRef values = SvxStringJoinParts(content, "\0"sv);
    return values ? GenreList(values).names() : nullptr;
}

} // namespace sonarin
