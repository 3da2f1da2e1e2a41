#include "appearance/controls/readingOrder.h"

#include <QLayout>
#include <QScrollArea>
#include <QSet>
#include <QWidget>

#include <algorithm>

namespace orvo {
namespace {

/// Kept free above and below a control that was scrolled into view.
constexpr int margin = 24;

class Walk {
public:
    QList<QWidget*> stops;

    void visit(QWidget* widget) {
        if (m_seen.contains(widget)) return;
        m_seen.insert(widget);
        if (!widget->isVisible() || !widget->isEnabled() || widget->isWindow()) return;
        if (widget->focusPolicy() & Qt::TabFocus) {
            // What lies inside a control is the control's own affair.
            stops.append(widget);
            return;
        }
        visitChildren(*widget);
    }
    void visitChildren(const QWidget& widget) {
        if (widget.layout()) visitLayout(*widget.layout());
        if (const auto* area = qobject_cast<const QScrollArea*>(&widget); area && area->widget())
            visit(area->widget());
        QList<QWidget*> others = widget.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
        std::ranges::stable_sort(others, {},
                                 [](const QWidget* other) { return std::pair(other->y(), other->x()); });
        for (QWidget* const other : std::as_const(others))
            visit(other);
    }

private:
    void visitLayout(const QLayout& layout) {
        for (int i = 0; i < layout.count(); ++i) {
            QLayoutItem* const item = layout.itemAt(i);
            if (QWidget* const widget = item->widget()) visit(widget);
            if (const QLayout* const inner = item->layout()) visitLayout(*inner);
        }
    }

    QSet<const QWidget*> m_seen;
};

/// From the innermost area to the outermost: each shows the part of the next one that matters.
void scrollIntoView(QWidget& stop) {
    for (QWidget* up = stop.parentWidget(); up && !up->isWindow(); up = up->parentWidget()) {
        if (auto* const area = qobject_cast<QScrollArea*>(up); area && area->widget()->isAncestorOf(&stop))
            area->ensureWidgetVisible(&stop, 0, margin);
    }
}

}  // namespace

QList<QWidget*> tabStops(const QWidget& root) {
    Walk walk;
    walk.visitChildren(root);
    return walk.stops;
}

bool focusNeighbour(const QWidget& root, bool next) {
    const QList<QWidget*> stops = tabStops(root);
    if (stops.isEmpty()) return false;
    const QWidget* const focused = root.window()->focusWidget();
    const auto holds = [focused](const QWidget* stop) {
        return focused && (stop == focused || stop->isAncestorOf(focused));
    };
    const auto found = std::ranges::find_if(stops, holds);
    const qsizetype count = stops.size();
    const qsizetype from = found == stops.end() ? (next ? -1 : 0) : found - stops.begin();
    QWidget* const stop = stops[(from + (next ? 1 : -1) + count) % count];
    stop->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    scrollIntoView(*stop);
    return true;
}

}  // namespace orvo
