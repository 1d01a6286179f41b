// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

namespace sonarin {

/// A text from a file: shown as plain text whatever it holds, selectable, reached by Tab where there is one,
/// wrapped where it may be, cut with an ellipsis where the room ends, whole in its tool tip. Its form
/// places it (see PanelView).
class ValueLabel : public QLabel {
    Q_OBJECT
    /// How large the text is in comparison to the form's other texts.
    Q_PROPERTY(double textScale READ textScale WRITE setTextScale)
    /// A text that matters less is shown weaker.
    Q_PROPERTY(bool secondary READ isSecondary WRITE setSecondary)
    /// How many lines it may take; more than one only where it has room for them.
    Q_PROPERTY(int mostLines READ mostLines WRITE setMostLines)
    /// A blank at the start belongs to the text and is not to be seen.
    Q_PROPERTY(bool leadingBlankHidden READ isLeadingBlankHidden WRITE setLeadingBlankHidden)

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
    [[nodiscard]] int mostLines() const { return mostLines_; }
    void setMostLines(int most);
    [[nodiscard]] bool isLeadingBlankHidden() const { return isLeadingBlankHidden_; }
    void setLeadingBlankHidden(bool hidden) { isLeadingBlankHidden_ = hidden; }

    /// The height of so many lines.
    [[nodiscard]] int heightOfLines(int lines) const;
    /// How many lines the text takes at that width, at most `mostLines`.
    [[nodiscard]] int linesAt(int width) const;

signals:
    void valueChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct Lines {
        QStringList shown; ///< as far as they can be seen
        bool isCut = false;
    };
    [[nodiscard]] QString shownText() const;
    [[nodiscard]] Lines linesFor(const QSize& room, int most) const;
    [[nodiscard]] int linesWithin(int height) const;
    [[nodiscard]] bool isCut() const;
    void stayBesideCaption();

    double textScale_ = 1;
    bool isSecondary_ = false;
    int mostLines_ = 1;
    bool isLeadingBlankHidden_ = false;
    QString fixedToolTip_;
    struct {
        int width = 0;
        int lines = 0;
    } mutable linesKnown_; ///< of the text, at the width asked for last
};

/// At most so many units of a text's start or end, without half a surrogate pair.
[[nodiscard]] QString startOf(const QString& text, qsizetype most);
[[nodiscard]] QString endOf(const QString& text, qsizetype most);

/// A tool tip's text that is taken for plain text, and not too long for a screen.
[[nodiscard]] QString plainToolTip(const QString& text);

/// The text with control characters, line ends among them, made visible as one character each.
[[nodiscard]] QString withVisibleControls(QString text);

} // namespace sonarin
