#include "appearance/controls/Paragraph.h"

#include "appearance/controls/OrvoStyle.h"

#include <QEvent>
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
    refreshLayout();
    updateGeometry();
    update();
}

void Paragraph::setInk(Ink ink) {
    m_ink = ink;
    update();
}

void Paragraph::setAlignment(Qt::Alignment alignment) {
    m_alignment = alignment;
    refreshLayout();
    update();
}

void Paragraph::refreshLayout() {
    QString text = m_text;
    m_layout.setText(text.replace(u'\n', QChar::LineSeparator));
    m_layout.setFont(font());
    QTextOption option(m_alignment);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    m_layout.setTextOption(option);
    m_layout.setCacheEnabled(true);
    m_brokenTo = -1;
}

int Paragraph::layOut(int width) const {
    const int wanted = std::max(1, width);
    if (m_brokenTo == wanted) return m_layout.lineCount();
    int lines = 0;
    m_layout.beginLayout();
    for (QTextLine line = m_layout.createLine(); line.isValid(); line = m_layout.createLine()) {
        line.setLineWidth(wanted);
        const double slack = paragraphPitch(m_type) - line.height();
        line.setPosition({0, lines * paragraphPitch(m_type) + std::floor(slack / 2)});
        ++lines;
    }
    m_layout.endLayout();
    m_brokenTo = wanted;
    return lines;
}

int Paragraph::positionAt(const QPoint& point) const {
    const int lines = layOut(width());
    if (lines == 0) return 0;
    const int line = std::clamp(point.y() / paragraphPitch(m_type), 0, lines - 1);
    return m_layout.lineAt(line).xToCursor(point.x());
}

int Paragraph::heightForWidth(int width) const {
    return std::max(1, layOut(width)) * paragraphPitch(m_type);
}

void Paragraph::changeEvent(QEvent* event) {
    if (event->type() == QEvent::FontChange) {
        refreshLayout();
        updateGeometry();
    }
    QWidget::changeEvent(event);
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
    layOut(width());
    m_layout.draw(&painter, {0, 0}, marks());
}

}  // namespace orvo
