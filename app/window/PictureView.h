// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
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
    void setIcon(const QIcon& icon);
    [[nodiscard]] bool showsImage() const { return !image_.isNull(); }

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QSize drawnSize() const;

    QImage image_;
    QIcon icon_;
    QPixmap scaled_; ///< of the image, for the size painted last
};

} // namespace sonarin
