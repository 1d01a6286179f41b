// SPDX-License-Identifier: MIT
#pragma once

#include "platform/desktop/sideWork.h"

#include <QAction>
#include <QList>

namespace sonarin {

/// Gives commands the icon that their property "iconName" names, where the user's theme has it. The theme is
/// read beside the window; until that is done there are none.
class MenuIcons : public QObject {
    Q_OBJECT

public:
    MenuIcons(const QList<QAction*>& commands, QWidget* window);

protected:
    /// Other colours need other icons.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void lookUp();

    QList<QAction*> commands_;
    QWidget* window_;
    SideWork sideWork_;
};

} // namespace sonarin
