#include "appearance/controls/TextViewer.h"

#include "appearance/controls/typography.h"

#include <QTextBlock>
#include <QTimerEvent>

namespace orvo {
namespace {

constexpr int padding = 10;
constexpr double pixelSize = 11;
// A piece takes a few milliseconds to lay out.
constexpr qsizetype pieceSize = 32'000;

QString withoutLongLines(const QString& text) {
    if (text.size() <= TextViewer::longestLine) return text;
    QString shown;
    shown.reserve(text.size());
    for (qsizetype start = 0; start <= text.size();) {
        qsizetype end = text.indexOf(u'\n', start);
        if (end < 0) end = text.size();
        const qsizetype length = std::min(end - start, TextViewer::longestLine);
        shown += QStringView(text).sliced(start, length);
        if (length < end - start) shown += u'…';
        if (end < text.size()) shown += u'\n';
        start = end + 1;
    }
    return shown;
}

}  // namespace

TextViewer::TextViewer(const QString& label, Lines lines, QWidget* parent) : QPlainTextEdit(parent) {
    setAccessibleName(label);
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setFrameShape(QFrame::NoFrame);
    setUndoRedoEnabled(false);
    setFont(codeFont(pixelSize));
    document()->setDocumentMargin(padding);
    setLineWrapMode(lines == Lines::Wrap ? QPlainTextEdit::WidgetWidth : QPlainTextEdit::NoWrap);
    setTabChangesFocus(true);
    viewport()->setAutoFillBackground(false);
}

void TextViewer::setText(const QString& text) {
    const QString shown = withoutLongLines(text);
    if (shown == m_text) return;
    m_text = shown;
    m_shown = 0;
    clear();
    appendPiece();
    moveCursor(QTextCursor::Start);
}

void TextViewer::appendPiece() {
    qsizetype end = std::min(m_shown + pieceSize, m_text.size());
    // Whole lines, so that no line is laid out twice.
    const qsizetype lineEnd = m_text.lastIndexOf(u'\n', end - 1);
    if (end < m_text.size() && lineEnd >= m_shown) end = lineEnd + 1;
    QTextCursor cursor(document());
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(m_text.mid(m_shown, end - m_shown));
    m_shown = end;
    if (m_shown < m_text.size())
        m_timer.start(0, this);
    else
        m_timer.stop();
}

void TextViewer::timerEvent(QTimerEvent* event) {
    if (event->timerId() == m_timer.timerId())
        appendPiece();
    else
        QPlainTextEdit::timerEvent(event);
}

}  // namespace orvo
