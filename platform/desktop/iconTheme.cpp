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

/// Looks through one theme in one of the folders, and adds those that it inherits from to `themes`.
void search(const QString& folder, const QString& name, int size, Found* best, QStringList* themes) {
    const QString file = folder + QStringLiteral("/index.theme");
    if (!QFile::exists(file)) {
        return;
    }
    const QSettings index(file, QSettings::IniFormat);
    for (const QString& parent : listOf(index.value(QStringLiteral("Icon Theme/Inherits")))) {
        if (!themes->contains(parent.trimmed())) {
            themes->append(parent.trimmed());
        }
    }
    for (const QString& icons : listOf(index.value(QStringLiteral("Icon Theme/Directories")))) {
        const int apart = distance(index, icons, size);
        if (!best->file.isEmpty() && apart >= best->distance) {
            continue;
        }
        for (const char* suffix : {".svg", ".png"}) {
            const QString path = folder + u'/' + icons + u'/' + name + QLatin1StringView(suffix);
            if (QFile::exists(path)) {
                *best = {path, apart};
                break;
            }
        }
    }
}

QImage imageOf(const QString& file, int size) {
    QImageReader reader(file);
    if (file.endsWith(QLatin1StringView(".svg"))) {
        reader.setScaledSize({size, size});
    }
    return reader.read();
}

} // namespace

IconTheme IconTheme::current() {
    QStringList names = {QIcon::themeName(), QIcon::fallbackThemeName()};
    names.removeAll(QString());
    return {names, QIcon::themeSearchPaths()};
}

QImage themeIcon(const IconTheme& theme, const QString& name, int size) {
    constexpr qsizetype mostThemes = 20; // one may inherit from many, which an index says
    QStringList themes = theme.names;
    const QString last = QStringLiteral("hicolor");
    for (qsizetype i = 0; i < std::min(themes.size(), mostThemes); ++i) {
        Found best;
        for (const QString& folder : theme.folders) {
            search(folder + u'/' + themes.at(i), name, size, &best, &themes);
        }
        QImage image = best.file.isEmpty() ? QImage() : imageOf(best.file, size);
        if (!image.isNull()) {
            return image;
        }
        if (i + 1 == themes.size() && !themes.contains(last)) {
            themes.append(last);
        }
    }
    return {};
}

} // namespace sonarin
