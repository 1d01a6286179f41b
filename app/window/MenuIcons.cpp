// SPDX-License-Identifier: MIT
#include "app/window/MenuIcons.h"

#include "platform/desktop/iconTheme.h"

#include <QEvent>
#include <QPainter>
#include <QPixmap>
#include <QStyle>
#include <QWidget>
#include <memory>

namespace sonarin {

namespace {

/// A symbolic icon is a shape, to be filled with the colour of the text beside it.
QImage inColour(QImage shape, const QColor& colour) {
    shape = shape.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&shape);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(shape.rect(), colour);
    return shape;
}

QImage iconNamed(const IconTheme& theme, const QString& name, int size, const QColor& colour) {
    QImage icon = themeIcon(theme, name, size);
    if (!icon.isNull()) {
        return icon;
    }
    const QImage shape = themeIcon(theme, name + QStringLiteral("-symbolic"), size);
    return shape.isNull() ? shape : inColour(shape, colour);
}

} // namespace

MenuIcons::MenuIcons(const QList<QAction*>& commands, QWidget* window) : QObject(window), window_(window) {
    for (QAction* command : commands) {
        if (command->property("iconName").isValid()) {
            commands_.append(command);
        }
    }
    window->installEventFilter(this);
}

bool MenuIcons::eventFilter(QObject* watched, QEvent* event) {
    const bool isFirst =
        event->type() == QEvent::Show && !commands_.isEmpty() && commands_.first()->icon().isNull();
    if (isFirst || event->type() == QEvent::PaletteChange) {
        lookUp();
    }
    return QObject::eventFilter(watched, event);
}

void MenuIcons::lookUp() {
    struct Icons {
        QStringList names;
        QList<QImage> images;
    };
    const auto icons = std::make_shared<Icons>();
    for (const QAction* command : commands_) {
        icons->names.append(command->property("iconName").toString());
    }
    const IconTheme theme = IconTheme::current();
    const double scale = window_->devicePixelRatioF();
    const int size = static_cast<int>(window_->style()->pixelMetric(QStyle::PM_SmallIconSize) * scale);
    const auto work = [icons, theme, size,
                       colour = window_->palette().color(QPalette::Active, QPalette::WindowText)] {
        for (const QString& name : icons->names) {
            icons->images.append(iconNamed(theme, name, size, colour));
        }
    };
    const auto done = [this, icons, scale] {
        for (qsizetype i = 0; i < icons->images.size(); ++i) {
            QPixmap image = QPixmap::fromImage(icons->images[i]);
            image.setDevicePixelRatio(scale);
            commands_[i]->setIcon(image.isNull() ? QIcon() : QIcon(image));
        }
    };
    sideWork_.start(theme.folders.value(0).toStdString(), work, done);
}

} // namespace sonarin

#include "moc_MenuIcons.cpp"
