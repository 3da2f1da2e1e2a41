#include "appearance/controls/SelectableText.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace orvo {

SelectableText::SelectableText(const QString& text, TypeRole type, Ink ink, QWidget* parent)
    : Paragraph(text, type, ink, parent) {
    setCursor(Qt::IBeamCursor);
    setFocusPolicy(Qt::ClickFocus);
}

QString SelectableText::selectedText() const {
    return text().mid(std::min(m_anchor, m_caret), std::abs(m_caret - m_anchor));
}

void SelectableText::selectAll() {
    select(0, static_cast<int>(text().size()));
}

void SelectableText::select(int anchor, int caret) {
    m_anchor = anchor;
    m_caret = caret;
    update();
}

void SelectableText::copy() const {
    if (m_anchor != m_caret) QApplication::clipboard()->setText(selectedText());
}

QList<QTextLayout::FormatRange> SelectableText::marks() const {
    if (m_anchor == m_caret) return {};
    QTextLayout::FormatRange range;
    range.start = std::min(m_anchor, m_caret);
    range.length = std::abs(m_caret - m_anchor);
    range.format.setBackground(palette().highlight());
    range.format.setForeground(palette().highlightedText());
    return {range};
}

void SelectableText::contextMenuEvent(QContextMenuEvent* event) {
    QMenu menu;
    QAction* const copyItem = menu.addAction(tr("Copy"));
    copyItem->setEnabled(m_anchor != m_caret);
    const QAction* const allItem = menu.addAction(tr("Select All"));
    const QAction* const chosen = menu.exec(event->globalPos());
    if (chosen == copyItem) copy();
    if (chosen == allItem) selectAll();
}

void SelectableText::focusOutEvent(QFocusEvent* event) {
    Paragraph::focusOutEvent(event);
    // The selection stays while its menu is open.
    if (event->reason() != Qt::PopupFocusReason) select(m_caret, m_caret);
}

void SelectableText::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) {
        copy();
    } else if (event->matches(QKeySequence::SelectAll)) {
        selectAll();
    } else {
        Paragraph::keyPressEvent(event);
    }
}

void SelectableText::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const int at = positionAt(event->pos());
    select(event->modifiers().testFlag(Qt::ShiftModifier) ? m_anchor : at, at);
}

void SelectableText::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons().testFlag(Qt::LeftButton)) select(m_anchor, positionAt(event->pos()));
}

void SelectableText::mouseReleaseEvent(QMouseEvent* event) {
    QClipboard* const clipboard = QApplication::clipboard();
    if (event->button() == Qt::LeftButton && m_anchor != m_caret && clipboard->supportsSelection())
        clipboard->setText(selectedText(), QClipboard::Selection);
}

void SelectableText::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    QTextBoundaryFinder words(QTextBoundaryFinder::Word, text());
    words.setPosition(positionAt(event->pos()));
    const auto start = words.isAtBoundary() ? words.position() : words.toPreviousBoundary();
    const auto end = words.toNextBoundary();
    if (start >= 0 && end > start) select(static_cast<int>(start), static_cast<int>(end));
}

}  // namespace orvo
