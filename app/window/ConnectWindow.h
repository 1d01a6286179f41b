// SPDX-License-Identifier: MIT
#pragma once

#include "platform/host/connectors.h"

#include <QDialog>
#include <QLabel>
#include <QListWidget>

namespace sonarin {

/// The choice of the programs that Sonarin follows: a check adds the program's connector at once, and takes
/// it away.
class ConnectWindow : public QDialog {
    Q_OBJECT

public:
    explicit ConnectWindow(ConnectorFolders folders, QWidget* parent = nullptr);

    /// Looks again which programs there are.
    void refresh();

signals:
    void chosen(int row, bool isWanted);

private:
    void choose(int row, bool isWanted);

    ConnectorFolders folders_;
    std::vector<Connector> connectors_; ///< in the order of the list
    QListWidget* list_;
    QLabel* note_;
};

} // namespace sonarin
