// SPDX-License-Identifier: MIT
#pragma once

#include "platform/desktop/userDefaults.h"

#include <QByteArray>
#include <QMenu>

namespace sonarin {

/// The files opened last, in a menu and in the preferences (as `file:` URIs). The user can have none
/// remembered.
class RecentFiles : public QObject {
    Q_OBJECT

public:
    static constexpr qsizetype mostRemembered = 10;

    /// Fills the menu. `defaults` must outlive it.
    RecentFiles(QMenu* menu, UserDefaults* defaults, QObject* parent = nullptr);

    /// Puts the path at the head of the list.
    void add(const QByteArray& path);

signals:
    void chosen(const QByteArray& path);

private:
    [[nodiscard]] bool isRemembering() const;
    void store(const QStringList& uris);
    void fillIn();

    QMenu* menu_;
    UserDefaults* defaults_;
};

} // namespace sonarin
