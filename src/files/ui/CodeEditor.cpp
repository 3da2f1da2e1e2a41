#include "files/ui/CodeEditor.h"

#include "appearance/codeColors.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/typography.h"
#include "files/ui/LineRuler.h"

#include <QPainter>
#include <QPainterPath>
#include <QScopedValueRollback>
#include <QTextBlock>

#include <algorithm>

namespace orvo {
namespace {

constexpr int inset = 15;

}  // namespace

CodeEditor::CodeEditor(const QString& label, QWidget* parent)
    : QPlainTextEdit(parent), m_ruler(new LineRuler(*this)), m_caret(this) {
    setAccessibleName(label);
    setFrameShape(QFrame::NoFrame);
    setLineWrapMode(QPlainTextEdit::WidgetWidth);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setCursorWidth(0);  // the caret is painted below, in the accent
    document()->setDocumentMargin(inset);
    viewport()->setAutoFillBackground(false);
    setBackground(toQColor(rolesOf(this).bg));
    QPalette colors = palette();
    colors.setColor(QPalette::Text, toQColor(CodeColors().text));
    setPalette(colors);
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, [this] { m_caret.restart(); });
    connect(this, &QPlainTextEdit::textChanged, this, &CodeEditor::reportEdit);
    connect(this, &QPlainTextEdit::blockCountChanged, this, &CodeEditor::placeRuler);
    connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect& rect, int dy) {
        if (dy != 0)
            m_ruler->update();
        else
            m_ruler->update(0, rect.y(), m_ruler->width(), rect.height());
    });
    placeRuler();
}

CodeEditor::~CodeEditor() = default;

QString CodeEditor::text() const {
    // The document's own plain text would turn no-break spaces into spaces.
    return document()->toRawText().replace(QChar::ParagraphSeparator, u'\n');
}

void CodeEditor::open(const QString& text) {
    const QScopedValueRollback updating(m_updating, true);
    setPlainText(text);
}

void CodeEditor::setText(const QString& text) {
    const QString shown = this->text();
    if (shown == text) return;
    const QScopedValueRollback updating(m_updating, true);
    const auto start = std::ranges::mismatch(shown, text).in1 - shown.begin();
    qsizetype tail = 0;
    const qsizetype longestTail = std::min(shown.size(), text.size()) - start;
    while (tail < longestTail && shown[shown.size() - 1 - tail] == text[text.size() - 1 - tail])
        ++tail;
    QTextCursor cursor(document());
    cursor.setPosition(static_cast<int>(start));
    cursor.setPosition(static_cast<int>(shown.size() - tail), QTextCursor::KeepAnchor);
    cursor.insertText(text.mid(start, text.size() - tail - start));
}

void CodeEditor::setFontSize(double size) {
    setFont(codeFont(size));
    setTabStopDistance(4 * fontMetrics().horizontalAdvance(u' '));
}

void CodeEditor::setBackground(const QColor& color) {
    m_background = color;
    viewport()->update();
    m_ruler->update();
}

void CodeEditor::setBottomRadius(double radius) {
    m_bottomRadius = radius;
    viewport()->update();
    m_ruler->update();
}

void CodeEditor::fillGround(QPainter& painter, const QRect& area, Qt::Corner corner,
                            const QColor& color) const {
    if (m_bottomRadius == 0) {
        painter.fillRect(area, color);
        return;
    }
    // A round rectangle whose other corners lie beyond the area.
    const int reach = static_cast<int>(m_bottomRadius) + 1;
    const QRect round = corner == Qt::BottomLeftCorner ? area.adjusted(0, -reach, reach, 0)
                                                       : area.adjusted(-reach, -reach, 0, 0);
    painter.save();
    painter.setClipRect(area);
    fillRounded(painter, round, m_bottomRadius, color);
    painter.restore();
}

QList<CodeEditor::NumberedLine> CodeEditor::visibleLines() const {
    QList<NumberedLine> lines;
    for (QTextBlock block = firstVisibleBlock(); block.isValid(); block = block.next()) {
        const QRectF place = blockBoundingGeometry(block).translated(contentOffset());
        if (place.top() > viewport()->height()) break;
        const double height = block.layout()->lineAt(0).height();
        lines.append({block.blockNumber() + 1, place.top(), height});
    }
    return lines;
}

void CodeEditor::reportEdit() {
    if (!m_updating) Q_EMIT textEdited();
}

void CodeEditor::placeRuler() {
    const int width = LineRuler::widthFor(blockCount());
    setViewportMargins(width, 0, 0, 0);
    m_ruler->setGeometry(0, 0, width, height());
}

void CodeEditor::focusInEvent(QFocusEvent* event) {
    QPlainTextEdit::focusInEvent(event);
    Q_EMIT focusChanged(true);
}

void CodeEditor::focusOutEvent(QFocusEvent* event) {
    QPlainTextEdit::focusOutEvent(event);
    Q_EMIT focusChanged(false);
}

void CodeEditor::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(viewport());
        fillGround(painter, viewport()->rect(), Qt::BottomRightCorner, m_background);
    }
    QPlainTextEdit::paintEvent(event);
    if (!m_caret.isLit() || isReadOnly()) return;
    QPainter painter(viewport());
    m_caret.paint(painter, cursorRect());
}

void CodeEditor::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    placeRuler();
}

}  // namespace orvo
