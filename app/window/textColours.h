// SPDX-License-Identifier: MIT
#pragma once

#include <QPalette>

class QPainter;
class QWidget;

namespace sonarin {

/// The contrast of two colours, 1 to 21 (WCAG 2.1, contrast ratio).
[[nodiscard]] double contrast(const QColor& one, const QColor& other);

/// The palette's text as weak on its ground as that contrast allows; at full strength where the user has
/// asked for high contrast.
[[nodiscard]] QColor weakText(const QPalette& palette, double least);

/// Contrasts that suffice for a text that matters less (WCAG 2.1, 1.4.3), and for what need not be read.
inline constexpr double readable = 5.0;
inline constexpr double faint = 3.0;

/// Keeps the widget's weaker text (QPalette::PlaceholderText) readable on its parent's ground; to be called
/// again when the palette changes.
void weakenText(QWidget& widget);

/// The user's wish for high contrast; to be told before anything is painted, and again when it changes.
void preferHighContrast(bool isPreferred);

/// Shows that the widget has the keyboard.
void drawFocusRing(QPainter& painter, const QWidget& widget);

} // namespace sonarin
