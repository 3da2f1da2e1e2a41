#include "appearance/controls/ListRow.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/lineText.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/typography.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace orvo {
namespace {

constexpr int padding = 8;

}  // namespace

ListRow::ListRow(const QString& text, QWidget* parent) : Pressable(text, parent) {
    setFont(fontOf(TypeRole::Body));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

bool ListRow::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        if (measureText(font(), title()) > width() - 2 * padding) {
            QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), plainToolTip(title()), this);
        }
        return true;
    }
    return Pressable::event(event);
}

void ListRow::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    painter.setOpacity(controlOpacity());
    fillRounded(
        painter, rect(), 8,
        isDown() ? toQColor(roles.pressed) : blended(Qt::transparent, toQColor(roles.hover), hover()));
    if (isFocusVisible()) strokeRing(painter, rect(), 8, toQColor(roles.accent));
    painter.setPen(blended(toQColor(roles.muted), toQColor(roles.text), hover()));
    const QRect text = rect().adjusted(padding, 0, -padding, 0);
    paintText(painter, text, Qt::AlignVCenter, title());
}

}  // namespace orvo
