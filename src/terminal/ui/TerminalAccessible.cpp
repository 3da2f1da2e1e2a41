#include "terminal/ui/TerminalAccessible.h"

#include "terminal/TerminalSession.h"
#include "terminal/ui/TerminalView.h"

#include <algorithm>
#include <utility>

namespace orvo {

TerminalAccessible::TerminalAccessible(TerminalView* view) : QAccessibleWidget(view, QAccessible::Terminal) {}

TerminalView& TerminalAccessible::view() const {
    return *static_cast<TerminalView*>(widget());
}

void* TerminalAccessible::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
}

QAccessible::State TerminalAccessible::state() const {
    QAccessible::State state = QAccessibleWidget::state();
    state.multiLine = true;
    return state;
}

const TerminalText& TerminalAccessible::content() const {
    TerminalSession* session = view().session();
    if (session == nullptr) {
        m_version = {};
        m_content = {};
        return m_content;
    }
    const TerminalScreen& screen = session->screen();
    if (m_version.session != session || m_version.revision != session->revision() ||
        m_version.rows != screen.rows() || m_version.columns != screen.columns()) {
        m_version = {session, session->revision(), screen.rows(), screen.columns()};
        m_content = TerminalText::of(screen);
    }
    return m_content;
}

// --- What has changed

bool TerminalAccessible::isListenedTo(const TerminalView& view) {
    return QAccessible::isActive() && view.hasFocus();
}

void TerminalAccessible::announceChanges(TerminalView& view) {
    if (auto* self = dynamic_cast<TerminalAccessible*>(QAccessible::queryAccessibleInterface(&view)))
        self->announce();
}

void TerminalAccessible::announce() {
    const TerminalText now = content();
    const std::optional<TerminalText> known = std::exchange(m_announced, now);
    // What was there before anybody listened is read on request.
    if (!known) return;
    if (known->text != now.text) {
        const TextChange change = TextChange::between(known->text, now.text);
        QAccessibleTextUpdateEvent event(&view(), change.position, change.removed, change.inserted);
        QAccessible::updateAccessibility(&event);
    }
    if (known->cursor != now.cursor) {
        QAccessibleTextCursorEvent event(&view(), now.cursor);
        QAccessible::updateAccessibility(&event);
    }
}

// --- Text interface

void TerminalAccessible::selection(int, int* startOffset, int* endOffset) const {
    *startOffset = *endOffset = 0;
}

int TerminalAccessible::cursorPosition() const {
    return content().cursor;
}

QString TerminalAccessible::text(QAccessible::Text kind) const {
    return QAccessibleWidget::text(kind);
}

QString TerminalAccessible::text(int startOffset, int endOffset) const {
    return content().text.mid(startOffset, endOffset - startOffset);
}

int TerminalAccessible::characterCount() const {
    return static_cast<int>(content().text.size());
}

int TerminalAccessible::rowOf(int line) const {
    return line - view().session()->screen().scrollbackCount() + view().scrollOffset();
}

QRect TerminalAccessible::characterRect(int offset) const {
    if (view().session() == nullptr || offset < 0 || offset > characterCount()) return {};
    const TerminalText::Place place = content().placeOf(offset);
    const CellGeometry& cells = view().geometryOfCells();
    const QRect rect = cells.around(rowOf(place.line), place.offset);
    return rect.translated(view().mapToGlobal(QPoint(0, 0)));
}

int TerminalAccessible::offsetAtPoint(const QPoint& point) const {
    const TerminalText& text = content();
    const QPoint local = view().mapFromGlobal(point);
    if (text.lineStarts.isEmpty() || !view().rect().contains(local)) return -1;
    const CellGeometry& cells = view().geometryOfCells();
    const int line = (local.y() - CellGeometry::marginY) / cells.lineHeight - rowOf(0) - text.firstLine;
    if (line < 0 || line >= text.lineStarts.size()) return -1;
    const int column = std::max(0, static_cast<int>((local.x() - CellGeometry::marginX) / cells.cellWidth));
    const int end = line + 1 < text.lineStarts.size() ? text.lineStarts[line + 1] - 1 : characterCount();
    return std::min(text.lineStarts[line] + column, end);
}

void TerminalAccessible::scrollToSubstring(int startIndex, int) {
    if (view().session() == nullptr) return;
    view().setScrollOffset(view().session()->screen().scrollbackCount() - content().placeOf(startIndex).line);
}

QString TerminalAccessible::attributes(int, int* startOffset, int* endOffset) const {
    *startOffset = 0;
    *endOffset = characterCount();
    return {};
}

void installTerminalAccessibility() {
    // Qt ignores a factory that it already has.
    QAccessible::installFactory([](const QString&, QObject* object) -> QAccessibleInterface* {
        auto* view = qobject_cast<TerminalView*>(object);
        return view != nullptr ? new TerminalAccessible(view) : nullptr;
    });
}

}  // namespace orvo
