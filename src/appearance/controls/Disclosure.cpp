#include "appearance/controls/Disclosure.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/lineText.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"
#include "appearance/controls/typography.h"

#include <QPainter>

namespace orvo {
namespace {

constexpr int rowHeight = 32;
constexpr int chevron = 16;
constexpr int padding = 4;
constexpr int gap = 8;
constexpr int turnTime = 160;
constexpr double quarter = 90;

}  // namespace

Disclosure::Disclosure(const QString& title, QWidget* parent)
    : Pressable(title, parent), m_turn(this, turnTime) {
    setCheckable(true);
    setFont(fontOf(TypeRole::Name));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QSize Disclosure::sizeHint() const {
    return {2 * padding + chevron + gap + measureText(font(), title()), rowHeight};
}

void Disclosure::checkStateSet() {
    m_turn.to(isChecked() ? 1 : 0);
}

void Disclosure::nextCheckState() {
    Pressable::nextCheckState();
    m_turn.to(isChecked() ? 1 : 0);
}

void Disclosure::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    painter.setOpacity(controlOpacity());
    fillRounded(painter, rect(), 8, blended(Qt::transparent, toQColor(roles.hover), hover()));
    if (isFocusVisible()) strokeRing(painter, rect(), 8, toQColor(roles.accent));
    painter.save();
    painter.translate(padding + chevron / 2.0, height() / 2.0);
    painter.rotate(quarter * m_turn.value());
    paintSymbol(painter, QRectF(-chevron / 2.0, -chevron / 2.0, chevron, chevron),
                QStringLiteral("chevron.right"), toQColor(roles.muted), chevron);
    painter.restore();
    painter.setPen(toQColor(roles.text));
    paintText(painter, rect().adjusted(padding + chevron + gap, 0, -padding, 0), Qt::AlignVCenter, title());
}

}  // namespace orvo
