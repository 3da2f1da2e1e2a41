#include "appearance/controls/OrvoButton.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/lineText.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"
#include "appearance/controls/typography.h"

#include <QMenu>
#include <QPainter>

namespace orvo {
namespace {

constexpr double radius = 8;
// The mark of a symbol that opens a menu.
constexpr int chevron = 12;
constexpr int chevronGap = 2;

struct Measures {
    int height;
    int padding;
    int icon;
    int gap;
};

Measures measuresOf(OrvoButton::Size size) {
    switch (size) {
        case OrvoButton::Size::Regular:
            return {32, 12, 16, 8};
        case OrvoButton::Size::Small:
            return {28, 10, 16, 6};
        case OrvoButton::Size::Compact:
            return {28, 8, 14, 4};
    }
    Q_UNREACHABLE();
}

}  // namespace

OrvoButton::OrvoButton(const QString& title, const QString& icon, Kind kind, Size size, QWidget* parent)
    : Pressable(title, parent), m_icon(icon), m_kind(kind), m_size(size) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    adoptKind();
    prepareSymbol(icon, measuresOf(size).icon);
}

void OrvoButton::adoptKind() {
    const TypeRole regular = isFilled() ? TypeRole::Name : TypeRole::Control;
    setFont(fontOf(m_size == Size::Regular ? regular : TypeRole::SmallControl));
    if (hidesTitle()) setToolTip(plainToolTip(title()));
    updateGeometry();
    update();
}

void OrvoButton::setIconName(const QString& icon) {
    if (icon == m_icon) return;
    m_icon = icon;
    updateGeometry();
    update();
}

void OrvoButton::setFlush(bool flush) {
    m_flush = flush;
    updateGeometry();
    update();
}

void OrvoButton::setBusy(bool busy) {
    if (busy == m_busy) return;
    m_busy = busy;
    update();
}

void OrvoButton::setMenu(QMenu* menu) {
    m_menu = menu;
    connect(this, &QAbstractButton::clicked, menu, [this, menu] {
        const QPoint corner = mapToGlobal(QPoint(0, height() + 4));
        menu->popup(corner);
    });
}

QSize OrvoButton::sizeHint() const {
    const Measures m = measuresOf(m_size);
    if (m_kind == Kind::MenuOutlined) return {2 * m.padding + m.icon + chevronGap + chevron, m.height};
    if (isSquare()) return {m.height, m.height};
    const int padding = isBare() ? 0 : m.padding;
    int width = 2 * padding + measureText(font(), title());
    if (!m_icon.isEmpty()) width += m.icon + m.gap;
    return {width, m.height};
}

QColor OrvoButton::inkNow() const {
    const Roles& roles = rolesOf(this);
    if (isBusy()) return toQColor(isFilled() ? roles.text : roles.muted);
    switch (m_kind) {
        case Kind::Primary:
            return toQColor(roles.onAccent);
        case Kind::DestructiveFilled:
            return toQColor(roles.onDanger);
        case Kind::Destructive:
            return toQColor(roles.danger);
        case Kind::Link:
            return blended(toQColor(roles.accent), toQColor(roles.accentHover), hover());
        case Kind::Outlined:
            return toQColor(roles.text);
        case Kind::Plain:
        case Kind::Icon:
        case Kind::IconOutlined:
        case Kind::MenuOutlined:
            return blended(toQColor(roles.muted), toQColor(roles.text), hover());
    }
    Q_UNREACHABLE();
}

QColor OrvoButton::iconInkNow() const {
    if (m_kind != Kind::Outlined || isBusy()) return inkNow();
    const Roles& roles = rolesOf(this);
    return blended(toQColor(roles.muted), toQColor(roles.text), hover());
}

void OrvoButton::paintBox(QPainter& painter) const {
    const Roles& roles = rolesOf(this);
    const QRectF box = rect();
    if (isFilled()) {
        const bool danger = m_kind == Kind::DestructiveFilled;
        const QColor rest = toQColor(danger ? roles.danger : roles.accent);
        const QColor lit = toQColor(danger ? roles.dangerFillHover : roles.accentHover);
        const QColor down = toQColor(danger ? roles.dangerFillPressed : roles.accentPressed);
        const QColor fill = isDown() ? down : blended(rest, lit, hover());
        if (isFocusVisible()) {
            // Ring at the edge, two of the backdrop, then the fill.
            fillRounded(painter, box.adjusted(4, 4, -4, -4), radius - 3, fill);
            strokeRing(painter, box, radius, rest);
        } else {
            fillRounded(painter, box, radius, fill);
        }
        return;
    }
    const bool danger = m_kind == Kind::Destructive;
    const QColor clear(Qt::transparent);
    const QColor fill = isBare() ? clear
                        : isDown()
                            ? toQColor(danger ? roles.dangerPressed : roles.pressed)
                            : blended(clear, toQColor(danger ? roles.dangerHover : roles.hover), hover());
    fillRounded(painter, box, radius, fill);
    if (isFocusVisible()) {
        strokeRing(painter, box, radius, toQColor(roles.accent));
    } else if (m_kind == Kind::Outlined || m_kind == Kind::IconOutlined || m_kind == Kind::MenuOutlined) {
        strokeRounded(painter, box, radius,
                      blended(toQColor(roles.border), toQColor(roles.borderStrong), hover()));
    } else if (danger) {
        strokeRounded(painter, box, radius,
                      blended(toQColor(roles.dangerBorder), toQColor(roles.danger), hover()));
    } else if (m_kind == Kind::Icon) {
        strokeRounded(painter, box, radius, blended(clear, toQColor(roles.borderStrong), hover()));
    }
}

void OrvoButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setOpacity(controlOpacity());
    paintBox(painter);
    if (isBusy()) painter.setOpacity(1);

    const Measures m = measuresOf(m_size);
    if (m_kind == Kind::MenuOutlined) {
        const int x = (width() - m.icon - chevronGap - chevron) / 2;
        paintSymbol(painter, QRectF(x, 0, m.icon, height()), m_icon, iconInkNow(), m.icon);
        paintSymbol(painter, QRectF(x + m.icon + chevronGap, 0, chevron, height()),
                    QStringLiteral("chevron.down"), iconInkNow(), chevron);
        return;
    }
    if (isSquare()) {
        paintSymbol(painter, rect(), m_icon, iconInkNow(), m.icon);
        return;
    }
    const int textWidth = measureText(font(), title());
    const int iconWidth = m_icon.isEmpty() ? 0 : m.icon + m.gap;
    int x = (width() - textWidth - iconWidth) / 2;
    if (!m_icon.isEmpty()) {
        paintSymbol(painter, QRectF(x, 0, m.icon, height()), m_icon, iconInkNow(), m.icon);
        x += iconWidth;
    }
    painter.setPen(inkNow());
    paintText(painter, QRect(x, 0, textWidth + 1, height()), Qt::AlignVCenter, title(), Qt::ElideNone);
}

}  // namespace orvo
