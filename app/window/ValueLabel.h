// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

namespace sonarin {

/// One line of text from a file: shown as plain text whatever it holds, selectable, cut with an ellipsis
/// where the room ends, whole in its tool tip. It asks for the same room for every text, so that none changes
/// the window.
class ValueLabel : public QLabel {
    Q_OBJECT
    /// How large the text is in comparison to the form's other texts.
    Q_PROPERTY(double textScale READ textScale WRITE setTextScale)
    /// A text that matters less is shown in the theme's weaker colour.
    Q_PROPERTY(bool secondary READ isSecondary WRITE setSecondary)

public:
    explicit ValueLabel(QWidget* parent = nullptr);

    /// Shows the text. A tool tip set before takes precedence over that of the whole text until it is set
    /// anew.
    void setValue(const QString& value);
    /// A tool tip of plain text that stays the same whether or not the text is cut.
    void setFixedToolTip(const QString& tip);

    [[nodiscard]] double textScale() const { return textScale_; }
    void setTextScale(double scale);
    [[nodiscard]] bool isSecondary() const { return isSecondary_; }
    void setSecondary(bool secondary);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    [[nodiscard]] QString oneLine() const;
    [[nodiscard]] bool isCut() const;

    double textScale_ = 1;
    bool isSecondary_ = false;
    QString fixedToolTip_;
};

/// A tool tip's text that is taken for plain text, and not too long for a screen.
[[nodiscard]] QString plainToolTip(const QString& text);

/// The text with control characters, line ends among them, made visible as one character each.
[[nodiscard]] QString withVisibleControls(QString text);

} // namespace sonarin
