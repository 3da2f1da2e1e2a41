#include "appearance/controls/TaskEditor.h"

#include "appearance/controls/typography.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QTextDocument>

#include <algorithm>
#include <cmath>

namespace orvo {

TaskEditor::TaskEditor(const QString& label, const QString& placeholder, QWidget* parent)
    : QPlainTextEdit(parent), m_caret(this) {
    setAccessibleName(label);
    setAccessibleDescription(placeholder);
    setPlaceholderText(placeholder);
    setFont(fontOf(TypeRole::Writing));
    setFrameShape(QFrame::NoFrame);
    setTabChangesFocus(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(textInset);
    setCursorWidth(0);  // the caret is painted below, in the accent
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, [this] { m_caret.restart(); });
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
            [this] { adoptHeight(); });
    adoptHeight();
}

void TaskEditor::setGrowth(int least, int most) {
    m_least = least;
    m_most = most;
    adoptHeight();
}

void TaskEditor::setText(const QString& text) {
    if (toPlainText() == text) return;
    setPlainText(text);
    // One goes on writing where a text ends.
    moveCursor(QTextCursor::End);
}

// A plain text document measures its height in lines.
void TaskEditor::adoptHeight() {
    const double lines = document()->documentLayout()->documentSize().height();
    const int wanted =
        static_cast<int>(std::ceil(lines * fontMetrics().lineSpacing() + 2 * document()->documentMargin()));
    const int height = std::clamp(wanted, m_least, m_most);
    setVerticalScrollBarPolicy(wanted > m_most ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    if (height != this->minimumHeight() || height != this->maximumHeight()) setFixedHeight(height);
}

QSize TaskEditor::sizeHint() const {
    return {240, minimumHeight()};
}
QSize TaskEditor::minimumSizeHint() const {
    return {80, m_least};
}

void TaskEditor::focusInEvent(QFocusEvent* event) {
    QPlainTextEdit::focusInEvent(event);
    Q_EMIT focusChanged(true);
}

void TaskEditor::focusOutEvent(QFocusEvent* event) {
    QPlainTextEdit::focusOutEvent(event);
    Q_EMIT focusChanged(false);
}

void TaskEditor::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    adoptHeight();
}

void TaskEditor::paintEvent(QPaintEvent* event) {
    QPlainTextEdit::paintEvent(event);
    if (!m_caret.isLit() || isReadOnly()) return;
    QPainter painter(viewport());
    m_caret.paint(painter, cursorRect());
}

}  // namespace orvo
