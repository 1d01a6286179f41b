// SPDX-License-Identifier: MIT
#pragma once

#include "platform/desktop/iconTheme.h"

#include <QIcon>
#include <QImage>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>
#include <string>

namespace sonarin {

/// The icons of our own, for who has no theme.
enum class DrawnIcon : std::uint8_t { music, folder, text, plain, missing };

/// The icon of a file.
struct FileIcon {
    QStringList names; ///< that it may have in a theme, the best first
    DrawnIcon drawn = DrawnIcon::music;
};

/// The icon of files of this kind: going by the name, and for what is no regular file by what is there. The
/// file is not opened. For any thread: may hang on its disk.
[[nodiscard]] FileIcon iconForFile(const std::string& path, const QString& name);

/// The first of the icons that the theme has; one of our own when it has none, nothing before they were
/// looked up. For any thread; asks no disk.
[[nodiscard]] std::optional<QImage> knownIcon(const FileIcon& icon, const IconTheme& theme);

/// Looks the icons up, as far as they are needed. For any thread: may hang on the theme's disk.
void lookUpIcon(const FileIcon& wanted, const IconTheme& theme);

/// For any thread; asks no disk.
[[nodiscard]] QImage drawnIcon(DrawnIcon icon);

/// The program's own icon: the pictures that were installed with the program, found from where it stands.
[[nodiscard]] QIcon programIcon();

} // namespace sonarin
