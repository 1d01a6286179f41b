// SPDX-License-Identifier: MIT
#pragma once

#include <QMenu>
#include <QPushButton>
#include <functional>

namespace sonarin {

/// A menu that pulls down from a button. Item 0 is the button's own title; the others are entries.
class PullDownButton : public QPushButton {
    Q_OBJECT

public:
    explicit PullDownButton(QWidget* parent = nullptr);

    [[nodiscard]] int numberOfItems() const;
    void removeItemAtIndex(int index);
    /// Adds an entry whose title is shown as it stands, on one line, cut in the middle where the screen ends.
    void addItemWithTitle(const QString& title, std::function<void()> action);
    /// The whole title of an entry.
    [[nodiscard]] QString itemTitleAtIndex(int index) const;
    void activateItemAtIndex(int index);

    /// Puts a line between the entries before and those to come.
    void addSeparator();

signals:
    /// The menu is about to be seen; entries may still be changed.
    void aboutToPullDown();

private:
    [[nodiscard]] QAction* entry(int index) const;
    void fillIn();

    QMenu menu_;
};

} // namespace sonarin
