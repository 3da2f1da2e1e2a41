#include "appearance/controls/accessibility.h"

#include "appearance/controls/AlertSheet.h"
#include "appearance/controls/ChoiceRow.h"
#include "appearance/controls/Disclosure.h"
#include "appearance/controls/HeaderPill.h"
#include "appearance/controls/NavRow.h"
#include "appearance/controls/Notice.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/Paragraph.h"
#include "appearance/controls/RowList.h"
#include "appearance/controls/RowListAccessible.h"
#include "appearance/controls/SegmentedControl.h"
#include "appearance/controls/SessionTab.h"
#include "appearance/controls/Sheet.h"
#include "appearance/controls/StatusPill.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QAccessibleWidget>
#include <QComboBox>

namespace orvo {
namespace {

/// Whatever is pressed and shows its title. Qt's own waits a tenth of a second, in which a press of the next
/// control overtakes it.
class PressableInterface : public QAccessibleWidget {
public:
    PressableInterface(Pressable* control, QAccessible::Role role)
        : QAccessibleWidget(control, role, control->title()) {}

    /// Asked each time: an interface may be made before its control is.
    QAccessible::Role role() const override {
        if (!control()->isCheckable()) return QAccessibleWidget::role();
        return control()->autoExclusive() ? QAccessible::RadioButton : QAccessible::CheckBox;
    }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = control()->isCheckable();
        state.checked = control()->isChecked();
        state.pressed = control()->isDown();
        return state;
    }

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Name && widget()->accessibleName().isEmpty()) return control()->title();
        return QAccessibleWidget::text(kind);
    }

    QStringList actionNames() const override {
        const QString own = control()->isCheckable() ? toggleAction() : pressAction();
        return QStringList{own} + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& action) override {
        if (action == toggleAction()) {
            if (widget()->isEnabled()) control()->toggle();
        } else if (action == pressAction()) {
            // Once the caller has its answer: a press may ask the person something.
            if (widget()->isEnabled()) {
                QMetaObject::invokeMethod(control(), &QAbstractButton::click, Qt::QueuedConnection);
            }
        } else {
            QAccessibleWidget::doAction(action);
        }
    }

private:
    Pressable* control() const { return static_cast<Pressable*>(widget()); }
};

/// An entry of which one is current: a tab, a place in the sidebar.
class ChoiceInterface final : public PressableInterface {
public:
    ChoiceInterface(Pressable* control, QAccessible::Role role, bool (*isCurrent)(const QWidget*))
        : PressableInterface(control, role), m_isCurrent(isCurrent) {}

    QAccessible::State state() const override {
        QAccessible::State state = PressableInterface::state();
        state.selectable = true;
        state.selected = m_isCurrent(widget());
        return state;
    }

private:
    bool (*m_isCurrent)(const QWidget*);
};

/// A row that shows and hides what is below it.
class DisclosureInterface final : public PressableInterface {
public:
    explicit DisclosureInterface(Disclosure* row)
        : PressableInterface(row, QAccessible::Button), m_row(row) {}

    QAccessible::Role role() const override { return QAccessible::Button; }

    QStringList actionNames() const override {
        QStringList names = PressableInterface::actionNames();
        names.front() = pressAction();
        return names;
    }

    QAccessible::State state() const override {
        QAccessible::State state = PressableInterface::state();
        state.checkable = false;
        state.checked = false;
        state.expandable = true;
        state.expanded = m_row->isChecked();
        state.collapsed = !m_row->isChecked();
        return state;
    }

private:
    const Disclosure* m_row;
};

/// A button that opens a menu. The menu stands below it in the tree, because Qt lists no popup of its own
/// accord.
class MenuButtonInterface final : public PressableInterface {
public:
    explicit MenuButtonInterface(OrvoButton* button) : PressableInterface(button, QAccessible::Button) {}

    QAccessible::State state() const override {
        QAccessible::State state = PressableInterface::state();
        state.hasPopup = true;
        return state;
    }

    int childCount() const override { return menu() ? 1 : 0; }
    QAccessibleInterface* child(int index) const override {
        return index == 0 && menu() ? QAccessible::queryAccessibleInterface(menu()) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        return child && menu() && child->object() == menu() ? 0 : -1;
    }

private:
    QMenu* menu() const { return static_cast<OrvoButton*>(widget())->menu(); }
};

/// A picker that is called by its label and described by the entry that is chosen. Qt's own gives the entry
/// as the name.
class PickerInterface final : public QAccessibleWidget {
public:
    explicit PickerInterface(QComboBox* picker) : QAccessibleWidget(picker, QAccessible::ComboBox) {}

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Description || kind == QAccessible::Value) return picker()->currentText();
        return QAccessibleWidget::text(kind);
    }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.expandable = true;
        state.expanded = picker()->view()->isVisible();
        state.collapsed = !state.expanded;
        state.hasPopup = true;
        return state;
    }

    int childCount() const override { return 1; }
    QAccessibleInterface* child(int index) const override {
        return index == 0 ? QAccessible::queryAccessibleInterface(picker()->view()) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        return child && child->object() == picker()->view() ? 0 : -1;
    }

    QStringList actionNames() const override {
        return QStringList{showMenuAction(), pressAction()} + QAccessibleWidget::actionNames();
    }
    void doAction(const QString& action) override {
        if (action != showMenuAction() && action != pressAction()) return QAccessibleWidget::doAction(action);
        if (!picker()->isEnabled()) return;
        if (picker()->view()->isVisible())
            picker()->hidePopup();
        else
            picker()->showPopup();
    }

private:
    QComboBox* picker() const { return static_cast<QComboBox*>(widget()); }
};

/// What has a name of its own and is none of Qt's controls: a window, a group of controls, or a picture.
QAccessible::Role roleOfNamed(const QWidget& widget) {
    if (widget.isWindow()) return QAccessible::Window;
    return widget.findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly) ? QAccessible::Grouping
                                                                             : QAccessible::Graphic;
}

QAccessibleInterface* makeInterface(const QString& className, QObject* object) {
    // Qt's own crashes when it is asked for a child that has just gone, as its scroll bars come and go.
    if (className == QLatin1String("QScrollArea") || className == QLatin1String("QAbstractScrollArea")) {
        return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::Client);
    }
    if (className == QLatin1String("QWidget")) {
        // Screen readers pass over what Qt calls a mere client.
        auto* const widget = static_cast<QWidget*>(object);
        if (widget->accessibleName().isEmpty()) return nullptr;
        return new QAccessibleWidget(widget, roleOfNamed(*widget));
    }
    if (auto* list = qobject_cast<RowList*>(object)) return new RowListAccessible(list);
    if (auto* row = qobject_cast<NavRow*>(object)) {
        return new ChoiceInterface(row, QAccessible::Button, [](const QWidget* w) {
            return static_cast<const NavRow*>(w)->isCurrent();
        });
    }
    if (auto* row = qobject_cast<ChoiceRow*>(object)) {
        return new ChoiceInterface(row, QAccessible::ListItem, [](const QWidget* w) {
            return static_cast<const ChoiceRow*>(w)->isCurrent();
        });
    }
    if (auto* rows = qobject_cast<ChoiceRows*>(object)) return new QAccessibleWidget(rows, QAccessible::List);
    if (auto* tab = qobject_cast<SessionTab*>(object)) {
        return new ChoiceInterface(tab, QAccessible::PageTab, [](const QWidget* w) {
            return static_cast<const SessionTab*>(w)->isCurrent();
        });
    }
    if (auto* picker = qobject_cast<QComboBox*>(object); picker && !picker->accessibleName().isEmpty()) {
        return new PickerInterface(picker);
    }
    if (auto* row = qobject_cast<Disclosure*>(object)) return new DisclosureInterface(row);
    if (auto* button = qobject_cast<OrvoButton*>(object); button && button->menu()) {
        return new MenuButtonInterface(button);
    }
    if (auto* control = qobject_cast<Pressable*>(object)) {
        return new PressableInterface(control, QAccessible::Button);
    }
    if (qobject_cast<Paragraph*>(object) || qobject_cast<StatusPill*>(object) ||
        qobject_cast<HeaderPill*>(object)) {
        return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::StaticText);
    }
    if (qobject_cast<AlertSheet*>(object)) {
        return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::AlertMessage);
    }
    if (qobject_cast<Sheet*>(object)) {
        return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::Dialog);
    }
    if (qobject_cast<Notice*>(object)) {
        return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::AlertMessage);
    }
    if (qobject_cast<SegmentedControl*>(object)) {
        return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::Grouping);
    }
    return nullptr;
}

}  // namespace

void installControlAccessibility() {
    QAccessible::installFactory(makeInterface);  // Qt keeps one of each
}

}  // namespace orvo
