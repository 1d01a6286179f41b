// SPDX-License-Identifier: MIT
#include "platform/desktop/fileIcon.h"

#include <QFileInfo>
#include <QMimeDatabase>
#include <QPainter>
#include <QPainterPath>

namespace sonarin {

namespace {

/// A sheet with a note on it, or the program's badge: the note on a round ground.
QPixmap drawNote(int size, bool onSheet) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 64.0, size / 64.0);
    painter.setPen(Qt::NoPen);
    if (onSheet) {
        painter.setBrush(QColor(0xF4, 0xF4, 0xF2));
        painter.setPen(QPen(QColor(0x8C, 0x8C, 0x94), 1));
        painter.drawRoundedRect(QRectF(12, 4, 40, 56), 4, 4);
        painter.setPen(Qt::NoPen);
    } else {
        QLinearGradient ground(0, 0, 0, 64);
        ground.setColorAt(0, QColor(0x2F, 0x80, 0xC8));
        ground.setColorAt(1, QColor(0x1B, 0x4E, 0x8C));
        painter.setBrush(ground);
        painter.drawRoundedRect(QRectF(2, 2, 60, 60), 14, 14);
    }
    painter.setBrush(onSheet ? QColor(0x2F, 0x6F, 0xB0) : QColor(Qt::white));
    painter.drawEllipse(QRectF(20, 40, 11, 9));
    painter.drawEllipse(QRectF(36, 37, 11, 9));
    QPainterPath stems;
    stems.addRect(QRectF(28.4, 20, 2.6, 25));
    stems.addRect(QRectF(44.4, 17, 2.6, 25));
    stems.addPolygon(QPolygonF({{28.4, 18}, {47, 14.5}, {47, 20.5}, {28.4, 24}}));
    stems.setFillRule(Qt::WindingFill);
    painter.drawPath(stems);
    return pixmap;
}

QIcon drawnIcon(bool onSheet) {
    QIcon icon;
    for (const int size : {16, 32, 64, 128, 256}) {
        icon.addPixmap(drawNote(size, onSheet));
    }
    return icon;
}

} // namespace

QIcon iconForFile(const QString& path) {
    static const QMimeDatabase types;
    const QMimeType type = types.mimeTypeForFile(QFileInfo(path), QMimeDatabase::MatchExtension);
    for (const QString& name : {type.iconName(), type.genericIconName()}) {
        if (QIcon::hasThemeIcon(name)) {
            return QIcon::fromTheme(name);
        }
    }
    static const QIcon own = drawnIcon(true);
    return own;
}

QIcon programIcon() {
    return QIcon::fromTheme(QStringLiteral("org.sonarin.Sonarin"), drawnIcon(false));
}

} // namespace sonarin
