// SPDX-License-Identifier: MIT
#include "platform/desktop/qtPicture.h"

#include "platform/desktop/imageResolution.h"

#include <QIODevice>
#include <QImageReader>
#include <algorithm>

namespace sonarin {

namespace {

double points(int pixels, double dotsPerInch) {
    constexpr double pointsPerInch = 72.0;
    return dotsPerInch > 0 ? pixels * pointsPerInch / dotsPerInch : pixels;
}

/// The bytes as long as they are wanted: a decoder that gets no more of them ends. Not a QBuffer, whose
/// memory some decoders read without asking.
class WantedBytes final : public QIODevice {
public:
    WantedBytes(std::span<const std::uint8_t> bytes, const std::atomic<bool>* isWanted)
        : bytes_(bytes), isWanted_(isWanted) {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    [[nodiscard]] bool areWanted() const { return isWanted_ == nullptr || *isWanted_; }
    [[nodiscard]] qint64 size() const override { return static_cast<qint64>(bytes_.size()); }

protected:
    qint64 readData(char* data, qint64 most) override {
        if (!areWanted()) {
            return -1;
        }
        const auto start = static_cast<std::size_t>(std::min(pos(), size()));
        const std::size_t count = std::min(static_cast<std::size_t>(most), bytes_.size() - start);
        std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(start), count, data);
        return static_cast<qint64>(count);
    }
    qint64 writeData(const char* /*data*/, qint64 /*size*/) override { return -1; }

private:
    std::span<const std::uint8_t> bytes_;
    const std::atomic<bool>* isWanted_;
};

/// Larger than it is ever shown, a picture would take long to paint.
QImage forScreen(QImage image) {
    constexpr int mostPixels = 2048; // in a row or a column
    return std::max(image.width(), image.height()) <= mostPixels
               ? std::move(image)
               : image.scaled(mostPixels, mostPixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

std::unique_ptr<HostPicture> decode(std::span<const std::uint8_t> bytes, const std::atomic<bool>* isWanted) {
    WantedBytes buffer(bytes, isWanted);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    QImage image = reader.read();
    if (image.isNull() || !buffer.areWanted()) {
        return nullptr;
    }
    const ImageResolution resolution = recordedResolution(bytes);
    const double width = points(image.width(), resolution.horizontal);
    const double height = points(image.height(), resolution.vertical);
    const QSize pixels = image.size();
    return std::make_unique<QtPicture>(forScreen(std::move(image)), pixels, width, height);
}

} // namespace

void decodePicturesWithQt() {
    constexpr int mostMegabytes = 256;
    QImageReader::setAllocationLimit(mostMegabytes);
    setHostPictureDecoder(decode);
}

} // namespace sonarin
