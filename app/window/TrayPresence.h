// SPDX-License-Identifier: MIT
#pragma once

#include "app/window/AppController.h"

#include <QMenu>
#include <QSystemTrayIcon>

namespace sonarin {

/// The icon in the desktop's tray, where there is one: it brings the closed window back.
class TrayPresence {
public:
    explicit TrayPresence(AppController* controller);

    [[nodiscard]] bool isThere() const {
        return QSystemTrayIcon::isSystemTrayAvailable() && icon_.isVisible();
    }

private:
    QMenu menu_;
    QSystemTrayIcon icon_;
};

} // namespace sonarin
