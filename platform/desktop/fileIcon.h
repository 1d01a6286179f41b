// SPDX-License-Identifier: MIT
#pragma once

#include "platform/desktop/iconTheme.h"

#include <QIcon>
#include <QImage>
#include <QString>
#include <QStringList>
#include <optional>
#include <string>

namespace sonarin {

/// The names of the icons that files of this kind may have in a theme, the best first: going by the name, and
/// for what is no regular file by what is there. The file is not opened. For any thread: may hang on its
/// disk.
[[nodiscard]] QStringList iconNamesForFile(const std::string& path, const QString& name);

/// The first of the icons that the theme has; one of our own when it has none, nothing before they were
/// looked up. For any thread; asks no disk.
[[nodiscard]] std::optional<QImage> knownIcon(const QStringList& names, const IconTheme& theme);

/// Looks the icons up, as far as they are needed. For any thread: may hang on the theme's disk.
void lookUpIcon(const QStringList& names, const IconTheme& theme);

/// The icon of what is not known yet. For any thread; asks no disk.
[[nodiscard]] QImage unknownFileIcon();

/// The program's own icon.
[[nodiscard]] QIcon programIcon();

} // namespace sonarin
