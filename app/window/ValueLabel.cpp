// SPDX-License-Identifier: MIT
#include "app/window/ValueLabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QToolTip>

namespace sonarin {

namespace {

/// More than any screen shows; laying out megabytes would hold the window up.
constexpr qsizetype longestShown = 20000;

} // namespace

ValueLabel::ValueLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void ValueLabel::setValue(const QString& value) {
    qsizetype length = value.size();
    while (length > 0 && value[length - 1].isNull()) {
        --length; // a tag text in UTF-16 keeps its terminator
    }
    setText(length > longestShown ? value.left(longestShown) + u'…' : value.left(length));
}

void ValueLabel::setFixedToolTip(const QString& tip) {
    fixedToolTip_ = tip;
    setToolTip(plainToolTip(tip));
}

void ValueLabel::setTextScale(double scale) {
    QFont scaled = font();
    scaled.setPointSizeF(scaled.pointSizeF() / textScale_ * scale);
    scaled.setBold(scale > 1.2);
    textScale_ = scale;
    setFont(scaled);
}

void ValueLabel::setSecondary(bool secondary) {
    isSecondary_ = secondary;
    setForegroundRole(secondary ? QPalette::PlaceholderText : QPalette::WindowText);
}

QSize ValueLabel::sizeHint() const {
    constexpr int characters = 16;
    const QFontMetrics metrics = fontMetrics();
    return {metrics.averageCharWidth() * characters, metrics.height() + 2};
}

QSize ValueLabel::minimumSizeHint() const {
    return {fontMetrics().averageCharWidth() * 4, sizeHint().height()};
}

QString ValueLabel::oneLine() const {
    constexpr qsizetype widerThanAnyScreen = 4000;
    return withVisibleControls(text().left(widerThanAnyScreen));
}

bool ValueLabel::isCut() const {
    const QString line = oneLine();
    return line != text() || fontMetrics().horizontalAdvance(line) > contentsRect().width();
}

void ValueLabel::paintEvent(QPaintEvent* event) {
    // While something is selected the whole text is at work, not its cut copy.
    if (hasSelectedText() || !isCut()) {
        QLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    const QString line = oneLine();
    const QString shown = fontMetrics().elidedText(line, Qt::ElideRight, contentsRect().width());
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, foregroundRole()));
    const Qt::LayoutDirection direction = line.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight;
    painter.setLayoutDirection(direction);
    painter.drawText(contentsRect(), static_cast<int>(alignment()) | Qt::TextSingleLine, shown);
    if (hasFocus()) {
        QStyleOptionFocusRect focus;
        focus.initFrom(this);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
    }
}

bool ValueLabel::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || !fixedToolTip_.isEmpty()) {
        return QLabel::event(event);
    }
    const auto* help = static_cast<QHelpEvent*>(event); // NOLINT(*-static-cast-downcast): by its type
    QToolTip::showText(help->globalPos(), isCut() ? plainToolTip(text()) : QString(), this);
    return true;
}

QString plainToolTip(const QString& text) {
    constexpr qsizetype longest = 20000;
    const QString shown = text.size() > longest ? text.left(longest) + u'…' : text;
    // Marked up by ourselves, so that nothing in the text is taken for mark-up.
    return shown.isEmpty()
               ? QString()
               : QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(shown.toHtmlEscaped());
}

QString withVisibleControls(QString text) {
    for (QChar& character : text) {
        const char16_t unit = character.unicode();
        if (unit == u'\n' || unit == u'\r' || unit == 0x2028 || unit == 0x2029) {
            character = u'↵';
        } else if (unit == u'\t') {
            character = u'→';
        } else if (unit < 0x20 || (unit >= 0x7F && unit < 0xA0)) {
            character = QChar::ReplacementCharacter;
        }
    }
    return text;
}

} // namespace sonarin
