#include "appearance/controls/accessibility.h"

#include "appearance/controls/AlertSheet.h"
#include "appearance/controls/HeaderPill.h"
#include "appearance/controls/NavRow.h"
#include "appearance/controls/Notice.h"
#include "appearance/controls/Paragraph.h"
#include "appearance/controls/SegmentedControl.h"
#include "appearance/controls/SessionTab.h"
#include "appearance/controls/Sheet.h"
#include "appearance/controls/StatusPill.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace orvo {
namespace {

/// An entry that can be pressed and of which one is current: a tab, a place in the sidebar.
class ChoiceInterface final : public QAccessibleWidget {
public:
    ChoiceInterface(Pressable* control, QAccessible::Role role, bool (*isCurrent)(const QWidget*))
        : QAccessibleWidget(control, role, control->title()), m_isCurrent(isCurrent) {}

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Name && widget()->accessibleName().isEmpty()) return control()->title();
        return QAccessibleWidget::text(kind);
    }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.selectable = true;
        state.selected = m_isCurrent(widget());
        return state;
    }

    QStringList actionNames() const override {
        return QStringList{pressAction()} + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& action) override {
        if (action == pressAction()) {
            if (widget()->isEnabled()) control()->click();
        } else {
            QAccessibleWidget::doAction(action);
        }
    }

private:
    Pressable* control() const { return static_cast<Pressable*>(widget()); }

    bool (*m_isCurrent)(const QWidget*);
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    if (auto* row = qobject_cast<NavRow*>(object)) {
        return new ChoiceInterface(row, QAccessible::Button, [](const QWidget* w) {
            return static_cast<const NavRow*>(w)->isCurrent();
        });
    }
    if (auto* tab = qobject_cast<SessionTab*>(object)) {
        return new ChoiceInterface(tab, QAccessible::PageTab, [](const QWidget* w) {
            return static_cast<const SessionTab*>(w)->isCurrent();
        });
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
