#include "appearance/ui/ColorWell.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/painting.h"

#include <QColorDialog>
#include <QPainter>
#include <QSignalBlocker>

namespace orvo {

ColorWell::ColorWell(const QString& title, QWidget* parent) : Pressable(title, parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, [this] { openPicker(); });
}

void ColorWell::setColor(const QColor& color) {
    if (color == m_color) return;
    m_color = color;
    // For who cannot see it.
    setAccessibleDescription(color.name().toUpper());
    // A colour that comes from the picker must not go back: it would rewrite the digits that are being typed.
    if (m_picker && m_picker->currentColor() != color) {
        const QSignalBlocker quiet(m_picker);
        m_picker->setCurrentColor(color);
    }
    update();
}

void ColorWell::openPicker() {
    if (!m_picker) {
        m_picker = new QColorDialog(m_color, this);
        m_picker->setOptions(QColorDialog::NoButtons | QColorDialog::DontUseNativeDialog);
        m_picker->setWindowTitle(title());
        m_picker->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_picker, &QColorDialog::currentColorChanged, this, &ColorWell::picked);
    }
    m_picker->show();
    m_picker->raise();
    m_picker->activateWindow();
}

void ColorWell::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    painter.setOpacity(controlOpacity());
    if (isFocusVisible()) {
        strokeRing(painter, rect(), 8, toQColor(roles.accent));
    } else {
        strokeRounded(painter, rect(), 8,
                      blended(toQColor(roles.border), toQColor(roles.borderStrong), hover()));
    }
    const QRectF swatch = QRectF(rect()).adjusted(4, 4, -4, -4);
    fillRounded(painter, swatch, 5, m_color);
    strokeRounded(painter, swatch, 5, toQColor(roles.border));
}

}  // namespace orvo
