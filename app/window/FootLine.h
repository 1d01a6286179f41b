// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QTimer>

namespace sonarin {

/// The quiet line at the window's foot. It says one thing at a time: what was done last, for some seconds;
/// else what there is to say about the file shown; else what is followed.
class FootLine : public QLabel {
    Q_OBJECT

public:
    explicit FootLine(QWidget* parent = nullptr);

    /// What is followed, as HTML.
    void setFollowing(const QString& html);
    /// About the file shown, as plain text; empty for nothing.
    void setFile(const QString& text);
    /// What was done, as plain text.
    void say(const QString& text);

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void changeEvent(QEvent* event) override;

private:
    void showMostImportant();

    QString following_;
    QString file_;
    QString notice_;
    QTimer noticeTimer_;
};

} // namespace sonarin
