// SPDX-License-Identifier: MIT
#pragma once

#include "platform/desktop/iconTheme.h"

#include <QIcon>
#include <QImage>
#include <QString>
#include <string>

namespace sonarin {

/// The icon that the desktop's theme has for files of this kind, going by the name (and for folders by what
/// is there); one of our own when the theme has none. The file is not opened. For any thread: may hang.
[[nodiscard]] QImage iconForFile(const std::string& path, const QString& name, const IconTheme& theme);

/// The icon of what is not known yet. For any thread; asks no disk.
[[nodiscard]] QImage unknownFileIcon();

/// The program's own icon.
[[nodiscard]] QIcon programIcon();

} // namespace sonarin
