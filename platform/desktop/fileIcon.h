// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
#include <QString>

namespace sonarin {

/// The icon that the desktop's theme has for files of this kind, going by the name (and for folders by what
/// is there); one of our own when the theme has none. The file is not opened.
[[nodiscard]] QIcon iconForFile(const QString& path);

/// The program's own icon.
[[nodiscard]] QIcon programIcon();

} // namespace sonarin
