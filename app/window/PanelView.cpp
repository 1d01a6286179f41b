// SPDX-License-Identifier: MIT
#include "app/window/PanelView.h"

#include "app/panelTexts.h"
#include "app/window/PictureView.h"
#include "app/window/ValueLabel.h"
#include "app/window/textColours.h"

#include <QEvent>
#include <QLabel>
#include <QStyle>
#include <algorithm>
#include <utility>

namespace sonarin {

namespace {

constexpr qsizetype songNames = 3; ///< the names before these of the file
constexpr int leastPicture = 64;
constexpr int mostCommentLines = 4; ///< before the picture may grow

QString asString(std::string_view ascii) {
    return QLatin1StringView(ascii.data(), static_cast<qsizetype>(ascii.size()));
}

} // namespace

PanelView::PanelView(QWidget* parent) : QWidget(parent) {
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void PanelView::adopt() {
    picture_ = findChild<PictureView*>(QString(), Qt::FindDirectChildrenOnly);
    for (const PanelFact& fact : panelFacts()) {
        ValueLabel* value = valueOf(fact);
        if (fact.hasCaption) {
            facts_.append(value);
            captions_.append(captionOf(value, asString(fact.label)));
        }
    }
    for (ValueLabel* value : findChildren<ValueLabel*>(QString(), Qt::FindDirectChildrenOnly)) {
        connect(value, &ValueLabel::valueChanged, this, &PanelView::placeSoon);
        if (!facts_.contains(value)) {
            names_.append(value);
        }
    }
    connect(picture_, &PictureView::imageChanged, this, &PanelView::placeSoon);
    putInOrder();
    dimCaptions();
}

/// For who goes through them by the keyboard, or from one to the next with a screen reader. The toolkit moves
/// only what takes the focus, as a value does while it has a text.
void PanelView::putInOrder() {
    ValueLabel* before = names_.last();
    for (ValueLabel* value : facts_) {
        value->raise();
        before->setFocusPolicy(Qt::StrongFocus);
        value->setFocusPolicy(Qt::StrongFocus);
        setTabOrder(before, value);
        before->setFocusPolicy(Qt::NoFocus);
        before = value;
    }
    before->setFocusPolicy(Qt::NoFocus);
    for (QLabel* caption : captions_) {
        caption->raise();
    }
}

ValueLabel* PanelView::valueOf(const PanelFact& fact) {
    const QString name = asString(fact.name);
    auto* value = findChild<ValueLabel*>(name, Qt::FindDirectChildrenOnly);
    if (value == nullptr) {
        value = new ValueLabel(this);
        value->setObjectName(name);
    }
    if (value->accessibleName().isEmpty()) {
        value->setAccessibleName(asString(fact.label));
    }
    return value;
}

QLabel* PanelView::captionOf(ValueLabel* value, const QString& label) {
    auto* caption = new QLabel(label, this);
    caption->setObjectName(value->objectName() + QStringLiteral("Label"));
    caption->setTextFormat(Qt::PlainText);
    caption->setBuddy(value);
    return caption;
}

bool PanelView::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::FontChange:
    case QEvent::PaletteChange:
    case QEvent::LayoutDirectionChange:
    case QEvent::StyleChange:
        updateGeometry();
        placeAgain();
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

void PanelView::resizeEvent(QResizeEvent* /*event*/) {
    placeAgain();
}

/// A caption without a value is of no use at the moment.
void PanelView::dimCaptions() {
    QPalette dimmed = palette();
    dimmed.setColor(QPalette::WindowText, weakText(palette(), faint));
    for (qsizetype i = 0; i < facts_.size(); ++i) {
        captions_[i]->setPalette(facts_[i]->text().isEmpty() ? dimmed : palette());
    }
}

// --- sizes ------------------------------------------------------------------------------------------------

QSize PanelView::sizeHint() const {
    return {620, leastHeight(620, airy)};
}

QSize PanelView::minimumSizeHint() const {
    return {captionWidth() + captionGap + 8 * fontMetrics().averageCharWidth() + 2 * tight.margin,
            leastPicture + 2 * tight.margin};
}

int PanelView::heightForWidth(int width) const {
    return leastHeight(width, tight);
}

int PanelView::captionWidth() const {
    int width = 0;
    for (const QLabel* caption : captions_) {
        width = std::max(width, caption->sizeHint().width());
    }
    return width;
}

bool PanelView::isNarrow(int width) const {
    constexpr int leastCharacters = 12; // that a value has in each of two columns
    return width < 2 * (captionWidth() + captionGap + leastCharacters * fontMetrics().averageCharWidth()) +
                       columnGap + 2 * tight.margin;
}

bool PanelView::isWide(const QSize& size) const {
    constexpr int leastCharacters = 75;
    return size.width() >
               captionWidth() + leastCharacters * fontMetrics().averageCharWidth() + size.height() / 2 &&
           size.height() >=
               2 * airy.margin + airy.gap + factsHeight(1, airy) + namesHeight(size.width(), airy, 1);
}

int PanelView::namesHeight(int width, const Spacing& spacing, int most) const {
    int height = 0;
    for (const ValueLabel* name : names_) {
        height += name->heightOfLines(most == 1 ? 1 : std::min(most, name->linesAt(width)));
    }
    return height + static_cast<int>(names_.size() - 1) * spacing.line / 2 + spacing.gap / 2;
}

int PanelView::factsHeight(int columns, const Spacing& spacing) const {
    if (facts_.isEmpty()) {
        return 0;
    }
    const auto inColumns = static_cast<int>(facts_.size()) - 1;
    const int rows = (inColumns + columns - 1) / columns + 1;
    return rows * facts_.last()->heightOfLines(1) + (rows - 1) * spacing.line;
}

int PanelView::leastHeight(int width, const Spacing& spacing) const {
    const int around = 2 * spacing.margin;
    if (isNarrow(width)) {
        return around + leastPicture + 2 * spacing.gap + namesHeight(width, spacing, 1) +
               factsHeight(1, spacing);
    }
    return around + namesHeight(width, spacing, 1) + spacing.gap + factsHeight(2, spacing);
}

// --- places -----------------------------------------------------------------------------------------------

/// Once for all values of a file.
void PanelView::placeSoon() {
    if (!std::exchange(isPlaceDue_, true)) {
        QMetaObject::invokeMethod(this, "placeAgain", Qt::QueuedConnection);
    }
}

void PanelView::placeAgain() {
    isPlaceDue_ = false;
    if (picture_ == nullptr) {
        return;
    }
    dimCaptions();
    const Spacing& spacing = height() < leastHeight(width(), airy) ? tight : airy;
    const QRect room =
        rect().marginsRemoved({spacing.margin, spacing.margin, spacing.margin, spacing.margin});
    if (isNarrow(width())) {
        placeNarrow(room, spacing);
    } else if (isWide(size())) {
        placeWide(room, spacing);
    } else {
        placeCompact(room, spacing);
    }
}

void PanelView::placeNarrow(const QRect& room, const Spacing& spacing) {
    const int names = namesHeight(room.width(), spacing, 2);
    const int facts = factsHeight(1, spacing);
    const int rest = room.height() - namesHeight(room.width(), spacing, 1) - facts - 2 * spacing.gap;
    const QSize most(room.width(),
                     std::max(leastPicture, rest - (names - namesHeight(room.width(), spacing, 1))));
    const QSize picture = picture_->sizeWithin(most);
    place(picture_, {room.left() + (room.width() - picture.width()) / 2, room.top(), picture.width(),
                     picture.height()});
    QRect below = room;
    below.setTop(room.top() + picture.height() + spacing.gap);
    QRect forNames = below;
    forNames.setHeight(below.height() - facts - spacing.gap);
    below.setTop(placeNames(forNames, spacing, false) + spacing.gap);
    placeFacts(below, 1, spacing);
}

void PanelView::placeCompact(const QRect& room, const Spacing& spacing) {
    constexpr double mostShare = 0.5; // of the width
    const int least = namesHeight(room.width(), spacing, 1);
    const int comment = facts_.last()->linesAt(room.width() - captionWidth() - captionGap);
    const int forComment =
        facts_.last()->heightOfLines(std::min(comment, mostCommentLines)) - facts_.last()->heightOfLines(1);
    const int facts = factsHeight(2, spacing);
    const int rest = room.height() - facts - spacing.gap;
    const int head = std::max(least, rest - forComment);
    const QSize picture =
        picture_->sizeWithin({std::min(head, static_cast<int>(room.width() * mostShare)), head});
    QRect forNames = room;
    forNames.setLeft(room.left() + picture.width() + spacing.gap);
    forNames.setHeight(
        std::min(head, std::max({picture.height(), least, namesHeight(forNames.width(), spacing, 3)})));
    place(picture_,
          {room.left(), room.top(), picture.width(), std::min(picture.height(), forNames.height())});
    placeNames(forNames, spacing, true);
    QRect below = room;
    below.setTop(forNames.bottom() + 1 + spacing.gap);
    placeFacts(below, 2, spacing);
}

void PanelView::placeWide(const QRect& room, const Spacing& spacing) {
    const int texts = captionWidth() + 50 * fontMetrics().averageCharWidth();
    const QSize picture = picture_->sizeWithin({room.width() - texts - spacing.gap * 2, room.height()});
    place(picture_, {room.left(), room.top(), picture.width(), picture.height()});
    QRect beside = room;
    beside.setLeft(room.left() + picture.width() + spacing.gap * 2);
    QRect forNames = beside;
    forNames.setHeight(beside.height() - factsHeight(1, spacing) - spacing.gap);
    beside.setTop(placeNames(forNames, spacing, false) + spacing.gap);
    placeFacts(beside, 1, spacing);
}

/// Answers where they end. The title may take what the others leave.
int PanelView::placeNames(const QRect& room, const Spacing& spacing, bool isAtBottom) {
    int others = spacing.gap / 2;
    for (const ValueLabel* name : names_.mid(1)) {
        others += name->heightOfLines(1) + spacing.line / 2;
    }
    ValueLabel* title = names_.first();
    int lines = title->linesAt(room.width());
    while (lines > 1 && title->heightOfLines(lines) + others > room.height()) {
        --lines;
    }
    int top = room.top();
    for (qsizetype i = 0; i < names_.size(); ++i) {
        if (i == songNames) {
            const int rest = room.bottom() + 1 - top - 2 * names_[i]->heightOfLines(1) - spacing.line / 2;
            top += isAtBottom ? std::max(rest, 0) : spacing.gap / 2;
        }
        const int height = names_[i]->heightOfLines(i == 0 ? lines : 1);
        place(names_[i], {room.left(), top, room.width(), height});
        top += height + spacing.line / 2;
    }
    return top;
}

/// The comment takes the lines that are left.
void PanelView::placeFacts(const QRect& room, int columns, const Spacing& spacing) {
    const auto inColumns = facts_.size() - 1;
    const auto rows = (inColumns + columns - 1) / columns;
    const int height = facts_.last()->heightOfLines(1);
    const int forRates = captionWidth() + captionGap + 22 * fontMetrics().averageCharWidth();
    const int both = room.width() - columnGap; // the second column has the longer texts
    const int left = std::clamp(forRates, both * 9 / 20, both / 2);
    for (qsizetype i = 0; i < inColumns; ++i) {
        QRect line(room.left(), room.top() + static_cast<int>(i % rows) * (height + spacing.line),
                   room.width(), height);
        if (columns == 2 && i < rows) {
            line.setWidth(left);
        } else if (columns == 2) {
            line.setLeft(room.left() + left + columnGap);
        }
        placeFact(i, line);
    }
    QRect rest = room;
    rest.setTop(room.top() + static_cast<int>(rows) * (height + spacing.line));
    const int lines = facts_.last()->linesAt(rest.width() - captionWidth() - captionGap);
    rest.setHeight(std::clamp(facts_.last()->heightOfLines(lines), height, std::max(height, rest.height())));
    placeFact(inColumns, rest);
}

void PanelView::placeFact(qsizetype index, const QRect& room) {
    const int width = captionWidth();
    QLabel* caption = captions_[index];
    caption->setAlignment(Qt::AlignRight | Qt::AlignTop);
    caption->setContentsMargins(0, 1, 0, 0); // as the value has
    place(caption, {room.left(), room.top(), width, room.height()});
    place(facts_[index], room.adjusted(width + captionGap, 0, 0, 0));
}

/// Places are thought of from left to right.
void PanelView::place(QWidget* child, const QRect& rect) {
    child->setGeometry(QStyle::visualRect(layoutDirection(), this->rect(), rect));
}

} // namespace sonarin

#include "moc_PanelView.cpp"
