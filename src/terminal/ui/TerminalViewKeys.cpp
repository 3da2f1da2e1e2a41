// What is typed on a terminal: keys, input methods, the clipboard, the menu.
#include "platform/observe.h"
#include "terminal/TerminalSession.h"
#include "terminal/ui/TerminalView.h"
#include "terminal/ui/keyPress.h"

#include <QAction>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMenu>

#include <algorithm>

namespace orvo {

bool TerminalView::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::ShortcutOverride: {
            // Claims the key, so that no shortcut of a menu or button takes it from the program.
            auto* key = static_cast<QKeyEvent*>(event);
            if (!m_session || meaningOf(*key) == KeyMeaning::Other) break;
            event->accept();
            return true;
        }
        case QEvent::KeyPress: {
            // Before QWidget sees it, which would move the focus on Tab.
            auto* key = static_cast<QKeyEvent*>(event);
            if (key->key() != Qt::Key_Tab && key->key() != Qt::Key_Backtab) break;
            keyPressEvent(key);
            return true;
        }
        default:
            break;
    }
    return QWidget::event(event);
}

void TerminalView::keyPressEvent(QKeyEvent* event) {
    event->accept();
    switch (meaningOf(*event)) {
        case KeyMeaning::Copy:
            return copy();
        case KeyMeaning::Paste:
            return paste();
        case KeyMeaning::MenuItem:
            return triggerMenuItem(menuKeyOf(*event));
        case KeyMeaning::NextWidget:
            focusNextPrevChild(true);
            return;
        case KeyMeaning::PreviousWidget:
            focusNextPrevChild(false);
            return;
        case KeyMeaning::Find:
            Q_EMIT findRequested();
            return;
        case KeyMeaning::ZoomIn:
            return setZoom(m_zoom + 1);
        case KeyMeaning::ZoomOut:
            return setZoom(m_zoom - 1);
        case KeyMeaning::ZoomReset:
            return setZoom(0);
        case KeyMeaning::ScrollPageUp:
            if (scrollByPages(1)) return;
            break;
        case KeyMeaning::ScrollPageDown:
            if (scrollByPages(-1)) return;
            break;
        case KeyMeaning::Other:
            event->ignore();
            return;
        case KeyMeaning::Program:
            break;
    }
    if (!m_session) return;
    send(bytesOf(*event, m_session->screen().modes()));
}

bool TerminalView::scrollByPages(int pages) {
    const TerminalScreen* shown = screen();
    if (shown == nullptr || shown->alternateScreen()) return false;
    // One line stays in sight, to read on from.
    setScrollOffset(m_scrollOffset + pages * std::max(shown->rows() - 1, 1));
    return true;
}

void TerminalView::send(const QByteArray& bytes) {
    if (!m_session || bytes.isEmpty()) return;
    setScrollOffset(0);
    clearSelection();
    m_session->sendBytes(bytes);
}

void TerminalView::triggerMenuItem(int key) const {
    const QKeySequence wanted{key};
    for (QAction* action : window()->findChildren<QAction*>()) {
        if (!action->isEnabled() || !action->shortcuts().contains(wanted)) continue;
        action->trigger();
        return;
    }
}

void TerminalView::inputMethodEvent(QInputMethodEvent* event) {
    if (!event->commitString().isEmpty()) send(event->commitString().toUtf8());
    if (assign(m_preedit, event->preeditString())) update();
    event->accept();
}

QVariant TerminalView::inputMethodQuery(Qt::InputMethodQuery query) const {
    switch (query) {
        case Qt::ImCursorRectangle:
            return cursorRect();
        case Qt::ImFont:
            return m_glyphs->font(GlyphStyle::Regular);
        case Qt::ImHints:
            return static_cast<int>(Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
        default:
            return QWidget::inputMethodQuery(query);
    }
}

// --- Clipboard, menu

void TerminalView::copy() {
    const TerminalScreen* shown = screen();
    if (shown == nullptr || m_selection.empty()) return copyAll();
    QGuiApplication::clipboard()->setText(m_selection.text(*shown));
}

void TerminalView::copyAll() {
    const TerminalScreen* shown = screen();
    QGuiApplication::clipboard()->setText(shown != nullptr ? QString::fromStdString(shown->plainText())
                                                           : QString());
}

void TerminalView::paste() {
    pasteText(QGuiApplication::clipboard()->text());
}

void TerminalView::pasteText(const QString& text) {
    if (!m_session || text.isEmpty()) return;
    const auto brackets = m_session->screen().bracketedPaste() ? PasteBrackets::On : PasteBrackets::Off;
    setScrollOffset(0);
    m_session->sendBytes(QByteArray::fromStdString(encodePaste(text.toStdString(), brackets)));
}

void TerminalView::contextMenuEvent(QContextMenuEvent* event) {
    // The press that asked for it went to the program.
    if (event->reason() == QContextMenuEvent::Mouse && reportsMouse(event->modifiers())) return;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(tr("Copy terminal output"), this, &TerminalView::copy);
    menu->addAction(tr("Paste"), this, &TerminalView::paste);
    const bool byKeyboard = event->reason() == QContextMenuEvent::Keyboard;
    menu->popup(byKeyboard ? mapToGlobal(cursorRect().bottomLeft()) : event->globalPos());
}

}  // namespace orvo
