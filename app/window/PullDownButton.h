// SPDX-License-Identifier: MIT
#pragma once

#include <QMenu>
#include <QPushButton>
#include <functional>
#include <map>

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
    /// The title of an entry, made of values that are cut to so many units.
    using Title = std::function<QString(qsizetype units)>;
    /// Adds an entry whose title is shown on one line: the longest that the screen has room for. A tool tip
    /// tells it whole where it is cut.
    void addItemWithTitle(Title title, std::function<void()> action);
    void addItemWithTitle(const QString& title, std::function<void()> action) {
        addItemWithTitle([title](qsizetype) { return title; }, std::move(action));
    }
    /// The title of an entry, far longer than any screen shows it.
    [[nodiscard]] QString itemTitleAtIndex(int index) const;
    void activateItemAtIndex(int index);

    /// Puts a line between the entries before and those to come.
    void addSeparator();

public slots:
    /// Opens the menu for the keyboard: with its first entry chosen.
    void pullDown();

signals:
    /// The menu is about to be seen; entries may still be changed.
    void aboutToPullDown();

private slots:
    void chooseFirst();

protected:
    bool event(QEvent* event) override;

private:
    [[nodiscard]] QAction* entry(int index) const;
    [[nodiscard]] QString fitting(const Title& title, int room) const;
    void fillIn();
    void removeNote();

    bool isForKeyboard_ = false; ///< before what sends events
    QMenu menu_;
    QString emptyNote_;
    std::map<QAction*, Title> titles_;
    QAction* note_ = nullptr; ///< while the menu has no entries and was looked at
};

} // namespace sonarin
