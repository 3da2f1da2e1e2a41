#include "appearance/controls/TextLabel.h"

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
    return {QLabel::sizeHint().width(), m_lineHeight};
}
QSize TextLabel::minimumSizeHint() const {
    return {QLabel::minimumSizeHint().width(), m_lineHeight};
}

}  // namespace orvo
