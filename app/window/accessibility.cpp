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

/// A widget that may have an action of its own, and one that pops up from it as its child.
class Control : public QAccessibleWidget {
public:
    Control(QWidget* widget, QAccessible::Role role) : QAccessibleWidget(widget, role) {}

    /// Empty for none.
    [[nodiscard]] virtual QString ownAction() const { return {}; }
    virtual void carryOut() {}
    /// Null for none.
    [[nodiscard]] virtual QWidget* poppedUp() const { return nullptr; }

    [[nodiscard]] QStringList actionNames() const override {
        const QStringList names = QAccessibleWidget::actionNames();
        return ownAction().isEmpty() ? names : QStringList{ownAction()} + names;
    }
    void doAction(const QString& name) override {
        if (!name.isEmpty() && name == ownAction()) {
            carryOut();
        } else {
            QAccessibleWidget::doAction(name);
        }
    }
    [[nodiscard]] int childCount() const override { return poppedUp() != nullptr ? 1 : 0; }
    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        return index == 0 ? QAccessible::queryAccessibleInterface(poppedUp()) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        return poppedUp() != nullptr && child->object() == poppedUp() ? 0 : -1;
    }
};

/// A widget whose text can be read, besides its name.
class ReadableWidget : public Control, public QAccessibleTextInterface {
public:
    using Control::Control;

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
    [[nodiscard]] QWidget* poppedUp() const override { return list_->view(); }
    [[nodiscard]] QString ownAction() const override { return pressAction(); }
    void carryOut() override { list_->showPopup(); }

private:
    SourceList* list_;
};

class AccessiblePicture final : public Control {
public:
    explicit AccessiblePicture(PictureView* picture)
        : Control(picture, QAccessible::Graphic), picture_(picture) {}

    [[nodiscard]] QString ownAction() const override {
        return picture_->showsImage() ? pressAction() : QString();
    }
    void carryOut() override { QMetaObject::invokeMethod(picture_, "opened", Qt::QueuedConnection); }

private:
    PictureView* picture_;
};

/// The toolkit's own would keep who presses it waiting until the menu is closed.
class AccessiblePullDown final : public Control {
public:
    explicit AccessiblePullDown(PullDownButton* button)
        : Control(button, QAccessible::ButtonMenu), button_(button) {}

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
    [[nodiscard]] QWidget* poppedUp() const override {
        return button_->menu()->isVisible() ? button_->menu() : nullptr;
    }
    [[nodiscard]] QString ownAction() const override { return showMenuAction(); }
    void carryOut() override { QMetaObject::invokeMethod(button_, "pullDown", Qt::QueuedConnection); }

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
