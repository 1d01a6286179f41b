// SPDX-License-Identifier: MIT
#include "app/window/auxiliaryWindow.h"

#include <QKeySequence>
#include <QShortcut>

namespace sonarin {

void bringToFront(QWidget* window) {
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->show();
    window->raise();
    window->activateWindow();
}

void closeByKey(QWidget* window) {
    for (const QKeySequence& key : {QKeySequence(QKeySequence::Close), QKeySequence(Qt::Key_Escape)}) {
        QObject::connect(new QShortcut(key, window), &QShortcut::activated, window, &QWidget::close);
    }
}

} // namespace sonarin
