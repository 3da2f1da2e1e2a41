#pragma once

#include "appearance/controls/Caret.h"

#include <QList>
#include <QPlainTextEdit>

namespace orvo {

class LineRuler;

/// Code to write: plain text with line numbers. Tab indents here; Ctrl+Tab moves on.
class CodeEditor final : public QPlainTextEdit {
    Q_OBJECT

public:
    /// `label` is the accessible name.
    explicit CodeEditor(const QString& label, QWidget* parent = nullptr);
    ~CodeEditor() override;

    /// The text with its line ends as they were given.
    QString text() const;
    /// Another text: the caret at its beginning, nothing to undo.
    void open(const QString& text);
    /// Shows a text of the model's. The one that is there already leaves caret and undo steps alone; of
    /// another, only what differs is replaced, as one step to undo.
    void setText(const QString& text);

    /// In dip.
    void setFontSize(double size);
    const QColor& background() const { return m_background; }
    void setBackground(const QColor& color);
    /// For an editor at the foot of a card: its lower corners are round.
    void setBottomRadius(double radius);

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

Q_SIGNALS:
    /// The person has changed the text.
    void textEdited();
    void focusChanged(bool focused);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void reportEdit();
    void placeRuler();

    LineRuler* m_ruler;
    Caret m_caret;
    QColor m_background;
    double m_bottomRadius = 0;
    // The editor itself changes the document: nobody has typed.
    bool m_updating = false;
};

}  // namespace orvo
