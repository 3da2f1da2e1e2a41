#pragma once

#include "appearance/controls/Paragraph.h"

namespace orvo {

/// Running text of which a part can be selected with the pointer (a word by a double click)
/// and copied, with Ctrl+C or the context menu.
class SelectableText final : public Paragraph {
    Q_OBJECT

public:
    explicit SelectableText(const QString& text, TypeRole type = TypeRole::Body, Ink ink = Ink::Text,
                            QWidget* parent = nullptr);

    QString selectedText() const;
    void selectAll();

protected:
    QList<QTextLayout::FormatRange> marks() const override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void select(int anchor, int caret);
    void copy() const;

    // Positions in the text; equal when nothing is selected.
    int m_anchor = 0;
    int m_caret = 0;
};

}  // namespace orvo
