// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QPixmap>
#include <QWidget>

namespace sonarin {

/// A cover picture or an icon, as large as the room allows, in its own proportions.
class PictureView : public QWidget {
    Q_OBJECT

public:
    explicit PictureView(QWidget* parent = nullptr);

    void setImage(const QImage& image);
    void setIcon(const QImage& icon);
    [[nodiscard]] bool showsImage() const { return !isIcon_; }

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void show(const QImage& image, bool isIcon);
    [[nodiscard]] QSize drawnSize() const;

    QImage image_;
    bool isIcon_ = true;
    QPixmap scaled_; ///< of the image, for the size painted last
};

} // namespace sonarin
