#include "appearance/controls/Switch.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/lineText.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/typography.h"

#include <QPainter>

namespace orvo {
namespace {

constexpr int trackWidth = 36;
constexpr int trackHeight = 20;
constexpr int knob = 14;
constexpr int gap = 12;

}  // namespace

Switch::Switch(const QString& title, QWidget* parent) : Pressable(title, parent), m_position(this) {
    setCheckable(true);
    setFont(fontOf(TypeRole::Body));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QSize Switch::sizeHint() const {
    const int label = title().isEmpty() ? 0 : measureText(font(), title()) + gap;
    return {label + trackWidth, 32};
}

// Both ways of changing end here: the program's and, through `toggle`, the person's.
void Switch::checkStateSet() {
    m_position.to(isChecked() ? 1 : 0);
}

void Switch::nextCheckState() {
    Pressable::nextCheckState();
    m_position.to(isChecked() ? 1 : 0);
}

void Switch::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    painter.setOpacity(controlOpacity());
    if (!title().isEmpty()) {
        painter.setPen(toQColor(roles.text));
        paintText(painter, rect().adjusted(0, 0, -trackWidth - gap, 0), Qt::AlignVCenter, title());
    }
    const QRectF track(width() - trackWidth, (height() - trackHeight) / 2.0, trackWidth, trackHeight);
    const double on = m_position.value();
    fillRounded(painter, track, trackHeight / 2.0,
                blended(toQColor(roles.hover), toQColor(roles.accent), on));
    const QColor outline = blended(toQColor(roles.controlOutline), toQColor(roles.text), hover());
    if (isFocusVisible()) {
        strokeRing(painter, track, trackHeight / 2.0, toQColor(isChecked() ? roles.text : roles.accent));
    } else {
        strokeRounded(painter, track, trackHeight / 2.0,
                      blended(outline, toQColor(hover() > 0 ? roles.accentHover : roles.accent), on));
    }
    const double x = track.left() + 3 + on * (trackWidth - knob - 6);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(blended(toQColor(roles.muted), toQColor(roles.onAccent), on));
    painter.drawEllipse(QRectF(x, track.top() + 3, knob, knob));
}

}  // namespace orvo
