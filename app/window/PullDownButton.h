// SPDX-License-Identifier: MIT
#pragma once

#include <QMenu>
#include <QPushButton>
#include <functional>

namespace sonarin {

/// A menu that pulls down from a button. Item 0 is the button's own title; the others are entries.
class PullDownButton : public QPushButton {
    Q_OBJECT
    /// What a menu without entries says instead, greyed; it is none of the items.
    Q_PROPERTY(QString emptyNote READ emptyNote WRITE setEmptyNote)

public:
    explicit PullDownButton(QWidget* parent = nullptr);

    [[nodiscard]] QString emptyNote() const { return emptyNote_; }
    void setEmptyNote(const QString& note) { emptyNote_ = note; }

    [[nodiscard]] int numberOfItems() const;
    void removeItemAtIndex(int index);
    /// Adds an entry whose title is shown as it stands but for U+0000, on one line, cut in the middle where
    /// the screen ends.
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
    void removeNote();

    QMenu menu_;
    QString emptyNote_;
    QAction* note_ = nullptr; ///< while the menu has no entries and was looked at
};

} // namespace sonarin
