// SPDX-License-Identifier: MIT
#include "app/window/PictureView.h"

#include "app/window/textColours.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>

namespace sonarin {

namespace {

constexpr int iconSide = 176;

} // namespace

PictureView::PictureView(QWidget* parent) : QWidget(parent) {
    setContextMenuPolicy(Qt::CustomContextMenu);
}

void PictureView::setImage(const QImage& image, const QSize& pixels) {
    show(image, pixels, false);
}

void PictureView::setIcon(const QImage& icon) {
    show(icon, icon.size(), true);
}

void PictureView::show(const QImage& image, const QSize& pixels, bool isIcon) {
    image_ = image;
    pixels_ = pixels;
    isIcon_ = isIcon;
    scaled_ = QPixmap();
    setAccessibleName(isIcon ? QStringLiteral("Icon") : QStringLiteral("Cover"));
    setFocusPolicy(isIcon ? Qt::NoFocus : Qt::StrongFocus);
    update();
    emit imageChanged();
}

QSize PictureView::sizeWithin(const QSize& room) const {
    if (isIcon_) {
        const int side = std::min({room.width(), room.height(), iconSide});
        return {side, side};
    }
    constexpr int mostEnlarged = 2;
    const QSize most = pixels_ * mostEnlarged;
    const QSize fitted = most.scaled(room, Qt::KeepAspectRatio);
    return (fitted.width() > most.width() ? most : fitted).expandedTo({1, 1});
}

QSize PictureView::sizeHint() const {
    return {iconSide, iconSide};
}

/// In the screen's pixels. An icon keeps a margin and is not enlarged.
QSize PictureView::drawnSize() const {
    if (!isIcon_) {
        return (QSizeF(sizeWithin(size())) * devicePixelRatioF()).toSize();
    }
    const int margin = std::min(width(), height()) / 11;
    const QSizeF room = QSizeF(size().shrunkBy({margin, margin, margin, margin})) * devicePixelRatioF();
    const QSizeF whole = image_.size();
    const bool fits = whole.width() <= room.width() && whole.height() <= room.height();
    return (fits ? whole : whole.scaled(room, Qt::KeepAspectRatio)).toSize().expandedTo({1, 1});
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
    if (!isIcon_) {
        target.moveTop(0);
    }
    painter.drawPixmap(target, scaled_, QRectF(scaled_.rect()));
    if (hasFocus() && !isIcon_) {
        drawFocusRing(painter, *this);
    }
}

void PictureView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space) {
        emit opened();
        return;
    }
    QWidget::keyPressEvent(event);
}

void PictureView::mousePressEvent(QMouseEvent* event) {
    pressed_ = event->position().toPoint();
}

void PictureView::mouseMoveEvent(QMouseEvent* event) {
    const QPoint way = event->position().toPoint() - pressed_;
    if (!isIcon_ && (event->buttons() & Qt::LeftButton) != 0 &&
        way.manhattanLength() >= QApplication::startDragDistance()) {
        emit dragged();
    }
}

void PictureView::mouseDoubleClickEvent(QMouseEvent* /*event*/) {
    if (!isIcon_) {
        emit opened();
    }
}

} // namespace sonarin

#include "moc_PictureView.cpp"
