#include "team_runs/ui/ChangeListAccessible.h"

#include "team_runs/ui/ChangeList.h"

#include <QPointer>

namespace orvo {
namespace {

class ChangeRowAccessible final : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    ChangeRowAccessible(ChangeList* list, int row) : m_list(list), m_row(row) {}

    int row() const { return m_row; }

    bool isValid() const override { return m_list && m_row < m_list->model()->rowCount(); }
    QObject* object() const override { return nullptr; }
    QAccessible::Role role() const override { return QAccessible::CheckBox; }
    QAccessibleInterface* parent() const override {
        return m_list ? QAccessible::queryAccessibleInterface(m_list) : nullptr;
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    void setText(QAccessible::Text, const QString&) override {}

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Name) return index().data().toString();
        if (kind == QAccessible::Description) return index().data(ChangeModel::KindRole).toString();
        return {};
    }

    QRect rect() const override {
        if (!isValid()) return {};
        const QRect local = m_list->visualRect(index());
        return {m_list->viewport()->mapToGlobal(local.topLeft()), local.size()};
    }

    QAccessible::State state() const override {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        state.checkable = true;
        state.checked = index().data(Qt::CheckStateRole).toInt() == Qt::Checked;
        state.focusable = true;
        state.focused = m_list->hasFocus() && m_list->currentIndex() == index();
        state.selectable = true;
        state.selected = m_list->currentIndex() == index();
        state.disabled = !m_list->isEnabled();
        state.invisible = !m_list->isVisible();
        state.offscreen = !m_list->viewport()->rect().intersects(m_list->visualRect(index()));
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QStringList actionNames() const override { return {toggleAction(), pressAction()}; }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }
    void doAction(const QString& action) override {
        if (!isValid() || !m_list->isEnabled()) return;
        if (action == toggleAction()) m_list->toggle(m_row);
        if (action == pressAction()) m_list->setCurrentIndex(index());
    }

private:
    QModelIndex index() const { return m_list ? m_list->model()->index(m_row, 0) : QModelIndex(); }

    QPointer<ChangeList> m_list;
    const int m_row;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* const list = qobject_cast<ChangeList*>(object);
    return list ? new ChangeListAccessible(list) : nullptr;
}

}  // namespace

void ChangeListAccessible::install() {
    QAccessible::installFactory(makeInterface);  // Qt keeps one of each
}

void ChangeListAccessible::announceToggled(ChangeList& list, int row) {
    if (!QAccessible::isActive()) return;
    QAccessibleInterface* const whole = QAccessible::queryAccessibleInterface(&list);
    QAccessibleInterface* const interface = whole ? whole->child(row) : nullptr;
    if (!interface) return;
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(interface, changed);
    QAccessible::updateAccessibility(&event);
}

ChangeListAccessible::ChangeListAccessible(ChangeList* list) : QAccessibleWidget(list, QAccessible::List) {}

ChangeListAccessible::~ChangeListAccessible() {
    for (const QAccessible::Id id : std::as_const(m_rows))
        QAccessible::deleteAccessibleInterface(id);
}

ChangeList& ChangeListAccessible::list() const {
    return *static_cast<ChangeList*>(widget());
}

int ChangeListAccessible::childCount() const {
    return list().model()->rowCount();
}

QAccessibleInterface* ChangeListAccessible::child(int row) const {
    if (row < 0 || row >= childCount()) return nullptr;
    const auto known = m_rows.constFind(row);
    if (known != m_rows.constEnd()) return QAccessible::accessibleInterface(*known);
    auto* const interface = new ChangeRowAccessible(&list(), row);
    m_rows.insert(row, QAccessible::registerAccessibleInterface(interface));
    return interface;
}

int ChangeListAccessible::indexOfChild(const QAccessibleInterface* child) const {
    const auto* const row = dynamic_cast<const ChangeRowAccessible*>(child);
    return row ? row->row() : -1;
}

QAccessibleInterface* ChangeListAccessible::childAt(int x, int y) const {
    const QModelIndex index = list().indexAt(list().viewport()->mapFromGlobal(QPoint(x, y)));
    return index.isValid() ? child(index.row()) : nullptr;
}

}  // namespace orvo
