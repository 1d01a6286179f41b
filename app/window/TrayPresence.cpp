// SPDX-License-Identifier: MIT
#include "app/window/TrayPresence.h"

#include "platform/desktop/fileIcon.h"

namespace sonarin {

TrayPresence::TrayPresence(AppController* controller) : icon_(programIcon()) {
    menu_.addAction(QStringLiteral("Show Sonarin"), controller, &AppController::showMainWindow);
    menu_.addAction(QStringLiteral("Quit"), controller, &AppController::terminate);
    icon_.setContextMenu(&menu_);
    icon_.setToolTip(QStringLiteral("Sonarin"));
    QObject::connect(&icon_, &QSystemTrayIcon::activated, controller,
                     [controller](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger) {
                             controller->showMainWindow();
                         }
                     });
    icon_.show();
}

} // namespace sonarin
