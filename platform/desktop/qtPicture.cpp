// SPDX-License-Identifier: MIT
#include "platform/desktop/qtPicture.h"

#include "platform/desktop/imageResolution.h"

#include <QBuffer>
#include <QImageReader>
#include <algorithm>

namespace sonarin {

namespace {

double points(int pixels, double dotsPerInch) {
    constexpr double pointsPerInch = 72.0;
    return dotsPerInch > 0 ? pixels * pointsPerInch / dotsPerInch : pixels;
}

/// The bytes as long as they are wanted: a decoder that gets no more of them ends.
class WantedBytes final : public QBuffer {
public:
    WantedBytes(QByteArray* bytes, const std::atomic<bool>* isWanted) : QBuffer(bytes), isWanted_(isWanted) {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    [[nodiscard]] bool areWanted() const { return isWanted_ == nullptr || *isWanted_; }

protected:
    qint64 readData(char* data, qint64 size) override {
        constexpr qint64 piece = 65536; // some formats are read in one go
        return areWanted() ? QBuffer::readData(data, std::min(size, piece)) : -1;
    }

private:
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
    // NOLINTNEXTLINE(*-reinterpret-cast)
    const auto* characters = reinterpret_cast<const char*>(bytes.data());
    QByteArray view = QByteArray::fromRawData(characters, static_cast<qsizetype>(bytes.size()));
    WantedBytes buffer(&view, isWanted);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    QImage image = reader.read();
    if (image.isNull() || !buffer.areWanted()) {
        return nullptr;
    }
    const ImageResolution resolution = recordedResolution(bytes);
    const double width = points(image.width(), resolution.horizontal);
    const double height = points(image.height(), resolution.vertical);
    return std::make_unique<QtPicture>(forScreen(std::move(image)), width, height);
}

} // namespace

void decodePicturesWithQt() {
    constexpr int mostMegabytes = 256;
    QImageReader::setAllocationLimit(mostMegabytes);
    setHostPictureDecoder(decode);
}

} // namespace sonarin
