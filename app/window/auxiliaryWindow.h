// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace sonarin {

/// Shows the window before all others, also when it was made small.
void bringToFront(QWidget* window);

/// Has the window closed by the keys that close any window.
void closeByKey(QWidget* window);

} // namespace sonarin
