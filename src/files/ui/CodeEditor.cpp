#include "files/ui/CodeEditor.h"

#include "appearance/codeColors.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/typography.h"
#include "files/ui/CodeLayout.h"
#include "files/ui/LineRuler.h"
#include "files/ui/indentation.h"

#include <QMimeData>
#include <QPainter>
#include <QScopedValueRollback>
#include <QTextBlock>

#include <algorithm>
#include <cmath>

namespace orvo {
namespace {

constexpr int inset = 15;
constexpr double lineFactor = 1.5;
constexpr int tabColumns = 4;
constexpr double smallestFont = 8;
constexpr double largestFont = 40;
constexpr qsizetype mostMarks = 1'000;

/// A document's text as it is kept in blocks, but with line feeds between them.
QString withLineFeeds(QString raw) {
    return raw.replace(QChar::ParagraphSeparator, u'\n');
}

}  // namespace

CodeEditor::CodeEditor(const QString& label, QWidget* parent)
    : QPlainTextEdit(parent), m_ruler(new LineRuler(*this)), m_caret(this) {
    setAccessibleName(label);
    auto* const document = new QTextDocument(this);
    m_layout = new CodeLayout(document);
    document->setDocumentLayout(m_layout);
    document->setDocumentMargin(inset);
    setDocument(document);
    setFrameShape(QFrame::NoFrame);
    setLineWrapMode(QPlainTextEdit::WidgetWidth);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setCursorWidth(0);  // the caret is painted below, in the accent
    viewport()->setAutoFillBackground(false);
    setBackground(toQColor(rolesOf(this).bg));
    QPalette colors = palette();
    colors.setColor(QPalette::Text, toQColor(CodeColors().text));
    setPalette(colors);
    adoptFont();

    connect(this, &QPlainTextEdit::cursorPositionChanged, this, [this] { m_caret.restart(); });
    connect(this, &QPlainTextEdit::textChanged, this, &CodeEditor::adoptEdit);
    connect(this, &QPlainTextEdit::blockCountChanged, this, &CodeEditor::placeRuler);
    connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect& rect, int dy) {
        m_ruler->update(0, dy == 0 ? rect.y() : 0, m_ruler->width(), dy == 0 ? rect.height() : height());
        colorVisibleBlocks();
    });
    placeRuler();
}

CodeEditor::~CodeEditor() = default;

// The document's own plain text would turn no-break spaces into spaces.
QString CodeEditor::shownLines() const {
    return withLineFeeds(document()->toRawText());
}

void CodeEditor::open(const QString& text) {
    {
        const QScopedValueRollback updating(m_updating, true);
        m_text = CodeText(text);
        setPlainText(m_text.lines());
    }
    recolor();
}

void CodeEditor::setText(const QString& text) {
    if (text == this->text()) return;
    const CodeText next(text);
    const QString& shown = m_text.lines();
    const QString& lines = next.lines();
    const auto start = std::ranges::mismatch(shown, lines).in1 - shown.begin();
    const auto room = std::min(shown.size(), lines.size()) - start;
    const auto tail =
        std::mismatch(shown.rbegin(), shown.rbegin() + room, lines.rbegin()).first - shown.rbegin();
    QTextCursor cursor(document());
    cursor.setPosition(static_cast<int>(start));
    cursor.setPosition(static_cast<int>(shown.size() - tail), QTextCursor::KeepAnchor);
    {
        const QScopedValueRollback updating(m_updating, true);
        cursor.insertText(lines.sliced(start, lines.size() - tail - start));
        m_text.replaceBy(next);
    }
    recolor();
}

QString CodeEditor::plainReason() const {
    if (m_text.hasLongLine()) return tr("No colours: a line is longer than 20,000 characters.");
    if (m_text.lines().size() >= CodeColoring::longestText)
        return tr("No colours: the text has 200,000 characters or more.");
    return {};
}

// Whatever has changed the document, by hand, by undoing, through the accessibility tree.
void CodeEditor::adoptEdit() {
    if (m_updating) return;
    const QString lines = shownLines();
    // Colours count as changes of the document, too.
    if (lines == m_text.lines()) return;
    m_text.setLines(lines);
    recolor();
    Q_EMIT textEdited();
}

void CodeEditor::recolor() {
    m_highlighter.setText(m_text.lines(), plainReason().isEmpty());
    colorVisibleBlocks();
    Q_EMIT textShown();
}

// While the document changes, it asks for paint and moves the cursor before it tells of the change.
bool CodeEditor::isBehind() const {
    return textCursor().isNull() || document()->characterCount() - 1 != m_text.lines().size();
}

template <class Visit>
void CodeEditor::visitVisibleBlocks(Visit visit) const {
    QTextBlock block = firstVisibleBlock();
    double top = blockBoundingGeometry(block).translated(contentOffset()).top();
    for (; block.isValid() && top <= viewport()->height(); block = block.next()) {
        if (!visit(block, top)) return;
        top += blockBoundingRect(block).height();
    }
}

void CodeEditor::colorVisibleBlocks() {
    if (m_updating || isBehind()) return;
    const QScopedValueRollback updating(m_updating, true);
    visitVisibleBlocks([this](const QTextBlock& block, double) {
        if (m_highlighter.color(block)) document()->markContentsDirty(block.position(), block.length() - 1);
        return true;
    });
}

void CodeEditor::setFontSize(double size) {
    m_fontSize = size;
    adoptFont();
}

void CodeEditor::zoomBy(int steps) {
    const double size = std::clamp(m_fontSize + m_zoom + steps, smallestFont, largestFont);
    m_zoom = static_cast<int>(std::lround(size - m_fontSize));
    adoptFont();
}

void CodeEditor::resetZoom() {
    m_zoom = 0;
    adoptFont();
}

void CodeEditor::adoptFont() {
    const double size = m_fontSize + m_zoom;
    m_layout->setPitch(std::round(size * lineFactor));
    setFont(codeFont(size));
    setTabStopDistance(tabColumns * fontMetrics().horizontalAdvance(u' '));
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

int CodeEditor::currentLine() const {
    return static_cast<int>(m_text.numberOf(textCursor().blockNumber()));
}

int CodeEditor::lastLine() const {
    return static_cast<int>(m_text.numberOf(blockCount() - 1));
}

void CodeEditor::goToLine(int number) {
    const auto index = static_cast<int>(m_text.indexOf(number));
    setTextCursor(QTextCursor(document()->findBlockByNumber(index)));
    centerCursor();
}

// Positions in the editor's lines are those of the document.
bool CodeEditor::find(const QString& text, Search search) {
    const QString& lines = m_text.lines();
    const qsizetype start = textCursor().selectionStart();
    qsizetype found = -1;
    if (text.isEmpty() || isBehind()) return false;
    if (search == Search::Previous) {
        if (start > 0) found = lines.lastIndexOf(text, start - 1, Qt::CaseInsensitive);
        if (found < 0) found = lines.lastIndexOf(text, -1, Qt::CaseInsensitive);
    } else {
        const bool isPast = search == Search::Next && textCursor().hasSelection();
        found = lines.indexOf(text, start + (isPast ? 1 : 0), Qt::CaseInsensitive);
        if (found < 0) found = lines.indexOf(text, 0, Qt::CaseInsensitive);
    }
    if (found < 0) return false;
    QTextCursor cursor(document());
    cursor.setPosition(static_cast<int>(found));
    cursor.setPosition(static_cast<int>(found + text.size()), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    return true;
}

CodeEditor::Matches CodeEditor::matches(const QString& text) const {
    if (text.isEmpty() || isBehind()) return {};
    const QStringView lines(m_text.lines());
    const QTextCursor cursor = textCursor();
    const QStringView selected =
        lines.sliced(cursor.selectionStart(), cursor.selectionEnd() - cursor.selectionStart());
    Matches found{.count = lines.count(text, Qt::CaseInsensitive)};
    if (selected.compare(text, Qt::CaseInsensitive) == 0)
        found.current = lines.first(cursor.selectionEnd()).count(text, Qt::CaseInsensitive);
    return found;
}

void CodeEditor::setSearched(const QString& text) {
    if (isBehind()) return;
    QList<QTextEdit::ExtraSelection> places;
    const QString& lines = m_text.lines();
    const QColor mark = toQColor(rolesOf(this).selected);
    for (qsizetype at = 0; !text.isEmpty() && places.size() <= mostMarks;) {
        at = lines.indexOf(text, at, Qt::CaseInsensitive);
        if (at < 0) break;
        QTextEdit::ExtraSelection place;
        place.cursor = QTextCursor(document());
        place.cursor.setPosition(static_cast<int>(at));
        at += text.size();
        place.cursor.setPosition(static_cast<int>(at), QTextCursor::KeepAnchor);
        place.format.setBackground(mark);
        places.append(place);
    }
    if (places.size() > mostMarks) places.clear();
    setExtraSelections(places);
}

QList<CodeEditor::NumberedLine> CodeEditor::visibleLines() const {
    QList<NumberedLine> lines;
    auto number = static_cast<int>(m_text.numberOf(firstVisibleBlock().blockNumber()));
    if (m_text.isContinuation(firstVisibleBlock().blockNumber())) ++number;
    visitVisibleBlocks([&](const QTextBlock& block, double top) {
        if (!m_text.isContinuation(block.blockNumber())) lines.append({number++, top, m_layout->pitch()});
        return true;
    });
    return lines;
}

void CodeEditor::placeRuler() {
    const int width = LineRuler::widthFor(blockCount());
    setViewportMargins(width, 0, 0, 0);
    m_ruler->setGeometry(0, 0, width, height());
}

// Selected text leaves as it is, with plain line feeds, and without the breaks of overlong lines.
QMimeData* CodeEditor::createMimeDataFromSelection() const {
    const QTextCursor cursor = textCursor();
    QString text;
    QTextBlock block = document()->findBlock(cursor.selectionStart());
    const QTextBlock last = document()->findBlock(cursor.selectionEnd());
    for (; block.isValid(); block = block.next()) {
        const int from = std::max(cursor.selectionStart() - block.position(), 0);
        const int to = std::min(cursor.selectionEnd() - block.position(), block.length() - 1);
        text += QStringView(block.text()).sliced(from, to - from);
        if (block == last) break;
        if (!m_text.isContinuation(block.blockNumber() + 1)) text += u'\n';
    }
    auto* const copied = new QMimeData;
    copied->setText(text);
    return copied;
}

void CodeEditor::insertFromMimeData(const QMimeData* source) {
    if (!source->hasText()) return;
    const CodeText inserted(source->text());
    QTextCursor cursor = textCursor();
    const int first = document()->findBlock(cursor.selectionStart()).blockNumber();
    if (!inserted.hasLongLine()) {
        cursor.insertText(inserted.lines());
    } else {
        {
            const QScopedValueRollback updating(m_updating, true);
            cursor.insertText(inserted.lines());
            m_text.insertParted(shownLines(), inserted, first);
        }
        recolor();
        Q_EMIT textEdited();
    }
    setTextCursor(cursor);
    ensureCursorVisible();
}

void CodeEditor::focusInEvent(QFocusEvent* event) {
    QPlainTextEdit::focusInEvent(event);
    Q_EMIT focusChanged(true);
}

void CodeEditor::focusOutEvent(QFocusEvent* event) {
    QPlainTextEdit::focusOutEvent(event);
    Q_EMIT focusChanged(false);
}

/// Whether the caret stands, with nothing selected, at the break of an overlong line on that side.
bool CodeEditor::isAtPartedLine(QTextCursor::MoveOperation side) const {
    const QTextCursor cursor = textCursor();
    if (cursor.hasSelection()) return false;
    if (side == QTextCursor::Left)
        return cursor.atBlockStart() && m_text.isContinuation(cursor.blockNumber());
    return cursor.atBlockEnd() && m_text.isContinuation(cursor.blockNumber() + 1);
}

void CodeEditor::keyPressEvent(QKeyEvent* event) {
    const bool isControl = event->modifiers().testFlag(Qt::ControlModifier);
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            // With Shift, too: Qt would put in a line separator, which is no end of a line in a file.
            if (isControl || isReadOnly()) break;
            setTextCursor(insertIndentedLine(textCursor()));
            return;
        case Qt::Key_Tab:
        case Qt::Key_Backtab: {
            const bool isForward = event->key() == Qt::Key_Tab;
            // The base class of text editors would not let the focus go.
            if (isControl || isReadOnly())
                // NOLINTNEXTLINE(bugprone-parent-virtual-call)
                QAbstractScrollArea::focusNextPrevChild(isForward);
            else
                setTextCursor(isForward ? indent(textCursor()) : outdent(textCursor()));
            return;
        }
        case Qt::Key_Backspace:
        case Qt::Key_Delete: {
            // The break is not in the text, so the key takes the character beyond it.
            const bool isBack = event->key() == Qt::Key_Backspace;
            if (isReadOnly() || !isAtPartedLine(isBack ? QTextCursor::Left : QTextCursor::Right)) break;
            QTextCursor cursor = textCursor();
            const auto side = isBack ? QTextCursor::PreviousCharacter : QTextCursor::NextCharacter;
            cursor.movePosition(side, QTextCursor::KeepAnchor, 2);
            cursor.removeSelectedText();
            return;
        }
        case Qt::Key_Plus:
        case Qt::Key_Equal:
            if (!isControl) break;
            zoomBy(1);
            return;
        case Qt::Key_Minus:
            if (!isControl) break;
            zoomBy(-1);
            return;
        case Qt::Key_0:
            if (!isControl) break;
            resetZoom();
            return;
        default:
            break;
    }
    QPlainTextEdit::keyPressEvent(event);
}

void CodeEditor::wheelEvent(QWheelEvent* event) {
    if (!event->modifiers().testFlag(Qt::ControlModifier)) {
        QPlainTextEdit::wheelEvent(event);
        return;
    }
    if (event->angleDelta().y() != 0) zoomBy(event->angleDelta().y() > 0 ? 1 : -1);
    event->accept();
}

// Qt fills a selection as high as the font; between lines that stand further apart, bars would be left out.
void CodeEditor::paintSelectionGaps(QPainter& painter) const {
    const QTextCursor cursor = textCursor();
    if (!cursor.hasSelection()) return;
    const QColor fill = palette().color(QPalette::Highlight);
    const double left = contentOffset().x();
    visitVisibleBlocks([&](const QTextBlock& block, double top) {
        const int from = cursor.selectionStart() - block.position();
        const int to = cursor.selectionEnd() - block.position();
        const QTextLayout& layout = *block.layout();
        for (int index = 0; index < layout.lineCount() && to > 0 && from < block.length(); ++index) {
            const QTextLine line = layout.lineAt(index);
            const int first = std::max(from, line.textStart());
            const int last = std::min(to, line.textStart() + line.textLength());
            if (first >= last) continue;
            const double start = line.cursorToX(first);
            painter.fillRect(QRectF(left + start, top + index * m_layout->pitch(),
                                    line.cursorToX(last) - start, m_layout->pitch()),
                             fill);
        }
        return block.position() < cursor.selectionEnd();
    });
}

void CodeEditor::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(viewport());
        fillGround(painter, viewport()->rect(), Qt::BottomRightCorner, m_background);
        paintSelectionGaps(painter);
    }
    QPlainTextEdit::paintEvent(event);
    if (!m_caret.isLit() || isReadOnly()) return;
    QPainter painter(viewport());
    m_caret.paint(painter, cursorRect());
}

void CodeEditor::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    placeRuler();
    colorVisibleBlocks();
}

}  // namespace orvo
