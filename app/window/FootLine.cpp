// SPDX-License-Identifier: MIT
#include "app/window/FootLine.h"

#include "app/window/ValueLabel.h"
#include "app/window/textColours.h"

#include <QAccessible>
#include <QEvent>
#include <chrono>

namespace sonarin {

namespace {

/// What is too long is cut in the middle, since the reason stands at the end, and a word may break where the
/// line ends.
QString asHtml(const QString& text) {
    constexpr qsizetype longest = 160;
    constexpr qsizetype longestWord = 24;
    const QString cut =
        text.size() > longest ? startOf(text, longest / 2) + u'…' + endOf(text, longest / 2) : text;
    QString html;
    qsizetype inWord = 0;
    for (const QChar character : withVisibleControls(cut)) {
        inWord = character.isSpace() ? 0 : inWord + 1;
        if (inWord > longestWord && !character.isLowSurrogate()) {
            html += QChar(0x200B); // zero width space
            inWord = 0;
        }
        html += QString(character).toHtmlEscaped();
    }
    return html;
}

} // namespace

FootLine::FootLine(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::RichText);
    setWordWrap(true);
    setTextInteractionFlags(Qt::LinksAccessibleByKeyboard | Qt::LinksAccessibleByMouse);
    setForegroundRole(QPalette::PlaceholderText);
    noticeTimer_.setSingleShot(true);
    noticeTimer_.setInterval(std::chrono::seconds(8));
    noticeTimer_.callOnTimeout(this, [this] {
        notice_.clear();
        showMostImportant();
    });
}

void FootLine::setFollowing(const QString& html) {
    following_ = html;
    showMostImportant();
}

void FootLine::setFile(const QString& text) {
    file_ = asHtml(text);
    showMostImportant();
}

void FootLine::say(const QString& text) {
    notice_ = asHtml(text);
    noticeTimer_.start();
    showMostImportant();
}

void FootLine::showMostImportant() {
    const QString& shown = !notice_.isEmpty() ? notice_ : !file_.isEmpty() ? file_ : following_;
    if (shown == text()) {
        return;
    }
    setText(shown);
    setFocusPolicy(shown.contains(QLatin1StringView("<a ")) ? Qt::StrongFocus : Qt::NoFocus);
    QAccessibleEvent changed(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&changed);
}

/// Whatever it says, the window stays as it is.
QSize FootLine::minimumSizeHint() const {
    return {0, fontMetrics().lineSpacing()};
}

void FootLine::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange) {
        setAlignment((layoutDirection() == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft) |
                     Qt::AlignAbsolute | Qt::AlignVCenter);
    }
    if (event->type() == QEvent::PaletteChange) {
        weakenText(*this);
    }
}

} // namespace sonarin

#include "moc_FootLine.cpp"
