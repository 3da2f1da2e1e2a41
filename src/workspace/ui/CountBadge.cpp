#include "workspace/ui/CountBadge.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/lineText.h"

#include <QPainter>

#include <algorithm>

namespace orvo {
namespace {

constexpr int badgeHeight = 20;
constexpr int padding = 6;

}  // namespace

CountBadge::CountBadge(QWidget* parent) : TextLabel(QString(), TypeRole::Badge, Ink::Text, parent) {
    setAlignment(Qt::AlignCenter);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void CountBadge::setCount(qsizetype count) {
    setText(QString::number(count));
    updateGeometry();
}

QSize CountBadge::sizeHint() const {
    return {std::max(badgeHeight, measureText(font(), text()) + 2 * padding), badgeHeight};
}

void CountBadge::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        fillRounded(painter, QRectF(rect()), badgeHeight / 2.0, toQColor(rolesOf(this).countBadge));
    }
    TextLabel::paintEvent(event);
}

}  // namespace orvo
