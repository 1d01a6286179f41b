// SPDX-License-Identifier: MIT
#include "platform/desktop/qtPicture.h"

#include "platform/desktop/imageResolution.h"

#include <QBuffer>
#include <QImageReader>

namespace sonarin {

namespace {

double points(int pixels, double dotsPerInch) {
    constexpr double pointsPerInch = 72.0;
    return dotsPerInch > 0 ? pixels * pointsPerInch / dotsPerInch : pixels;
}

std::unique_ptr<HostPicture> decode(std::span<const std::uint8_t> bytes) {
    // NOLINTNEXTLINE(*-reinterpret-cast)
    const auto* characters = reinterpret_cast<const char*>(bytes.data());
    QByteArray view = QByteArray::fromRawData(characters, static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&view);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    QImage image = reader.read();
    if (image.isNull()) {
        return nullptr;
    }
    const ImageResolution resolution = recordedResolution(bytes);
    const double width = points(image.width(), resolution.horizontal);
    const double height = points(image.height(), resolution.vertical);
    return std::make_unique<QtPicture>(std::move(image), width, height);
}

} // namespace

void decodePicturesWithQt() {
    constexpr int mostMegabytes = 256;
    QImageReader::setAllocationLimit(mostMegabytes);
    setHostPictureDecoder(decode);
}

} // namespace sonarin
