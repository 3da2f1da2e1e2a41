#include "appearance/controls/TextLabel.h"

#include "appearance/controls/lineText.h"

#include <QPainter>

namespace orvo {

TextLabel::TextLabel(const QString& text, TypeRole type, Ink ink, QWidget* parent)
    : QLabel(parent), m_lineHeight(linePitch(type)) {
    setTextFormat(Qt::PlainText);
    setFont(fontOf(type));
    setInk(ink);
    setText(text);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void TextLabel::setInk(Ink ink) {
    switch (ink) {
        case Ink::Text:
            setForegroundRole(QPalette::WindowText);
            break;
        case Ink::Muted:
            setForegroundRole(QPalette::PlaceholderText);
            break;
        case Ink::Accent:
            setForegroundRole(QPalette::Link);
            break;
        case Ink::Danger:
            setForegroundRole(QPalette::BrightText);
            break;
    }
}

void TextLabel::setLineHeight(int height) {
    m_lineHeight = height;
    updateGeometry();
}

QSize TextLabel::sizeHint() const {
    const QMargins edges = contentsMargins();
    return {measureText(font(), text()) + edges.left() + edges.right(), m_lineHeight};
}

QSize TextLabel::minimumSizeHint() const {
    return sizeHint();
}

void TextLabel::paintEvent(QPaintEvent*) {
    paintLine(Qt::ElideNone);
}

void TextLabel::paintLine(Qt::TextElideMode elide) {
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    paintText(painter, contentsRect(), alignment() | Qt::AlignVCenter, text(), elide);
}

}  // namespace orvo
