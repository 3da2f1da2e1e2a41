#pragma once

#include "appearance/controls/Caret.h"
#include "files/CodeText.h"
#include "files/ui/CodeHighlighter.h"

#include <QList>
#include <QPlainTextEdit>

namespace orvo {

class CodeLayout;
class LineRuler;

/// Code to write: plain text in colours, with line numbers. Tab indents here, so Ctrl+Tab moves the focus on.
class CodeEditor final : public QPlainTextEdit {
    Q_OBJECT

public:
    /// `label` is the accessible name.
    explicit CodeEditor(const QString& label, QWidget* parent = nullptr);
    ~CodeEditor() override;

    /// The text, unit for unit what it was given but for what the person has changed.
    QString text() const { return m_text.text(); }
    /// Another text: the caret at its beginning, nothing to undo.
    void open(const QString& text);
    /// Shows a text of the model's. The one that is there already leaves caret and undo steps alone; of
    /// another, only what differs is replaced, as one step to undo.
    void setText(const QString& text);
    /// Why the text has no colours; empty while it has them.
    QString plainReason() const;

    /// In dip; what zooming starts from.
    void setFontSize(double size);
    const QColor& background() const { return m_background; }
    void setBackground(const QColor& color);
    /// For an editor at the foot of a card: its lower corners are round.
    void setBottomRadius(double radius);

    /// The number of the line the caret is in, and of the last one.
    int currentLine() const;
    int lastLine() const;
    /// Puts the caret at the beginning of a line and shows it; the last line for greater numbers.
    void goToLine(int number);

    enum class Search {
        /// From the beginning of the selection on.
        Here,
        Next,
        Previous,
    };
    /// Selects a place where `text` stands, whatever its case, going on at the other end of the editor's
    /// text. False when there is none.
    bool find(const QString& text, Search search);
    struct Matches {
        qsizetype count = 0;
        /// Which of them is selected, from 1; 0 for none.
        qsizetype current = 0;
    };
    Matches matches(const QString& text) const;
    /// Marks the places where `text` stands, as long as they are not too many to help.
    void setSearched(const QString& text);

    struct NumberedLine {
        int number;
        /// Of the first row of a wrapped line, in the viewport.
        double top;
        double height;
    };
    /// The lines that begin in the part to be seen.
    QList<NumberedLine> visibleLines() const;
    /// Fills `area` of the editor, leaving out a round lower corner.
    void fillGround(QPainter& painter, const QRect& area, Qt::Corner corner, const QColor& color) const;

public Q_SLOTS:
    void zoomBy(int steps);
    void resetZoom();

Q_SIGNALS:
    /// The person has changed the text.
    void textEdited();
    /// Another text shows, for whatever reason.
    void textShown();
    void focusChanged(bool focused);

protected:
    QMimeData* createMimeDataFromSelection() const override;
    void insertFromMimeData(const QMimeData* source) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    QString shownLines() const;
    /// Whether the document has changed and `m_text` is not that far yet.
    bool isBehind() const;
    void adoptEdit();
    void recolor();
    void colorVisibleBlocks();
    void placeRuler();
    void adoptFont();
    void paintSelectionGaps(QPainter& painter) const;
    /// Calls `visit(block, top)` for what is in view, until it answers false.
    template <class Visit>
    void visitVisibleBlocks(Visit visit) const;
    bool isAtPartedLine(QTextCursor::MoveOperation side) const;

    CodeLayout* m_layout;
    LineRuler* m_ruler;
    Caret m_caret;
    CodeText m_text;
    CodeHighlighter m_highlighter;
    QColor m_background;
    double m_bottomRadius = 0;
    double m_fontSize = 13;
    int m_zoom = 0;
    // The editor itself changes the document: nobody has typed.
    bool m_updating = false;
};

}  // namespace orvo
