#include "appearance/controls/Spinner.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/painting.h"

#include <QPainter>
#include <QStyle>
#include <QTimerEvent>

namespace orvo {

Spinner::Spinner(QWidget* parent) : QWidget(parent) {
    setFixedSize(16, 16);
}

void Spinner::showEvent(QShowEvent*) {
    if (style()->styleHint(QStyle::SH_Widget_Animate, nullptr, this) == 0) return;
    m_clock.start();
    m_timer.start(33, this);
}

void Spinner::hideEvent(QHideEvent*) {
    m_timer.stop();
}

void Spinner::timerEvent(QTimerEvent* event) {
    if (event->timerId() == m_timer.timerId()) update();
}

void Spinner::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor color = toQColor(rolesOf(this).accent);
    const QRectF ring = QRectF(rect()).adjusted(1, 1, -1, -1);
    QColor faint = color;
    faint.setAlphaF(0.25F);
    painter.setPen(QPen(faint, 1.5));
    painter.drawEllipse(ring);
    painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap));
    // Qt counts sixteenths of a degree, against the clock.
    const int turn = m_timer.isActive() ? static_cast<int>(m_clock.elapsed() % 1000) : 0;
    painter.drawArc(ring, 90 * 16 - turn * 360 * 16 / 1000, -90 * 16);
}

}  // namespace orvo
