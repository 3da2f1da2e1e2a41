#include "appearance/controls/Divider.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/painting.h"

#include <QPainter>

namespace orvo {

Divider::Divider(Qt::Orientation orientation, QWidget* parent) : QWidget(parent) {
    if (orientation == Qt::Horizontal) {
        setFixedHeight(1);
    } else {
        setFixedWidth(1);
    }
}

void Divider::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), toQColor(rolesOf(this).border));
}

}  // namespace orvo
