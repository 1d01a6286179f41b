// SPDX-License-Identifier: MIT
#include "app/window/ConnectWindow.h"

#include "ui_ConnectWindow.h"

#include <QSignalBlocker>
#include <QStringList>

namespace sonarin {

namespace {

QString title(const Connector& connector) {
    const QString name = QString::fromStdString(connector.name);
    switch (connector.state) {
    case Connector::State::lacksPackages: {
        QStringList packages;
        for (const std::string& package : connector.missing) {
            packages.append(QString::fromStdString(package));
        }
        return QStringLiteral("%1 (first needs %2)").arg(name, packages.join(QStringLiteral(", ")));
    }
    case Connector::State::connectedForAll:
        return QStringLiteral("%1 (for all users)").arg(name);
    default:
        return connector.isMenuOnly ? QStringLiteral("%1 (a menu entry: it cannot be followed)").arg(name)
                                    : name;
    }
}

bool isConnected(const Connector& connector) {
    return connector.state == Connector::State::connected ||
           connector.state == Connector::State::connectedForAll;
}

bool canBeChanged(const Connector& connector) {
    return connector.state == Connector::State::available || connector.state == Connector::State::connected;
}

} // namespace

ConnectWindow::ConnectWindow(ConnectorFolders folders, QWidget* parent)
    : QDialog(parent), folders_(std::move(folders)) {
    Ui::ConnectWindow interface;
    interface.setupUi(this);
    list_ = interface.connectorList;
    note_ = interface.connectNote;
    connect(list_, &QListWidget::itemChanged, this, [this](const QListWidgetItem* item) {
        emit chosen(list_->row(item), item->checkState() == Qt::Checked);
    });
    // Later, since the list is made anew and the item is still in use.
    connect(this, &ConnectWindow::chosen, this, &ConnectWindow::choose, Qt::QueuedConnection);
    refresh();
}

void ConnectWindow::refresh() {
    connectors_ = findConnectors(folders_);
    const QSignalBlocker quiet(list_);
    list_->clear();
    for (const Connector& connector : connectors_) {
        auto* item = new QListWidgetItem(title(connector), list_);
        item->setFlags(canBeChanged(connector)
                           ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable
                           : Qt::ItemIsSelectable);
        item->setCheckState(isConnected(connector) ? Qt::Checked : Qt::Unchecked);
    }
    list_->setCurrentRow(0);
    note_->setText(connectors_.empty()
                       ? QStringLiteral("No program is installed here that Sonarin could follow.")
                       : QString());
}

void ConnectWindow::choose(int row, bool isWanted) {
    const Connector connector = connectors_.at(static_cast<std::size_t>(row));
    const std::error_code failed =
        isWanted ? addConnector(folders_, connector.id) : removeConnector(folders_, connector.id);
    refresh();
    list_->setCurrentRow(row);
    const QString name = QString::fromStdString(connector.name);
    if (failed) {
        note_->setText(QStringLiteral("%1: %2").arg(name, QString::fromStdString(failed.message())));
        return;
    }
    const QString done =
        isWanted ? QStringLiteral("%1 is connected.") : QStringLiteral("%1 is no longer connected.");
    note_->setText(done.arg(name) + u' ' + QString::fromStdString(connector.restart));
}

} // namespace sonarin

#include "moc_ConnectWindow.cpp"
#include "moc_SourceList.cpp"
