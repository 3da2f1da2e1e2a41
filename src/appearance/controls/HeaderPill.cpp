#include "appearance/controls/HeaderPill.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/lineText.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"
#include "appearance/controls/typography.h"

#include <QPainter>

namespace orvo {
namespace {

constexpr int padding = 9;
constexpr int glyph = 14;
constexpr int gap = 6;

}  // namespace

HeaderPill::HeaderPill(const QString& icon, const QString& text, QWidget* parent)
    : QWidget(parent), m_icon(icon), m_text(text) {
    setFont(fontOf(TypeRole::Caption));
    setAccessibleName(text);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    prepareSymbol(icon, glyph);
}

QSize HeaderPill::sizeHint() const {
    const int iconWidth = m_icon.isEmpty() ? 0 : glyph + gap;
    return {2 * padding + iconWidth + measureText(font(), m_text), m_icon.isEmpty() ? 22 : 24};
}

void HeaderPill::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    strokeRounded(painter, rect(), height() / 2.0, toQColor(roles.border));
    int x = padding;
    if (!m_icon.isEmpty()) {
        paintSymbol(painter, QRectF(x, 0, glyph, height()), m_icon, toQColor(roles.accent), glyph);
        x += glyph + gap;
    }
    painter.setPen(toQColor(roles.muted));
    paintText(painter, rect().adjusted(x, 0, 0, 0), Qt::AlignVCenter, m_text);
}

}  // namespace orvo
