// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QPixmap>
#include <QWidget>

namespace sonarin {

/// A cover picture or an icon, as large as the room allows, in its own proportions, at its top. A picture can
/// be reached by Tab, opened and dragged away.
class PictureView : public QWidget {
    Q_OBJECT

public:
    explicit PictureView(QWidget* parent = nullptr);

    /// `pixels` is the picture's own size where the image is a smaller one.
    void setImage(const QImage& image, const QSize& pixels);
    void setIcon(const QImage& icon);
    [[nodiscard]] bool showsImage() const { return !isIcon_; }
    [[nodiscard]] QImage image() const { return image_; }
    [[nodiscard]] QSize pixels() const { return pixels_; }

    /// The room that it makes use of: a picture is not enlarged above twice its own size, which is a pixel
    /// for a unit of the form however large the screen shows that.
    [[nodiscard]] QSize sizeWithin(const QSize& room) const;
    [[nodiscard]] QSize sizeHint() const override;

signals:
    void imageChanged();
    /// By a double click or the Enter key.
    void opened();
    /// The picture is being dragged away.
    void dragged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    void show(const QImage& image, const QSize& pixels, bool isIcon);
    [[nodiscard]] QSize drawnSize() const;

    QImage image_;
    QSize pixels_;
    bool isIcon_ = true;
    QPixmap scaled_; ///< of the image, for the size painted last
    QPoint pressed_;
};

} // namespace sonarin
