// SPDX-License-Identifier: MIT
#include "app/window/textColours.h"

#include <QPainter>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace sonarin {

namespace {

bool isHighContrast = false; // NOLINT(*-avoid-non-const-global-variables): the window's thread alone has it

/// WCAG 2.1, relative luminance.
double luminance(const QColor& colour) {
    const auto linear = [](float channel) {
        return channel <= 0.03928F ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

QColor mixed(const QColor& text, const QColor& ground, float share) {
    const auto mix = [share](float a, float b) { return a * share + b * (1 - share); };
    return QColor::fromRgbF(mix(text.redF(), ground.redF()), mix(text.greenF(), ground.greenF()),
                            mix(text.blueF(), ground.blueF()));
}

} // namespace

double contrast(const QColor& one, const QColor& other) {
    constexpr double flare = 0.05;
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + flare) / (std::min(a, b) + flare);
}

QColor weakText(const QPalette& palette, double least) {
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    const QColor ground = palette.color(QPalette::Active, QPalette::Window);
    constexpr float step = 0.02F;
    float share = isHighContrast ? 1 : step;
    while (share < 1 && contrast(mixed(text, ground, share), ground) < least) {
        share += step;
    }
    return mixed(text, ground, std::min(share, 1.0F));
}

void weakenText(QWidget& widget) {
    const QWidget* parent = widget.parentWidget();
    const QColor weak = weakText(parent != nullptr ? parent->palette() : widget.palette(), readable);
    if (widget.palette().color(QPalette::PlaceholderText) != weak) {
        QPalette mine = widget.palette();
        mine.setColor(QPalette::PlaceholderText, weak);
        if (contrast(mine.color(QPalette::Link), mine.color(QPalette::Window)) < readable) {
            mine.setColor(QPalette::Link, mine.color(QPalette::WindowText));
        }
        widget.setPalette(mine);
    }
}

void preferHighContrast(bool isPreferred) {
    isHighContrast = isPreferred;
}

void drawFocusRing(QPainter& painter, const QWidget& widget) {
    const double width = isHighContrast ? 2 : 1.5;
    const double inset = width / 2;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(widget.palette().color(QPalette::Active, QPalette::Highlight), width));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(widget.rect()).adjusted(inset, inset, -inset, -inset), 3, 3);
}

} // namespace sonarin
