#include "appearance/controls/ElidedLabel.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/lineText.h"

#include <QHelpEvent>
#include <QToolTip>

namespace orvo {

ElidedLabel::ElidedLabel(const QString& text, TypeRole type, Ink ink, QWidget* parent)
    : TextLabel(text, type, ink, parent) {}

void ElidedLabel::setElideMode(Qt::TextElideMode mode) {
    m_mode = mode;
    update();
}

bool ElidedLabel::isElided() const {
    return measureText(font(), text()) > contentsRect().width();
}

QSize ElidedLabel::minimumSizeHint() const {
    return {24, TextLabel::minimumSizeHint().height()};
}

bool ElidedLabel::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        if (isElided()) {
            QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), plainToolTip(text()), this);
        } else {
            QToolTip::hideText();
            event->ignore();
        }
        return true;
    }
    return TextLabel::event(event);
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    paintLine(m_mode);
}

}  // namespace orvo
