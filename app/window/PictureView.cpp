// SPDX-License-Identifier: MIT
#include "app/window/PictureView.h"

#include <QPainter>
#include <algorithm>

namespace sonarin {

PictureView::PictureView(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void PictureView::setImage(const QImage& image) {
    image_ = image;
    icon_ = QIcon();
    scaled_ = QPixmap();
    update();
}

void PictureView::setIcon(const QIcon& icon) {
    icon_ = icon;
    image_ = QImage();
    scaled_ = QPixmap();
    update();
}

QSize PictureView::sizeHint() const {
    constexpr int side = 176;
    return {side, side};
}

QSize PictureView::drawnSize() const {
    return (QSizeF(image_.size()).scaled(QSizeF(size()) * devicePixelRatioF(), Qt::KeepAspectRatio))
        .toSize()
        .expandedTo({1, 1});
}

void PictureView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    if (image_.isNull()) {
        constexpr int margin = 16;
        icon_.paint(&painter, rect().adjusted(margin, margin, -margin, -margin));
        return;
    }
    if (scaled_.size() != drawnSize()) {
        scaled_ =
            QPixmap::fromImage(image_.scaled(drawnSize(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }
    QRectF target(QPointF(), QSizeF(scaled_.size()) / devicePixelRatioF());
    target.moveCenter(QRectF(rect()).center());
    painter.drawPixmap(target, scaled_, QRectF(scaled_.rect()));
}

} // namespace sonarin
