#include "appearance/controls/RowListAccessible.h"

#include "appearance/controls/RowList.h"

#include <QPointer>

namespace orvo {
namespace {

class RowAccessible final : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    RowAccessible(RowList* list, int row) : m_list(list), m_row(row) {}

    int row() const { return m_row; }

    bool isValid() const override { return m_list && m_row < m_list->model()->rowCount(); }
    QObject* object() const override { return nullptr; }
    QAccessible::Role role() const override {
        return isTicked() ? QAccessible::CheckBox : QAccessible::ListItem;
    }
    QAccessibleInterface* parent() const override {
        return m_list ? QAccessible::queryAccessibleInterface(m_list) : nullptr;
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    void setText(QAccessible::Text, const QString&) override {}

    QString text(QAccessible::Text kind) const override {
        if (!isValid()) return {};
        if (kind == QAccessible::Name) return index().data().toString();
        if (kind == QAccessible::Description) return m_list->rowDescription(m_row);
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
        state.checkable = isTicked().has_value();
        state.checked = isTicked().value_or(false);
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
    QStringList actionNames() const override {
        return isTicked() ? QStringList{toggleAction(), pressAction()} : QStringList{pressAction()};
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }
    void doAction(const QString& action) override {
        if (!isValid() || !m_list->isEnabled()) return;
        if (action == toggleAction()) m_list->toggleRow(m_row);
        if (action == pressAction()) m_list->pressRow(m_row);
    }

private:
    std::optional<bool> isTicked() const { return isValid() ? m_list->isRowTicked(m_row) : std::nullopt; }
    QModelIndex index() const { return m_list ? m_list->model()->index(m_row, 0) : QModelIndex(); }

    QPointer<RowList> m_list;
    const int m_row;
};

}  // namespace

RowListAccessible::RowListAccessible(RowList* list) : QAccessibleWidget(list, QAccessible::List) {}

RowListAccessible::~RowListAccessible() {
    for (const QAccessible::Id id : std::as_const(m_rows))
        QAccessible::deleteAccessibleInterface(id);
}

RowList& RowListAccessible::list() const {
    return *static_cast<RowList*>(widget());
}

int RowListAccessible::childCount() const {
    return list().model()->rowCount();
}

QAccessibleInterface* RowListAccessible::child(int row) const {
    // Also a row that has gone since it was counted, which is then not valid: nothing is wrong with who asks.
    const auto known = m_rows.constFind(row);
    if (known != m_rows.constEnd()) return QAccessible::accessibleInterface(*known);
    if (row < 0 || row >= childCount()) return nullptr;
    auto* const interface = new RowAccessible(&list(), row);
    m_rows.insert(row, QAccessible::registerAccessibleInterface(interface));
    return interface;
}

int RowListAccessible::indexOfChild(const QAccessibleInterface* child) const {
    const auto* const row = dynamic_cast<const RowAccessible*>(child);
    return row ? row->row() : -1;
}

QAccessibleInterface* RowListAccessible::childAt(int x, int y) const {
    const QModelIndex index = list().indexAt(list().viewport()->mapFromGlobal(QPoint(x, y)));
    return index.isValid() ? child(index.row()) : nullptr;
}

}  // namespace orvo
