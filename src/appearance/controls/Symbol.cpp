#include "appearance/controls/Symbol.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/symbols.h"

#include <QPainter>

namespace orvo {

Symbol::Symbol(const QString& name, int size, Ink ink, QWidget* parent)
    : QWidget(parent), m_name(name), m_size(size), m_ink(ink) {
    setFixedSize(size, size);
    prepareSymbol(name, size);
}

void Symbol::setSymbol(const QString& name, Ink ink) {
    if (name == m_name && ink == m_ink) return;
    m_name = name;
    m_ink = ink;
    update();
}

void Symbol::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintSymbol(painter, QRectF(rect()), m_name, inkColor(rolesOf(this), m_ink), m_size);
}

}  // namespace orvo
