// SPDX-License-Identifier: MIT
#include "app/window/FlowRow.h"

#include <QEvent>
#include <QStyle>
#include <algorithm>

namespace sonarin {

namespace {

int heightOf(const QWidgetList& row) {
    int height = 0;
    for (const QWidget* child : row) {
        height = std::max(height, child->sizeHint().height());
    }
    return height;
}

int widthOf(const QWidgetList& row, int gap) {
    int width = -gap;
    for (const QWidget* child : row) {
        width += child->sizeHint().width() + gap;
    }
    return std::max(width, 0);
}

} // namespace

FlowRow::FlowRow(QWidget* parent) : QWidget(parent) {
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

QWidgetList FlowRow::shownChildren() const {
    QWidgetList shown = findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    shown.removeIf([](const QWidget* child) { return child->isHidden() || child->isWindow(); });
    return shown;
}

QList<QWidgetList> FlowRow::rowsFor(int width) const {
    QList<QWidgetList> rows;
    for (QWidget* child : shownChildren()) {
        if (rows.isEmpty() || widthOf(rows.last() + QWidgetList{child}, gap) > width) {
            rows.append(QWidgetList());
        }
        rows.last().append(child);
    }
    return rows;
}

int FlowRow::heightForWidth(int width) const {
    int height = -gap;
    for (const QWidgetList& row : rowsFor(width)) {
        height += heightOf(row) + gap;
    }
    return std::max(height, 0);
}

QSize FlowRow::sizeHint() const {
    const QWidgetList all = shownChildren();
    return {widthOf(all, gap), heightOf(all)};
}

QSize FlowRow::minimumSizeHint() const {
    QSize widest;
    for (const QWidget* child : shownChildren()) {
        widest = widest.expandedTo(child->minimumSizeHint());
    }
    return widest;
}

void FlowRow::place() {
    constexpr int mostExtra = 40; // pixels that a child gets beyond what it asks for
    int top = 0;
    for (const QWidgetList& row : rowsFor(width())) {
        const int left = width() - widthOf(row, gap);
        const int extra = isFilled_ ? std::clamp(left / static_cast<int>(row.size()), 0, mostExtra) : 0;
        int start = 0;
        for (QWidget* child : row) {
            const int wide = std::min(child->sizeHint().width() + extra, width());
            child->setGeometry(
                QStyle::visualRect(layoutDirection(), rect(), {start, top, wide, heightOf(row)}));
            start += wide + gap;
        }
        top += heightOf(row) + gap;
    }
}

void FlowRow::resizeEvent(QResizeEvent* /*event*/) {
    setMinimumHeight(heightForWidth(width())); // a layout would else take rows away
    place();
}

bool FlowRow::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::LayoutDirectionChange) {
        updateGeometry();
        place();
    }
    return QWidget::event(event);
}

} // namespace sonarin

#include "moc_FlowRow.cpp"
