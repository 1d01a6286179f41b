// SPDX-License-Identifier: MIT
#include "app/window/PullDownButton.h"

#include "app/window/ValueLabel.h"

#include <QEvent>
#include <QScreen>
#include <algorithm>
#include <utility>

namespace sonarin {

namespace {

/// Values that are longer than any screen is wide are cut, or joining them would hold the window up.
constexpr qsizetype longestValue = 10000;

/// As a menu shows it, but for the mark of a shortcut.
QString asOneLine(const QString& title) {
    constexpr qsizetype mostUnits = 2000; // wider than any screen
    return withVisibleControls(title.size() > mostUnits
                                   ? startOf(title, mostUnits / 2) + u'…' + endOf(title, mostUnits / 2)
                                   : title);
}

} // namespace

PullDownButton::PullDownButton(QWidget* parent) : QPushButton(parent), menu_(this) {
    setMenu(&menu_);
    connect(&menu_, &QMenu::aboutToShow, this, [this] {
        emit aboutToPullDown();
        fillIn();
    });
}

/// A key opens a menu to choose with keys.
bool PullDownButton::event(QEvent* event) {
    const bool isKey = event->type() == QEvent::Shortcut || event->type() == QEvent::KeyPress;
    isForKeyboard_ = isForKeyboard_ || isKey;
    const bool isTaken = QPushButton::event(event);
    isForKeyboard_ = isForKeyboard_ && !isKey;
    return isTaken;
}

void PullDownButton::pullDown() {
    isForKeyboard_ = true;
    showMenu();
    isForKeyboard_ = false;
}

int PullDownButton::numberOfItems() const {
    return 1 + static_cast<int>(menu_.actions().size()) - (note_ != nullptr ? 1 : 0);
}

QAction* PullDownButton::entry(int index) const {
    return menu_.actions().value(index - 1);
}

void PullDownButton::removeItemAtIndex(int index) {
    menu_.close(); // what is chosen from it must be what was read there
    titles_.erase(entry(index));
    delete entry(index);
}

void PullDownButton::addItemWithTitle(Title title, std::function<void()> action) {
    removeNote();
    QAction* added = menu_.addAction(QString());
    titles_[added] = std::move(title);
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
    const auto found = titles_.find(entry(index));
    return index == 0 ? text() : found == titles_.end() ? QString() : found->second(longestValue);
}

void PullDownButton::activateItemAtIndex(int index) {
    entry(index)->trigger();
}

QString PullDownButton::fitting(const Title& title, int room) const {
    const auto fits = [this, room](const QString& shown) {
        return menu_.fontMetrics().horizontalAdvance(shown) <= room;
    };
    const QString whole = title(longestValue);
    if (fits(asOneLine(whole))) {
        return asOneLine(whole);
    }
    qsizetype fitting = 1;
    for (qsizetype tooLong = std::min(whole.size(), longestValue); tooLong - fitting > 1;) {
        const qsizetype middle = (fitting + tooLong) / 2;
        (fits(asOneLine(title(middle))) ? fitting : tooLong) = middle;
    }
    return menu_.fontMetrics().elidedText(asOneLine(title(fitting)), Qt::ElideMiddle, room);
}

/// Titles are laid out when somebody wants to see them, for the screen that they are to be seen on.
void PullDownButton::fillIn() {
    if (menu_.isEmpty() && !emptyNote_.isEmpty()) {
        note_ = menu_.addAction(emptyNote_);
        note_->setEnabled(false);
    }
    constexpr int besideText = 80; // what a style may put beside it
    const int room = screen()->availableGeometry().width() - besideText;
    bool isAnyCut = false;
    for (auto& [action, title] : titles_) {
        QString shown = fitting(title, room);
        const QString whole = title(longestValue);
        const bool isCut = shown != withVisibleControls(whole);
        isAnyCut = isAnyCut || isCut;
        action->setToolTip(isCut ? plainToolTip(whole) : QString());
        action->setText(shown.replace(u'&', QStringLiteral("&&")));
    }
    menu_.setToolTipsVisible(isAnyCut);
    if (std::exchange(isForKeyboard_, false)) {
        QMetaObject::invokeMethod(this, "chooseFirst", Qt::QueuedConnection); // when it is seen
    }
}

void PullDownButton::chooseFirst() {
    menu_.setActiveAction(menu_.actions().value(0));
}

} // namespace sonarin

#include "moc_PullDownButton.cpp"
