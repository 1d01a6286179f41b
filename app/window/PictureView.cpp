// SPDX-License-Identifier: MIT
#include "app/window/PictureView.h"

#include <QPainter>
#include <algorithm>

namespace sonarin {

PictureView::PictureView(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void PictureView::setImage(const QImage& image) {
    show(image, false);
}

void PictureView::setIcon(const QImage& icon) {
    show(icon, true);
}

void PictureView::show(const QImage& image, bool isIcon) {
    image_ = image;
    isIcon_ = isIcon;
    scaled_ = QPixmap();
    update();
}

QSize PictureView::sizeHint() const {
    constexpr int side = 176;
    return {side, side};
}

/// In the screen's pixels. An icon keeps a margin and is not enlarged.
QSize PictureView::drawnSize() const {
    constexpr QMargins iconMargins(16, 16, 16, 16);
    const QSizeF room = QSizeF(isIcon_ ? size().shrunkBy(iconMargins) : size()) * devicePixelRatioF();
    const QSizeF whole = image_.size();
    const bool fits = whole.width() <= room.width() && whole.height() <= room.height();
    const QSizeF drawn = isIcon_ && fits ? whole : whole.scaled(room, Qt::KeepAspectRatio);
    return drawn.toSize().expandedTo({1, 1});
}

void PictureView::paintEvent(QPaintEvent* /*event*/) {
    if (image_.isNull()) {
        return;
    }
    QPainter painter(this);
    if (scaled_.size() != drawnSize()) {
        scaled_ =
            QPixmap::fromImage(image_.scaled(drawnSize(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }
    QRectF target(QPointF(), QSizeF(scaled_.size()) / devicePixelRatioF());
    target.moveCenter(QRectF(rect()).center());
    painter.drawPixmap(target, scaled_, QRectF(scaled_.rect()));
}

} // namespace sonarin
