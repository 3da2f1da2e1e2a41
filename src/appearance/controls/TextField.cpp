#include "appearance/controls/TextField.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"
#include "appearance/controls/typography.h"

#include <QPainter>

namespace orvo {

TextField::TextField(const QString& placeholder, QWidget* parent) : QLineEdit(parent), m_caret(this) {
    setFont(fontOf(TypeRole::Body));
    setPlaceholderText(placeholder);
    setFixedHeight(32);
    connect(this, &QLineEdit::cursorPositionChanged, this, [this] { m_caret.restart(); });
    connect(this, &QLineEdit::textChanged, this, [this] { m_caret.restart(); });
}

void TextField::setIcon(const QString& icon) {
    m_icon = icon;
    // The symbol takes 16 and a gap of 8 before the text.
    setTextMargins(icon.isEmpty() ? 0 : 24, 0, 0, 0);
    update();
}

void TextField::setInvalid(bool invalid) {
    if (invalid == m_invalid) return;
    m_invalid = invalid;
    update();
}

void TextField::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    QPainter painter(this);
    if (m_caret.isLit() && !isReadOnly()) m_caret.paint(painter, cursorRect());
    if (m_icon.isEmpty()) return;
    if (!isEnabled()) painter.setOpacity(0.4);
    paintSymbol(painter, QRectF(10, 0, 16, height()), m_icon, toQColor(rolesOf(this).muted), 16);
}

}  // namespace orvo
