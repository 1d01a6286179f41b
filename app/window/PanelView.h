// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QWidget>

class QLabel;

namespace sonarin {

class PictureView;
class ValueLabel;

/// The part of the window that a person reads: the picture, what names the song, and the facts, each beside
/// its caption. Its children are the picture and the values, in the order of the form: those without a
/// caption name the song, the last of the others (the comment) takes whole lines. It places them by the room
/// there is:
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

    /// Takes the children over; to be called once when the form has made them.
    void adopt();

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
    QList<ValueLabel*> facts_; ///< the comment last
    QList<QLabel*> captions_;  ///< of the facts
};

} // namespace sonarin
