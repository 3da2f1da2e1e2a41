#include "appearance/controls/CheckRow.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/lineText.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"
#include "appearance/controls/typography.h"

#include <QPainter>
#include <QSignalBlocker>
#include <QStyleOption>

namespace orvo {
namespace {

constexpr int padding = 6;
constexpr int box = 16;
constexpr int gap = 10;

}  // namespace

CheckRow::CheckRow(const QString& icon, Rgb color, const QString& name, QWidget* parent)
    : Pressable(name, parent), m_icon(icon), m_color(color) {
    setCheckable(true);
    setFont(fontOf(TypeRole::Control));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::toggled, this, &CheckRow::report);
    prepareSymbol(icon, box);
}

void CheckRow::setState(bool ready, bool on) {
    const QSignalBlocker quiet(this);
    m_ready = ready;
    setChecked(ready && on);
    update();
}

// Assistive technology toggles the state itself, so the rule stands here and not where clicks arrive.
void CheckRow::report(bool on) {
    if (m_ready) {
        Q_EMIT chosen(on);
        return;
    }
    {
        const QSignalBlocker quiet(this);
        setChecked(false);
    }
    if (on) Q_EMIT setupRequested();
}

QSize CheckRow::sizeHint() const {
    return {2 * padding + 2 * box + 2 * gap + measureText(font(), title()), 32};
}

QSize CheckRow::minimumSizeHint() const {
    return {2 * padding + 2 * box + 2 * gap + 24, 32};
}

void CheckRow::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    painter.setOpacity(controlOpacity());
    const QColor fill =
        isDown() ? toQColor(roles.pressed) : blended(Qt::transparent, toQColor(roles.hover), hover());
    fillRounded(painter, rect(), 8, fill);
    if (isFocusVisible()) strokeRing(painter, rect(), 8, toQColor(roles.accent));

    QStyleOption check;
    check.initFrom(this);
    check.state.setFlag(QStyle::State_On, isChecked());
    check.state.setFlag(QStyle::State_MouseOver, false);
    check.state.setFlag(QStyle::State_HasFocus, false);
    check.state.setFlag(QStyle::State_Enabled, true);  // the row fades as a whole
    check.rect = QRect(padding, (height() - box) / 2, box, box);
    style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &check, &painter, this);

    const int iconX = padding + box + gap;
    paintSymbol(painter, QRectF(iconX, 0, box, height()), m_icon,
                toQColor(m_ready ? symbolColor(m_color, roles) : roles.muted), box);
    painter.setPen(toQColor(m_ready ? roles.text : roles.muted));
    const QRect text = rect().adjusted(iconX + box + gap, 0, -padding, 0);
    paintText(painter, text, Qt::AlignVCenter, title());
}

}  // namespace orvo
