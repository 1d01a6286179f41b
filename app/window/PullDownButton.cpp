// SPDX-License-Identifier: MIT
#include "app/window/PullDownButton.h"

#include "app/window/ValueLabel.h"

#include <QScreen>

namespace sonarin {

PullDownButton::PullDownButton(QWidget* parent) : QPushButton(parent), menu_(this) {
    setMenu(&menu_);
    connect(&menu_, &QMenu::aboutToShow, this, [this] {
        emit aboutToPullDown();
        fillIn();
    });
}

int PullDownButton::numberOfItems() const {
    return 1 + static_cast<int>(menu_.actions().size()) - (note_ != nullptr ? 1 : 0);
}

QAction* PullDownButton::entry(int index) const {
    return menu_.actions().value(index - 1);
}

void PullDownButton::removeItemAtIndex(int index) {
    menu_.close(); // what is chosen from it must be what was read there
    delete entry(index);
}

void PullDownButton::addItemWithTitle(const QString& title, std::function<void()> action) {
    removeNote();
    QAction* added = menu_.addAction(QString());
    added->setData(title);
    connect(added, &QAction::triggered, this, [action = std::move(action)] { action(); });
}

void PullDownButton::removeNote() {
    delete note_;
    note_ = nullptr;
}

void PullDownButton::addSeparator() {
    menu_.addSeparator();
}

QString PullDownButton::itemTitleAtIndex(int index) const {
    return index == 0 ? text() : entry(index)->data().toString();
}

void PullDownButton::activateItemAtIndex(int index) {
    entry(index)->trigger();
}

/// Titles are laid out when somebody wants to see them, for the screen that they are to be seen on.
void PullDownButton::fillIn() {
    const int room = screen()->availableGeometry().width() * 2 / 3;
    constexpr qsizetype mostUnits = 2000; // wider than any screen
    if (menu_.isEmpty() && !emptyNote_.isEmpty()) {
        note_ = menu_.addAction(QString());
        note_->setData(emptyNote_);
        note_->setEnabled(false);
    }
    for (QAction* action : menu_.actions()) {
        QString title = action->data().toString().remove(QChar::Null);
        if (title.size() > mostUnits) {
            title = title.left(mostUnits / 2) + u'…' + title.right(mostUnits / 2);
        }
        title = menu_.fontMetrics().elidedText(withVisibleControls(title), Qt::ElideMiddle, room);
        action->setText(title.replace(u'&', QStringLiteral("&&")));
    }
}

} // namespace sonarin
