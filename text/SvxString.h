// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace sonarin {

/// Lengths, positions and indices of texts, counted in UTF-16 code units. 64 bits wide, because one tag
/// frame may hold close to 4 GiB of text.
using SvxIndex = std::int64_t;

/// The UTF-16 code unit that one stored element stands for.
constexpr char16_t unitOf(char stored) noexcept { return static_cast<unsigned char>(stored); }
constexpr char16_t unitOf(char16_t stored) noexcept { return stored; }

/// An immutable run of UTF-16 code units, in native byte order; any units are allowed, lone surrogates too.
///
/// A text whose units all lie below 0x100 keeps one byte for each ("narrow"), any other two ("wide"): most
/// tag texts are narrow, and a lyrics frame of 200 MB then costs 200 MB.
class SvxString {
public:
    explicit SvxString(std::string narrow) noexcept : units_(std::move(narrow)) {}
    explicit SvxString(std::u16string wide) noexcept : units_(std::move(wide)) {}

    /// Calls `visitor` with the stored elements, a `std::string_view` (narrow) or a `std::u16string_view`.
    template <class Visitor>
    decltype(auto) visit(Visitor&& visitor) const {
        if (const auto* narrow = std::get_if<std::string>(&units_)) {
            return visitor(std::string_view(*narrow));
        }
        return visitor(std::u16string_view(*std::get_if<std::u16string>(&units_)));
    }

    [[nodiscard]] SvxIndex length() const {
        return visit([](auto units) { return static_cast<SvxIndex>(units.size()); });
    }

    /// `index` must lie within the text.
    [[nodiscard]] char16_t unitAt(SvxIndex index) const {
        return visit([index](auto units) { return unitOf(units[static_cast<std::size_t>(index)]); });
    }

    /// Adds one blank and `addition`. Only for a text that nobody else can see (see SvxStringAppendAfterBlank).
    void extendAfterBlank(const SvxString& addition);

private:
    std::variant<std::string, std::u16string> units_;
};

/// A reference to a text, or the absent value (null), which is not the same as a text of length 0.
/// Copying retains, destroying releases.
using SvxStringRef = std::shared_ptr<const SvxString>;

} // namespace sonarin
