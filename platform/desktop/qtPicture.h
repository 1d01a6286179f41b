// SPDX-License-Identifier: MIT
#pragma once

#include "platform/host/picture.h"

#include <QImage>

namespace sonarin {

/// A picture decoded by Qt.
class QtPicture final : public HostPicture {
public:
    /// The image may be smaller than the picture.
    QtPicture(QImage image, const QSize& pixels, double widthInPoints, double heightInPoints)
        : image_(std::move(image)), pixels_(pixels), width_(widthInPoints), height_(heightInPoints) {}

    [[nodiscard]] const QImage& image() const noexcept { return image_; }
    [[nodiscard]] QSize pixels() const noexcept { return pixels_; }
    [[nodiscard]] double widthInPoints() const noexcept override { return width_; }
    [[nodiscard]] double heightInPoints() const noexcept override { return height_; }

private:
    QImage image_;
    QSize pixels_;
    double width_;
    double height_;
};

/// Makes Qt the program's picture decoder: every format that Qt has a plug-in for. A picture that would take
/// more than 256 MB is refused by what its header says; one of more than 2048 pixels in a row or column is
/// kept smaller.
void decodePicturesWithQt();

} // namespace sonarin
