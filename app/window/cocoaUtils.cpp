// SPDX-License-Identifier: MIT
#include "app/window/cocoaUtils.h"

#include "engine/fileEngine.h"
#include "text/stringEngine.h"

#include <limits>

namespace sonarin {

void cocoaUtils::setStringValue(ValueLabel* field, const SvxStringRef& text) {
    constexpr qsizetype mostShown = 30000; // the field cuts what is longer than it holds
    field->setValue(text ? stringFromText(text, mostShown) : QStringLiteral(""));
}

QString cocoaUtils::stringFromText(const SvxStringRef& text, qsizetype most) {
    if (!text) {
        return {};
    }
    return text->visit([most](auto units) {
        units = units.substr(0, static_cast<std::size_t>(most));
        const auto count = static_cast<qsizetype>(units.size());
        if constexpr (sizeof(units[0]) == 1) {
            return QString::fromLatin1(units.data(), count);
        } else {
            // Not fromUtf16, which would take a byte-order mark away.
            return QString(reinterpret_cast<const QChar*>(units.data()), count); // NOLINT(*-reinterpret-cast)
        }
    });
}

QString cocoaUtils::stringFromText(const SvxStringRef& text) {
    return stringFromText(text, std::numeric_limits<qsizetype>::max());
}

QString cocoaUtils::pathText(const QByteArray& path) {
    return stringFromText(feMakePathText({path.constData(), static_cast<std::size_t>(path.size())}));
}

std::string cocoaUtils::hostPath(const QString& path) {
    FSRef ref;
    (void)feMakeFSRefFromPath(textFromString(path), &ref);
    return ref.path;
}

SvxStringRef cocoaUtils::textFromString(const QString& string) {
    if (string.isNull()) {
        return nullptr;
    }
    // NOLINTNEXTLINE(*-reinterpret-cast)
    const auto* units = reinterpret_cast<const char16_t*>(string.utf16());
    return SvxStringFromUTF16({units, static_cast<std::size_t>(string.size())});
}

} // namespace sonarin
