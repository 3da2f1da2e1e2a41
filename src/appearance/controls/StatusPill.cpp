#include "appearance/controls/StatusPill.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/lineText.h"
#include "appearance/controls/typography.h"

#include <QPainter>

namespace orvo {
namespace {

constexpr int pillHeight = 20;
constexpr int padding = 8;
constexpr int dot = 6;
constexpr int gap = 6;

Rgb colorOf(const Roles& roles, Ink ink) {
    switch (ink) {
        case Ink::Text:
            return roles.text;
        case Ink::Muted:
            return roles.muted;
        case Ink::Accent:
            return roles.accent;
        case Ink::Danger:
            return roles.danger;
    }
    Q_UNREACHABLE();
}

}  // namespace

StatusPill::StatusPill(const QString& title, Ink color, QWidget* parent) : QWidget(parent), m_color(color) {
    setFont(fontOf(TypeRole::Badge));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setStatus(title, color);
}

void StatusPill::setStatus(const QString& title, Ink color) {
    if (title == m_title && color == m_color) return;
    m_title = title;
    m_color = color;
    setAccessibleName(title);
    updateGeometry();
    update();
}

QSize StatusPill::sizeHint() const {
    return {2 * padding + dot + gap + measureText(font(), m_title), pillHeight};
}

void StatusPill::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    const Rgb color = colorOf(roles, m_color);
    QPainter painter(this);
    if (!isEnabled()) painter.setOpacity(0.4);
    fillRounded(painter, rect(), height() / 2.0, toQColor(roles.pillOf(color)));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(toQColor(color));
    painter.drawEllipse(QRectF(padding, (height() - dot) / 2.0, dot, dot));
    painter.setPen(toQColor(color));
    paintText(painter, rect().adjusted(padding + dot + gap, 0, 0, 0), Qt::AlignVCenter, m_title);
}

}  // namespace orvo
