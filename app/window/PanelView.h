// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QWidget>

class QLabel;

namespace sonarin {

class PictureView;
class ValueLabel;
struct PanelFact;

/// The part of the window that a person reads: the picture, what names the song, and the facts, each beside
/// its caption. Its children are the picture and the values: those without a caption name the song, the last
/// of the others (the comment) takes whole lines. The form has those that look or are called in a way of
/// their own; the rest is made here, by the table of facts. It places them by the room there is:
///
/// - narrow: one below the other, the facts in one column;
/// - else the names beside the picture and below them the facts in two columns;
/// - wide: all beside the picture.
///
/// The picture gets what the texts leave.
class PanelView : public QWidget {
    Q_OBJECT

public:
    explicit PanelView(QWidget* parent = nullptr);

    /// Takes over the children that the form has made, and makes the others; to be called once.
    void adopt();
    /// The value of a fact.
    [[nodiscard]] ValueLabel* valueOf(const PanelFact& fact);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    /// The least height.
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private slots:
    void placeSoon();
    void placeAgain();

private:
    struct Spacing {
        int margin; ///< around all
        int gap;    ///< between the parts
        int line;   ///< between two lines
    };
    static constexpr Spacing airy = {14, 14, 5};
    static constexpr Spacing tight = {8, 6, 0};
    static constexpr int captionGap = 7;
    static constexpr int columnGap = 12;

    [[nodiscard]] QLabel* captionOf(ValueLabel* value, const QString& label);
    void putInOrder();
    void dimCaptions();
    [[nodiscard]] int captionWidth() const;
    [[nodiscard]] bool isNarrow(int width) const;
    [[nodiscard]] bool isWide(const QSize& size) const;
    [[nodiscard]] int leastHeight(int width, const Spacing& spacing) const;
    [[nodiscard]] int namesHeight(int width, const Spacing& spacing, int most) const;
    [[nodiscard]] int factsHeight(int columns, const Spacing& spacing) const;
    void placeNarrow(const QRect& room, const Spacing& spacing);
    void placeCompact(const QRect& room, const Spacing& spacing);
    void placeWide(const QRect& room, const Spacing& spacing);
    int placeNames(const QRect& room, const Spacing& spacing, bool isAtBottom);
    void placeFacts(const QRect& room, int columns, const Spacing& spacing);
    void placeFact(qsizetype index, const QRect& room);
    void place(QWidget* child, const QRect& rect);

    PictureView* picture_ = nullptr;
    bool isPlaceDue_ = false;
    QList<ValueLabel*> names_; ///< title, artist, album; the file's name and size
    QList<ValueLabel*> facts_; ///< those with a caption; the comment last
    QList<QLabel*> captions_;  ///< of the facts
};

} // namespace sonarin
