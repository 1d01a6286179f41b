// SPDX-License-Identifier: MIT
#include "platform/desktop/fileIcon.h"

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

/// A sheet with a note on it, or the program's badge: the note on a round ground.
QImage drawNote(int size, bool onSheet) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 64.0, size / 64.0);
    painter.setPen(Qt::NoPen);
    if (onSheet) {
        painter.setBrush(QColor(0xF4, 0xF4, 0xF2));
        painter.setPen(QPen(QColor(0x8C, 0x8C, 0x94), 1));
        painter.drawRoundedRect(QRectF(12, 4, 40, 56), 4, 4);
        painter.setPen(Qt::NoPen);
    } else {
        QLinearGradient ground(0, 0, 0, 64);
        ground.setColorAt(0, QColor(0x2F, 0x80, 0xC8));
        ground.setColorAt(1, QColor(0x1B, 0x4E, 0x8C));
        painter.setBrush(ground);
        painter.drawRoundedRect(QRectF(2, 2, 60, 60), 14, 14);
    }
    painter.setBrush(onSheet ? QColor(0x2F, 0x6F, 0xB0) : QColor(Qt::white));
    painter.drawEllipse(QRectF(20, 40, 11, 9));
    painter.drawEllipse(QRectF(36, 37, 11, 9));
    QPainterPath stems;
    stems.addRect(QRectF(28.4, 20, 2.6, 25));
    stems.addRect(QRectF(44.4, 17, 2.6, 25));
    stems.addPolygon(QPolygonF({{28.4, 18}, {47, 14.5}, {47, 20.5}, {28.4, 24}}));
    stems.setFillRule(Qt::WindingFill);
    painter.drawPath(stems);
    return image;
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
QMimeType typeOf(const std::string& path, const QString& name) {
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
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) {
        for (const SpecialType& special : specialTypes) {
            if ((status.st_mode & S_IFMT) == special.kind) {
                return types.mimeTypeForName(QLatin1StringView(special.name));
            }
        }
    }
    const QList<QMimeType> found = types.mimeTypesForFileName(name);
    return found.isEmpty() ? types.mimeTypeForName(QStringLiteral("application/octet-stream"))
                           : found.first();
}

} // namespace

QStringList iconNamesForFile(const std::string& path, const QString& name) {
    const QMimeType type = typeOf(path, name);
    return {type.iconName(), type.genericIconName()};
}

std::optional<QImage> knownIcon(const QStringList& names, const IconTheme& theme) {
    for (const QString& name : names) {
        std::optional<QImage> icon = knownIcons().find(theme, name);
        if (!icon || !icon->isNull()) {
            return icon;
        }
    }
    return unknownFileIcon();
}

void lookUpIcon(const QStringList& names, const IconTheme& theme) {
    QImage icon;
    for (const QString& name : names) {
        if (icon.isNull()) {
            icon = themeIcon(theme, name, iconSize);
            knownIcons().add(theme, name, icon);
        }
    }
}

QImage unknownFileIcon() {
    static const QImage sheet = drawNote(iconSize, true);
    return sheet;
}

QIcon programIcon() {
    QIcon drawn;
    for (const int size : {16, 32, 64, 128, 256}) {
        drawn.addPixmap(QPixmap::fromImage(drawNote(size, false)));
    }
    return QIcon::fromTheme(QStringLiteral("org.sonarin.Sonarin"), drawn);
}

} // namespace sonarin
