// SPDX-License-Identifier: MIT
#pragma once

#include "app/window/ValueLabel.h"
#include "text/SvxString.h"

#include <QByteArray>
#include <QString>
#include <string>

namespace sonarin {

/// The border between the program's texts and the toolkit's.
class cocoaUtils {
public:
    /// Shows the text in the field; the absent one as "".
    static void setStringValue(ValueLabel* field, const SvxStringRef& text);

    /// The units of at most the first `most` units of the text; null for the absent text.
    [[nodiscard]] static QString stringFromText(const SvxStringRef& text, qsizetype most);
    [[nodiscard]] static QString stringFromText(const SvxStringRef& text);
    /// The text of a path given as bytes.
    [[nodiscard]] static QString pathText(const QByteArray& path);
    /// The bytes of the path; empty where it can be none.
    [[nodiscard]] static std::string hostPath(const QString& path);
    [[nodiscard]] static SvxStringRef textFromString(const QString& string);
};

} // namespace sonarin
