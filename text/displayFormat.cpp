// SPDX-License-Identifier: MIT
#include "text/displayFormat.h"

#include "text/CMMCoreFunctions.h"
#include "text/stringEngine.h"
#include "text/userLocale.h"

#include <unicode/decimfmt.h>
#include <unicode/unistr.h>

#include <array>
#include <bit>
#include <exception>
#include <limits>
#include <memory>
#include <utility>

namespace sonarin {

namespace {

/// Created once and kept for the program's lifetime. Each thread formats with a copy.
std::unique_ptr<const icu::NumberFormat> gOneFractionDigitFormatter;

/// What one thread formats numbers with. Files in a row share their sampling rates, and the formatter takes
/// longer than all else that is done for a file's panel: the last numbers are kept. Brings 8% of the library
/// benchmark, whose files share their sizes too.
class NumberTexts {
public:
    SvxStringRef of(double value) {
        const auto bits = std::bit_cast<std::uint64_t>(value);
        KnownNumber& known = recent_.at(recentIndex(bits));
        if (!known.text || known.bits != bits) {
            known = {bits, format(value)};
        }
        return known.text;
    }

private:
    struct KnownNumber {
        std::uint64_t bits = 0; ///< of the number, so that 0 and -0 differ
        SvxStringRef text;
    };
    static constexpr unsigned recentBits = 6;

    /// Fibonacci hashing: sizes and rates differ in few bits of the middle.
    static std::size_t recentIndex(std::uint64_t bits) {
        return static_cast<std::size_t>((bits * 0x9E3779B97F4A7C15U) >> (64U - recentBits));
    }

    SvxStringRef format(double value) {
        if (!formatter_ && gOneFractionDigitFormatter) {
            formatter_.reset(gOneFractionDigitFormatter->clone());
        }
        if (!formatter_) {
            return nullptr;
        }
        icu::UnicodeString text;
        formatter_->format(value, text);
        return SvxStringFromUTF16({text.getBuffer(), static_cast<std::size_t>(text.length())});
    }

    std::unique_ptr<const icu::NumberFormat> formatter_;
    std::array<KnownNumber, 1U << recentBits> recent_;
};

thread_local NumberTexts numberTexts;

struct SizeUnit {
    std::uint64_t lastKibibytes; ///< the largest count of whole kibibytes that is shown in this unit
    double factor;               ///< the reciprocal of the unit's bytes, a power of two and so exact
    std::int16_t textIndex;      ///< in string table 1001
};

constexpr std::int16_t sizeUnitTable = 1001;
constexpr auto sizeUnits = std::to_array<SizeUnit>({
    {std::uint64_t{1} << 10U, 0x1p-10, 46},
    {std::uint64_t{1} << 20U, 0x1p-20, 3},
    {std::uint64_t{1} << 30U, 0x1p-30, 31},
    {std::numeric_limits<std::uint64_t>::max(), 0x1p-40, 123},
});

} // namespace

void svxStringInitString() noexcept {
    numberTexts = {};
    gOneFractionDigitFormatter.reset();
    try {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::NumberFormat> formatter(
            icu::NumberFormat::createInstance(icu::Locale(userNumberLocale().c_str()), UNUM_DECIMAL, status));
        if (U_FAILURE(status) == 0) {
            formatter->setMinimumFractionDigits(1);
            formatter->setMaximumFractionDigits(1);
            formatter->setRoundingMode(icu::NumberFormat::kRoundHalfEven);
            gOneFractionDigitFormatter = std::move(formatter);
        }
    } catch (const std::exception&) {
        // Out of memory: as if the user's locale had no number format.
    }
}

SvxStringRef SvxMakeFloatingFractionString(double value) noexcept {
    return numberTexts.of(value);
}

SvxStringRef SvxStringMakeSizeString(std::uint64_t bytes) noexcept {
    const auto* unit = sizeUnits.begin();
    while (bytes / 1024 > unit->lastKibibytes) {
        ++unit;
    }
    return SvxStringCreateWithFormat(
        "%@%@", {SvxMakeFloatingFractionString(static_cast<double>(bytes) * unit->factor),
                 iuGetIndCFString(sizeUnitTable, unit->textIndex)});
}

SvxStringRef SvxStringMakeDurationString(std::uint32_t seconds) noexcept {
    const SvxStringRef paddedSeconds = SvxStringMakePaddedNumberString(seconds % 60);
    if (seconds <= 3600) {
        return SvxStringCreateWithFormat("%i:%@", {seconds / 60, paddedSeconds});
    }
    const SvxStringRef paddedMinutes = SvxStringMakePaddedNumberString(seconds % 3600 / 60);
    return SvxStringCreateWithFormat("%i:%@:%@", {seconds / 3600, paddedMinutes, paddedSeconds});
}

SvxStringRef SvxStringMakePaddedNumberString(std::uint32_t value) noexcept {
    return SvxStringCreateWithFormat(value <= 9 ? "0%li" : "%li", {value});
}

} // namespace sonarin
