#include "appearance/controls/Paragraph.h"

#include "appearance/controls/OrvoStyle.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace orvo {
namespace {

// Wide enough for a comfortable line where nothing else decides the width.
constexpr int preferredWidth = 480;

}  // namespace

Paragraph::Paragraph(const QString& text, TypeRole type, Ink ink, QWidget* parent)
    : QWidget(parent), m_type(type), m_ink(ink) {
    setFont(fontOf(type));
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setText(text);
}

void Paragraph::setText(const QString& text) {
    if (text == m_text) return;
    m_text = text;
    setAccessibleName(text);
    updateGeometry();
    update();
}

void Paragraph::setInk(Ink ink) {
    m_ink = ink;
    update();
}

void Paragraph::setAlignment(Qt::Alignment alignment) {
    m_alignment = alignment;
    update();
}

int Paragraph::layOut(QTextLayout& layout, int width) const {
    QString text = m_text;
    layout.setText(text.replace(u'\n', QChar::LineSeparator));
    layout.setFont(font());
    QTextOption option(m_alignment);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    int lines = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(std::max(1, width));
        const double slack = paragraphPitch(m_type) - line.height();
        line.setPosition({0, lines * paragraphPitch(m_type) + std::floor(slack / 2)});
        ++lines;
    }
    layout.endLayout();
    return lines;
}

int Paragraph::positionAt(const QPoint& point) const {
    QTextLayout layout;
    const int lines = layOut(layout, width());
    if (lines == 0) return 0;
    const int line = std::clamp(point.y() / paragraphPitch(m_type), 0, lines - 1);
    return layout.lineAt(line).xToCursor(point.x());
}

int Paragraph::heightForWidth(int width) const {
    QTextLayout layout;
    return std::max(1, layOut(layout, width)) * paragraphPitch(m_type);
}

QSize Paragraph::sizeHint() const {
    int widest = 0;
    for (const QString& line : m_text.split(u'\n')) {
        widest = std::max(widest, fontMetrics().horizontalAdvance(line) + 1);
    }
    const int width = std::min(widest, preferredWidth);
    return {width, heightForWidth(width)};
}

QSize Paragraph::minimumSizeHint() const {
    return {24, paragraphPitch(m_type)};
}

void Paragraph::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (!isEnabled()) painter.setOpacity(0.4);
    painter.setPen(inkColor(rolesOf(this), m_ink));
    QTextLayout layout;
    layOut(layout, width());
    layout.draw(&painter, {0, 0}, marks());
}

}  // namespace orvo
