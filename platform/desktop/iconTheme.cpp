// SPDX-License-Identifier: MIT
#include "platform/desktop/iconTheme.h"

#include <QFile>
#include <QIcon>
#include <QImageReader>
#include <QSettings>
#include <algorithm>
#include <cstdlib>

namespace sonarin {

namespace {

/// A text of a desktop file, in which commas need not be meant as a list.
QStringList listOf(const QVariant& value) {
    return value.toString().isEmpty() ? value.toStringList() : value.toString().split(u',');
}

/// How far the icons of the folder are from the size; those that can only be enlarged are the farthest.
int distance(const QSettings& index, const QString& folder, int wanted) {
    constexpr int defaultThreshold = 2;
    constexpr int enlarging = 1000;
    const auto value = [&](const char* key, int otherwise) {
        return index.value(folder + u'/' + QLatin1StringView(key), otherwise).toInt();
    };
    const int scale = value("Scale", 1);
    const int size = value("Size", 0) * scale;
    const QString type = index.value(folder + QStringLiteral("/Type")).toString();
    const int slack = type == QLatin1StringView("Fixed") ? 0 : value("Threshold", defaultThreshold) * scale;
    int least = size - slack;
    int most = size + slack;
    if (type == QLatin1StringView("Scalable")) {
        least = value("MinSize", size) * scale;
        most = value("MaxSize", size) * scale;
    }
    return wanted > most ? enlarging + wanted - most : std::max(0, least - wanted);
}

struct Found {
    QString file;
    int distance = 0;
};

QImage imageOf(const QString& file, int size) {
    QImageReader reader(file);
    if (file.endsWith(QLatin1StringView(".svg"))) {
        reader.setScaledSize({size, size});
    }
    return reader.read();
}

/// One search, through a theme and then through those that it inherits from.
class Search {
public:
    Search(const QStringList& folders, const QString& name, int size)
        : folders_(folders), name_(name), size_(size) {}

    QImage in(const QString& theme) {
        constexpr qsizetype mostThemes = 20; // one may inherit from many, which an index says
        if (seen_.contains(theme) || seen_.size() == mostThemes) {
            return {};
        }
        seen_.append(theme);
        const QString file = indexOf(theme);
        if (file.isEmpty()) {
            return {};
        }
        const QSettings index(file, QSettings::IniFormat);
        const QString icon = nearest(theme, index);
        QImage image = icon.isEmpty() ? QImage() : imageOf(icon, size_);
        for (const QString& parent : listOf(index.value(QStringLiteral("Icon Theme/Inherits")))) {
            image = image.isNull() ? in(parent.trimmed()) : image;
        }
        return image;
    }

private:
    /// A theme may be spread over several folders, the first index of which counts.
    [[nodiscard]] QString indexOf(const QString& theme) const {
        for (const QString& folder : folders_) {
            QString file = folder + u'/' + theme + QStringLiteral("/index.theme");
            if (QFile::exists(file)) {
                return file;
            }
        }
        return {};
    }

    [[nodiscard]] QString nearest(const QString& theme, const QSettings& index) const {
        QString best;
        int bestDistance = 0;
        for (const QString& icons : listOf(index.value(QStringLiteral("Icon Theme/Directories")))) {
            const int apart = distance(index, icons, size_);
            if (!best.isEmpty() && apart >= bestDistance) {
                continue;
            }
            const QString found = fileIn(theme + u'/' + icons);
            if (!found.isEmpty()) {
                best = found;
                bestDistance = apart;
            }
        }
        return best;
    }

    [[nodiscard]] QString fileIn(const QString& icons) const {
        for (const QString& folder : folders_) {
            for (const char* suffix : {".svg", ".png"}) {
                QString path = folder + u'/' + icons + u'/' + name_ + QLatin1StringView(suffix);
                if (QFile::exists(path)) {
                    return path;
                }
            }
        }
        return {};
    }

    const QStringList& folders_;
    const QString& name_;
    int size_;
    QStringList seen_;
};

} // namespace

IconTheme IconTheme::current() {
    QStringList names = {QIcon::themeName(), QIcon::fallbackThemeName()};
    names.removeAll(QString());
    return {names, QIcon::themeSearchPaths()};
}

QImage themeIcon(const IconTheme& theme, const QString& name, int size) {
    Search search(theme.folders, name, size);
    QImage image;
    for (const QString& themeName : theme.names + QStringList{QStringLiteral("hicolor")}) {
        image = image.isNull() ? search.in(themeName) : image;
    }
    return image;
}

} // namespace sonarin
