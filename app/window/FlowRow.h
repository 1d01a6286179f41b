// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace sonarin {

/// Its children in a row, and in further rows where the room ends.
class FlowRow : public QWidget {
    Q_OBJECT
    /// The children of a row share the room that is left, up to a point.
    Q_PROPERTY(bool filled READ isFilled WRITE setFilled)

public:
    explicit FlowRow(QWidget* parent = nullptr);

    [[nodiscard]] bool isFilled() const { return isFilled_; }
    void setFilled(bool filled) { isFilled_ = filled; }

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    static constexpr int gap = 8;

    [[nodiscard]] QList<QWidgetList> rowsFor(int width) const;
    [[nodiscard]] QWidgetList shownChildren() const;
    void place();

    bool isFilled_ = false;
};

} // namespace sonarin
