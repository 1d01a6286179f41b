// SPDX-License-Identifier: MIT
#include "engine/id3genres.h"

#include "text/CMMCoreFunctions.h"
#include "text/stringEngine.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace sonarin {

namespace {

/// The name that a reference stands for; absent when it is none that is known.
SvxStringRef referredName(const SvxStringRef& reference) {
    constexpr SvxIndex mostDigits = 3;
    const SvxIndex length = SvxStringGetLength(reference);
    if (length == 0 || length > mostDigits) {
        return nullptr;
    }
    for (SvxIndex i = 0; i < length; ++i) {
        const char16_t unit = SvxStringGetUniChar(reference, i);
        if (unit < u'0' || unit > u'9') {
            return SvxStringIsEqual(reference, SvxStringFromLatin1("RX"))   ? SvxStringFromLatin1("Remix")
                   : SvxStringIsEqual(reference, SvxStringFromLatin1("CR")) ? SvxStringFromLatin1("Cover")
                                                                            : nullptr;
        }
    }
    return id3GenreName(SvxStringGetIntValue(reference));
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
    [[nodiscard]] bool isFull() const { return count_ == names_.size(); }

    [[nodiscard]] SvxStringRef part(SvxIndex start, SvxIndex end) const {
        return SvxStringCreateWithSubstring(content_, start, end - start);
    }

    void addValue(SvxIndex start, SvxIndex end) {
        const std::size_t before = count_;
        SvxIndex position = start;
        while (position < end && SvxStringGetUniChar(content_, position) == u'(' && !isFull()) {
            const SvxIndex close = SvxStringFindUnit(content_, ')', position, end);
            const SvxStringRef name = close == end ? nullptr : referredName(part(position + 1, close));
            if (!name) {
                break;
            }
            add(name);
            position = close + 1;
        }
        // A name that begins with a parenthesis has it twice.
        const bool isEscaped = position + 1 < end && SvxStringGetUniChar(content_, position) == u'(' &&
                               SvxStringGetUniChar(content_, position + 1) == u'(';
        const SvxStringRef rest = part(position + (isEscaped ? 1 : 0), end);
        const SvxStringRef name = position == start ? referredName(rest) : nullptr;
        const bool isRepeated =
            std::any_of(names_.begin() + before, names_.begin() + count_,
                        [&](const SvxStringRef& known) { return SvxStringIsEqual(known, rest); });
        if (!isRepeated) {
            add(name ? name : rest);
        }
    }

    void add(const SvxStringRef& name) {
        if (SvxStringGetLength(name) != 0 && !isFull()) {
            names_.at(count_++) = name;
        }
    }

    SvxStringRef joined() {
        const SvxStringRef separator = SvxStringFromLatin1("/");
        SvxStringRef list = names_.front();
        for (std::size_t i = 1; i < count_; ++i) {
            SvxStringAppendAfterBlank(&list, separator);
            SvxStringAppendAfterBlank(&list, names_.at(i));
        }
        return list;
    }

    const SvxStringRef& content_;
    std::array<SvxStringRef, 100> names_;
    std::size_t count_ = 0;
};

} // namespace

SvxStringRef id3GenreName(std::int32_t code) noexcept {
    constexpr std::int16_t genreTable = 513;
    constexpr std::int32_t lastCode = 191;
    return code >= 0 && code <= lastCode
               ? SvxStringGetFromTable(genreTable, static_cast<std::int16_t>(code + 1))
               : nullptr;
}

SvxStringRef id3GenreNames(const SvxStringRef& content) noexcept {
    // Without the byte-order marks that values may begin with.
    const SvxStringRef values = SvxStringJoinParts(content, std::string_view("\0", 1));
    return values ? GenreList(values).names() : nullptr;
}

} // namespace sonarin
