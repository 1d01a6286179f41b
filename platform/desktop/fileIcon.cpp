// SPDX-License-Identifier: MIT
#include "platform/desktop/fileIcon.h"

#include <QCoreApplication>
#include <QDir>
#include <QMimeDatabase>
#include <QPainter>
#include <QPainterPath>
#include <array>
#include <map>
#include <mutex>
#include <optional>
#include <sys/stat.h>

namespace sonarin {

namespace {

/// All drawing is done on a ground of 64 by 64.
class Drawing {
public:
    explicit Drawing(int size) : image_(size, size, QImage::Format_ARGB32_Premultiplied) {
        constexpr double ground = 64;
        image_.fill(Qt::transparent);
        painter_.begin(&image_);
        painter_.setRenderHint(QPainter::Antialiasing);
        painter_.scale(size / ground, size / ground);
    }
    QPainter* operator->() { return &painter_; }
    QImage end() {
        painter_.end();
        return image_;
    }

private:
    QImage image_;
    QPainter painter_;
};

constexpr QRgb sheetGround = qRgb(0xF4, 0xF4, 0xF2);
constexpr QRgb outline = qRgb(0x8C, 0x8C, 0x94);
constexpr QRgb ink = qRgb(0x2F, 0x6F, 0xB0);

void drawSheet(Drawing& drawing, Qt::PenStyle style = Qt::SolidLine) {
    drawing->setPen(QPen(QColor(outline), 1, style));
    drawing->setBrush(QColor(sheetGround));
    drawing->drawRoundedRect(QRectF(12, 4, 40, 56), 4, 4);
    drawing->setPen(Qt::NoPen);
}

void drawNote(Drawing& drawing) {
    drawing->setPen(Qt::NoPen);
    drawing->setBrush(QColor(ink));
    drawing->drawEllipse(QRectF(20, 40, 11, 9));
    drawing->drawEllipse(QRectF(36, 37, 11, 9));
    QPainterPath stems;
    stems.addRect(QRectF(28.4, 20, 2.6, 25));
    stems.addRect(QRectF(44.4, 17, 2.6, 25));
    stems.addPolygon(QPolygonF({{28.4, 18}, {47, 14.5}, {47, 20.5}, {28.4, 24}}));
    stems.setFillRule(Qt::WindingFill);
    drawing->drawPath(stems);
}

QImage drawMusicSheet(int size) {
    Drawing drawing(size);
    drawSheet(drawing);
    drawNote(drawing);
    return drawing.end();
}

QImage drawTextSheet(int size) {
    Drawing drawing(size);
    drawSheet(drawing);
    drawing->setBrush(QColor(outline));
    for (const double top : {14.0, 22.0, 30.0, 38.0, 46.0}) {
        drawing->drawRect(QRectF(19, top, top == 46.0 ? 14 : 26, 2));
    }
    return drawing.end();
}

QImage drawPlainSheet(int size) {
    Drawing drawing(size);
    drawSheet(drawing);
    return drawing.end();
}

QImage drawMissing(int size) {
    Drawing drawing(size);
    drawSheet(drawing, Qt::DashLine);
    drawing->setPen(QPen(QColor(outline), 4, Qt::SolidLine, Qt::RoundCap));
    drawing->drawLine(QPointF(24, 24), QPointF(40, 40));
    drawing->drawLine(QPointF(40, 24), QPointF(24, 40));
    return drawing.end();
}

QImage drawFolder(int size) {
    Drawing drawing(size);
    QPainterPath folder;
    folder.addRoundedRect(QRectF(6, 16, 52, 38), 4, 4);
    folder.addRoundedRect(QRectF(6, 10, 24, 16), 4, 4);
    drawing->setPen(QPen(QColor(0x2A, 0x62, 0x9C), 1));
    drawing->setBrush(QColor(0x6F, 0xA8, 0xDC));
    drawing->drawPath(folder.simplified());
    return drawing.end();
}

constexpr int iconSize = 288; ///< pixels: as the window shows it on a screen of double density

/// The icons that were looked up in one theme; those that it does not have are null.
class KnownIcons {
public:
    std::optional<QImage> find(const IconTheme& theme, const QString& name) {
        const std::lock_guard lock(mutex_);
        const auto known = icons_.find(name);
        return isOf(theme) && known != icons_.end() ? std::optional(known->second) : std::nullopt;
    }

    void add(const IconTheme& theme, const QString& name, const QImage& icon) {
        const std::lock_guard lock(mutex_);
        if (!isOf(theme)) {
            theme_ = theme;
            icons_.clear();
        }
        icons_[name] = icon;
    }

private:
    [[nodiscard]] bool isOf(const IconTheme& theme) const {
        return theme.names == theme_.names && theme.folders == theme_.folders;
    }

    std::mutex mutex_; ///< guards the following
    IconTheme theme_;
    std::map<QString, QImage> icons_;
};

KnownIcons& knownIcons() {
    static KnownIcons known;
    return known;
}

/// The type goes by the name, but for what is no regular file. Not asked of the database with the path: it
/// would look at the disk with a lock held that everybody needs.
QMimeType typeOf(mode_t kind, const QString& name) {
    struct SpecialType {
        mode_t kind;
        const char* name;
    };
    constexpr std::array<SpecialType, 5> specialTypes = {{{S_IFDIR, "inode/directory"},
                                                          {S_IFIFO, "inode/fifo"},
                                                          {S_IFSOCK, "inode/socket"},
                                                          {S_IFCHR, "inode/chardevice"},
                                                          {S_IFBLK, "inode/blockdevice"}}};
    const QMimeDatabase types;
    for (const SpecialType& special : specialTypes) {
        if (kind == special.kind) {
            return types.mimeTypeForName(QLatin1StringView(special.name));
        }
    }
    const QList<QMimeType> found = types.mimeTypesForFileName(name);
    return found.isEmpty() ? types.mimeTypeForName(QStringLiteral("application/octet-stream"))
                           : found.first();
}

DrawnIcon drawnFor(mode_t kind, const QMimeType& type) {
    return kind == 0                                             ? DrawnIcon::missing
           : kind == S_IFDIR                                     ? DrawnIcon::folder
           : type.name().startsWith(QLatin1StringView("audio/")) ? DrawnIcon::music
           : type.inherits(QStringLiteral("text/plain"))         ? DrawnIcon::text
                                                                 : DrawnIcon::plain;
}

} // namespace

FileIcon iconForFile(const std::string& path, const QString& name) {
    struct stat status {};
    const mode_t kind = stat(path.c_str(), &status) == 0 ? status.st_mode & S_IFMT : 0;
    const QMimeType type = typeOf(kind, name);
    return {{type.iconName(), type.genericIconName()}, drawnFor(kind, type)};
}

std::optional<QImage> knownIcon(const FileIcon& icon, const IconTheme& theme) {
    for (const QString& name : icon.names) {
        std::optional<QImage> image = knownIcons().find(theme, name);
        if (!image || !image->isNull()) {
            return image;
        }
    }
    return drawnIcon(icon.drawn);
}

void lookUpIcon(const FileIcon& wanted, const IconTheme& theme) {
    QImage icon;
    for (const QString& name : wanted.names) {
        if (icon.isNull()) {
            icon = themeIcon(theme, name, iconSize);
            knownIcons().add(theme, name, icon);
        }
    }
}

QImage drawnIcon(DrawnIcon icon) {
    static const std::array<QImage, 5> drawn = {drawMusicSheet(iconSize), drawFolder(iconSize),
                                                drawTextSheet(iconSize), drawPlainSheet(iconSize),
                                                drawMissing(iconSize)};
    return drawn.at(static_cast<std::size_t>(icon));
}

QIcon programIcon() {
    const QString programs = QCoreApplication::applicationDirPath();
    QIcon icon;
    for (const QString& parent : {programs, programs + QStringLiteral("/..")}) {
        const QDir sizes(parent + QStringLiteral("/share/icons/hicolor"));
        for (const QString& size : sizes.entryList({QStringLiteral("*x*")}, QDir::Dirs)) {
            icon.addFile(sizes.filePath(size + QStringLiteral("/apps/org.sonarin.Sonarin.png")));
        }
        if (!icon.isNull()) {
            break;
        }
    }
    return icon;
}

} // namespace sonarin
