// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QStringList>

namespace sonarin {

/// Where the user's icons are: the toolkit's own icons may be looked up in the window's thread only, which a
/// theme on a slow disk would hold up.
struct IconTheme {
    QStringList names;   ///< the user's theme and the one to fall back on
    QStringList folders; ///< that hold themes, the first ones first

    /// The theme of this moment. For the window's thread; asks no disk.
    [[nodiscard]] static IconTheme current();
};

/// The image of the icon in the theme or those that it inherits from (freedesktop.org icon themes,
/// version 0.13), of the size in pixels or as near to it as there is one; null when there is none. For
/// any thread; asks the disk each time.
[[nodiscard]] QImage themeIcon(const IconTheme& theme, const QString& name, int size);

} // namespace sonarin
