// SPDX-License-Identifier: MIT
#include "app/window/accessibility.h"

#include "app/window/PictureView.h"
#include "app/window/PullDownButton.h"
#include "app/window/SourceList.h"
#include "app/window/ValueLabel.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QAccessibleWidget>
#include <algorithm>

namespace sonarin {

namespace {

/// A widget whose text can be read, besides its name.
class ReadableWidget : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    ReadableWidget(QWidget* widget, QAccessible::Role role) : QAccessibleWidget(widget, role) {}

    [[nodiscard]] virtual QString content() const = 0;

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::TextInterface ? static_cast<QAccessibleTextInterface*>(this)
                                                  : QAccessibleWidget::interface_cast(type);
    }
    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? content() : QAccessibleWidget::text(kind);
    }

    [[nodiscard]] QString text(int start, int end) const override {
        return content().mid(start, end - start);
    }
    [[nodiscard]] int characterCount() const override { return static_cast<int>(content().size()); }
    [[nodiscard]] int selectionCount() const override { return 0; }
    void selection(int /*index*/, int* start, int* end) const override { *start = *end = 0; }
    void setSelection(int /*index*/, int /*start*/, int /*end*/) override {}
    void addSelection(int start, int end) override { setSelection(0, start, end); }
    void removeSelection(int /*index*/) override { setSelection(0, 0, 0); }
    [[nodiscard]] int cursorPosition() const override { return 0; }
    void setCursorPosition(int position) override { setSelection(0, position, position); }
    [[nodiscard]] QRect characterRect(int /*offset*/) const override { return rect(); }
    [[nodiscard]] int offsetAtPoint(const QPoint& /*point*/) const override { return -1; }
    void scrollToSubstring(int /*start*/, int /*end*/) override {}
    QString attributes(int /*offset*/, int* start, int* end) const override {
        *start = 0;
        *end = characterCount();
        return {};
    }
};

/// A value, whose text can be selected as well.
class AccessibleValue final : public ReadableWidget {
public:
    explicit AccessibleValue(ValueLabel* value)
        : ReadableWidget(value, QAccessible::EditableText), value_(value) {}

    [[nodiscard]] QString content() const override { return value_->text(); }
    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.readOnly = true;
        state.selectableText = true;
        return state;
    }

    [[nodiscard]] int selectionCount() const override { return value_->hasSelectedText() ? 1 : 0; }
    void selection(int /*index*/, int* start, int* end) const override {
        *start = std::max(value_->selectionStart(), 0);
        *end = *start + static_cast<int>(value_->selectedText().size());
    }
    void setSelection(int /*index*/, int start, int end) override {
        value_->setSelection(start, end - start);
    }
    [[nodiscard]] int cursorPosition() const override { return std::max(value_->selectionStart(), 0); }

private:
    ValueLabel* value_;
};

class AccessibleSourceList final : public ReadableWidget {
public:
    explicit AccessibleSourceList(SourceList* list)
        : ReadableWidget(list, QAccessible::ComboBox), list_(list) {}

    [[nodiscard]] QString content() const override { return list_->currentText(); }
    [[nodiscard]] int childCount() const override { return 1; }
    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        return index == 0 ? QAccessible::queryAccessibleInterface(list_->view()) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        return child->object() == list_->view() ? 0 : -1;
    }
    [[nodiscard]] QStringList actionNames() const override {
        return QStringList{pressAction()} + QAccessibleWidget::actionNames();
    }
    void doAction(const QString& name) override {
        if (name == pressAction()) {
            list_->showPopup();
        } else {
            QAccessibleWidget::doAction(name);
        }
    }

private:
    SourceList* list_;
};

class AccessiblePicture final : public QAccessibleWidget {
public:
    explicit AccessiblePicture(PictureView* picture)
        : QAccessibleWidget(picture, QAccessible::Graphic), picture_(picture) {}

    [[nodiscard]] QStringList actionNames() const override {
        const QStringList names = QAccessibleWidget::actionNames();
        return picture_->showsImage() ? QStringList{pressAction()} + names : names;
    }
    void doAction(const QString& name) override {
        if (name == pressAction()) {
            QMetaObject::invokeMethod(picture_, "opened", Qt::QueuedConnection);
        } else {
            QAccessibleWidget::doAction(name);
        }
    }

private:
    PictureView* picture_;
};

/// The toolkit's own would keep who presses it waiting until the menu is closed.
class AccessiblePullDown final : public QAccessibleWidget {
public:
    explicit AccessiblePullDown(PullDownButton* button)
        : QAccessibleWidget(button, QAccessible::ButtonMenu), button_(button) {}

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name ? button_->text().remove(u'&') : QAccessibleWidget::text(kind);
    }
    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.hasPopup = true;
        state.expandable = true;
        state.expanded = button_->menu()->isVisible();
        return state;
    }
    [[nodiscard]] int childCount() const override { return button_->menu()->isVisible() ? 1 : 0; }
    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        return index == 0 ? QAccessible::queryAccessibleInterface(button_->menu()) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        return child->object() == button_->menu() ? 0 : -1;
    }
    [[nodiscard]] QStringList actionNames() const override { return {showMenuAction(), setFocusAction()}; }
    void doAction(const QString& name) override {
        if (name == showMenuAction()) {
            QMetaObject::invokeMethod(button_, "pullDown", Qt::QueuedConnection);
        } else {
            QAccessibleWidget::doAction(name);
        }
    }

private:
    PullDownButton* button_;
};

QAccessibleInterface* describe(const QString& /*className*/, QObject* object) {
    if (auto* value = qobject_cast<ValueLabel*>(object)) {
        return new AccessibleValue(value); // NOLINT(*-owning-memory): the toolkit keeps it
    }
    if (auto* list = qobject_cast<SourceList*>(object)) {
        return new AccessibleSourceList(list); // NOLINT(*-owning-memory)
    }
    if (auto* button = qobject_cast<PullDownButton*>(object)) {
        return new AccessiblePullDown(button); // NOLINT(*-owning-memory)
    }
    if (auto* picture = qobject_cast<PictureView*>(object)) {
        return new AccessiblePicture(picture); // NOLINT(*-owning-memory)
    }
    return nullptr;
}

} // namespace

void describeToScreenReaders() {
    QAccessible::installFactory(describe);
}

} // namespace sonarin
