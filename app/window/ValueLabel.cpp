// SPDX-License-Identifier: MIT
#include "app/window/ValueLabel.h"

#include "app/window/textColours.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QPainter>
#include <QTextLayout>
#include <QToolTip>
#include <algorithm>

namespace sonarin {

namespace {

/// More than any screen shows; laying out megabytes would hold the window up.
constexpr qsizetype longestShown = 20000;

/// More than any screen shows of one value.
constexpr qsizetype longestLaidOut = 4000;

/// Around the text, for the ring that shows the keyboard.
constexpr QMargins ringRoom(3, 1, 3, 1);

} // namespace

ValueLabel::ValueLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setFocusPolicy(Qt::NoFocus);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    setContentsMargins(ringRoom);
    stayBesideCaption();
}

void ValueLabel::setValue(const QString& value) {
    qsizetype length = value.size();
    while (length > 0 && value[length - 1].isNull()) {
        --length; // a tag text in UTF-16 keeps its terminator
    }
    const QString kept = length > longestShown ? startOf(value, longestShown) + u'…' : value.left(length);
    const QString before = text();
    if (kept == before) {
        return;
    }
    const QMargins room = ringRoom;
    const bool startsBlank = isLeadingBlankHidden_ && kept.startsWith(u' ');
    const int blank = startsBlank ? fontMetrics().horizontalAdvance(u' ') : 0;
    setContentsMargins(room.left() - blank, room.top(), room.right(), room.bottom());
    setText(kept);
    setFocusPolicy(kept.isEmpty() ? Qt::NoFocus : Qt::StrongFocus);
    linesKnown_ = {};
    emit valueChanged();
    if (QAccessible::isActive()) {
        QAccessibleTextUpdateEvent changed(this, 0, before, kept);
        QAccessible::updateAccessibility(&changed);
    }
}

void ValueLabel::setFixedToolTip(const QString& tip) {
    fixedToolTip_ = tip;
    setToolTip(plainToolTip(tip));
}

void ValueLabel::setTextScale(double scale) {
    QFont scaled = font();
    if (scaled.pointSizeF() > 0) {
        scaled.setPointSizeF(scaled.pointSizeF() / textScale_ * scale);
    } else {
        scaled.setPixelSize(qRound(scaled.pixelSize() / textScale_ * scale));
    }
    scaled.setBold(scale > 1.2);
    textScale_ = scale;
    setFont(scaled);
}

void ValueLabel::setSecondary(bool secondary) {
    isSecondary_ = secondary;
    setForegroundRole(secondary ? QPalette::PlaceholderText : QPalette::WindowText);
    weakenText(*this);
}

void ValueLabel::setMostLines(int most) {
    mostLines_ = most;
    setWordWrap(most > 1);
    stayBesideCaption();
}

/// A text that is written from the right stands beside its caption all the same.
void ValueLabel::stayBesideCaption() {
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    setAlignment((isMirrored ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute |
                 (mostLines_ > 1 ? Qt::AlignTop : Qt::AlignVCenter));
}

void ValueLabel::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && isSecondary_) {
        weakenText(*this);
    } else if (event->type() == QEvent::FontChange) {
        linesKnown_ = {};
    } else if (event->type() == QEvent::LayoutDirectionChange) {
        stayBesideCaption();
    }
}

int ValueLabel::heightOfLines(int lines) const {
    return fontMetrics().lineSpacing() * lines + ringRoom.top() + ringRoom.bottom();
}

int ValueLabel::linesWithin(int height) const {
    const int lines = (height - ringRoom.top() - ringRoom.bottom()) / fontMetrics().lineSpacing();
    return std::clamp(lines, 1, mostLines_);
}

/// Where a text may wrap, its own line ends count.
QString ValueLabel::shownText() const {
    const QString start = startOf(text(), longestLaidOut);
    if (mostLines_ == 1) {
        return withVisibleControls(start);
    }
    QStringList lines =
        QString(start).replace(QLatin1StringView("\r\n"), QLatin1StringView("\n")).split(u'\n');
    for (QString& line : lines) {
        line = withVisibleControls(line);
    }
    return lines.join(QChar::LineSeparator);
}

ValueLabel::Lines ValueLabel::linesFor(const QSize& room, int most) const {
    constexpr int narrowest = 3; // pixels of a character on average, at the least
    constexpr int spare = 50;
    const QString all = shownText();
    const QString whole = startOf(all, qsizetype{most} * (room.width() / narrowest + spare));
    Lines lines;
    lines.isCut = text().size() > longestLaidOut || whole.size() < all.size();
    if (most == 1) {
        const QString line = QString(whole).replace(QChar::LineSeparator, u'↵');
        lines.isCut = lines.isCut || fontMetrics().horizontalAdvance(line) > room.width();
        lines.shown = {fontMetrics().elidedText(line, Qt::ElideRight, room.width())};
        return lines;
    }
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    QTextLayout layout(whole, font());
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(room.width());
        const QString rest = whole.mid(line.textStart());
        if (lines.shown.size() == most - 1 && line.textLength() < rest.size()) {
            const QString last = QString(rest).replace(QChar::LineSeparator, u'↵');
            lines.shown.append(fontMetrics().elidedText(last, Qt::ElideRight, room.width()));
            lines.isCut = true;
            break;
        }
        lines.shown.append(rest.left(line.textLength()).remove(QChar::LineSeparator));
    }
    layout.endLayout();
    return lines;
}

int ValueLabel::linesAt(int width) const {
    if (mostLines_ == 1) {
        return 1;
    }
    if (linesKnown_.lines == 0 || linesKnown_.width != width) {
        const QMargins margins = contentsMargins();
        const Lines lines = linesFor({width - margins.left() - margins.right(), 0}, mostLines_);
        linesKnown_ = {width, static_cast<int>(lines.shown.size())};
    }
    return linesKnown_.lines;
}

bool ValueLabel::isCut() const {
    return linesFor(contentsRect().size(), linesWithin(height())).isCut;
}

void ValueLabel::paintEvent(QPaintEvent* event) {
    if (text().isEmpty()) {
        return;
    }
    const int most = linesWithin(height());
    const Lines lines = linesFor(contentsRect().size(), most);
    const bool isAsItStands = mostLines_ == 1 && !lines.isCut && lines.shown.constFirst() == text();
    QPainter painter(this);
    // While something is selected the whole text is at work, not its cut copy.
    if (hasSelectedText() || isAsItStands) {
        painter.end();
        QLabel::paintEvent(event);
        painter.begin(this);
    } else {
        painter.setPen(
            palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, foregroundRole()));
        QRect place = contentsRect();
        if (mostLines_ > 1) {
            place.setHeight(fontMetrics().lineSpacing());
        }
        for (const QString& line : lines.shown) {
            painter.setLayoutDirection(line.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
            painter.drawText(place, static_cast<int>(alignment()) | Qt::TextSingleLine, line);
            place.translate(0, fontMetrics().lineSpacing());
        }
    }
    if (hasFocus()) {
        drawFocusRing(painter, *this);
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

QString startOf(const QString& text, qsizetype most) {
    const qsizetype size = std::min(text.size(), most);
    return text.left(size > 0 && text[size - 1].isHighSurrogate() ? size - 1 : size);
}

QString endOf(const QString& text, qsizetype most) {
    const qsizetype size = std::min(text.size(), most);
    return text.right(size > 0 && text[text.size() - size].isLowSurrogate() ? size - 1 : size);
}

QString plainToolTip(const QString& text) {
    constexpr qsizetype longest = 20000;
    const QString shown = text.size() > longest ? startOf(text, longest) + u'…' : text;
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

#include "moc_ValueLabel.cpp"
