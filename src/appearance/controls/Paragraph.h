#pragma once

#include "appearance/controls/painting.h"
#include "appearance/controls/typography.h"

#include <QTextLayout>
#include <QWidget>

namespace orvo {

/// Running text with the line distance of the type scale, broken to its width; line breaks in it are kept.
/// Its accessible name is the whole text.
class Paragraph : public QWidget {
    Q_OBJECT

public:
    explicit Paragraph(const QString& text, TypeRole type = TypeRole::Body, Ink ink = Ink::Muted,
                       QWidget* parent = nullptr);

    const QString& text() const { return m_text; }
    void setText(const QString& text);
    void setInk(Ink ink);
    void setAlignment(Qt::Alignment alignment);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    /// Parts of the text that are painted otherwise.
    virtual QList<QTextLayout::FormatRange> marks() const { return {}; }
    /// The position in the text that is nearest to a point of the widget.
    int positionAt(const QPoint& point) const;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// Every width from `narrowest` to `widest` breaks the text at the same places.
    struct Breaks {
        int narrowest;
        int widest;
        int lines;

        bool holdFor(int width) const { return width >= narrowest && width <= widest; }
    };

    /// Shapes the text and breaks it to `width`.
    Breaks breakTo(int width) const;
    int linesAt(int width) const;
    /// Makes the layout what is painted at the widget's width.
    void layOut() const;
    void refreshLayout();

    QString m_text;
    mutable QTextLayout m_layout;
    /// The width that the layout was broken to; 0 for none.
    mutable int m_brokenTo = 0;
    /// What is known of the text, the layout's own last: a page asks for the height at many widths, and
    /// shaping, which every breaking does anew, is what costs.
    mutable QList<Breaks> m_breaks;
    TypeRole m_type;
    Ink m_ink;
    Qt::Alignment m_alignment = Qt::AlignLeft;
};

}  // namespace orvo
