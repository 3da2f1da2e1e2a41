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

// Wider than any screen, and what Qt's fixed-point widths still hold.
constexpr int endless = 1 << 20;
constexpr qsizetype mostBreaks = 6;

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
    m_brokenTo = 0;
    m_breaks.clear();
}

Paragraph::Breaks Paragraph::breakTo(int width) const {
    int lines = 0;
    double longest = 0;
    m_layout.beginLayout();
    for (QTextLine line = m_layout.createLine(); line.isValid(); line = m_layout.createLine()) {
        line.setLineWidth(width);
        const double slack = paragraphPitch(m_type) - line.height();
        line.setPosition({0, lines * paragraphPitch(m_type) + std::floor(slack / 2)});
        longest = std::max(longest, line.naturalTextWidth());
        ++lines;
    }
    m_layout.endLayout();
    m_brokenTo = width;
    // What fits into a line of `width` still fits where the longest line does. One more, because glyphs may
    // reach over their advance.
    const Breaks breaks = {std::min(width, static_cast<int>(std::ceil(longest)) + 1), width,
                           std::max(1, lines)};
    if (m_breaks.size() == mostBreaks) m_breaks.removeFirst();
    m_breaks.append(breaks);
    return breaks;
}

int Paragraph::linesAt(int width) const {
    if (m_breaks.isEmpty()) breakTo(endless);
    for (const Breaks& breaks : m_breaks) {
        if (breaks.holdFor(width)) return breaks.lines;
    }
    return breakTo(std::max(1, width)).lines;
}

void Paragraph::layOut() const {
    // The lines begin at the left edge whatever the width, unless they are aligned to another.
    const bool fromLeft = m_alignment == Qt::AlignLeft && !m_text.isRightToLeft();
    const bool holds =
        fromLeft ? !m_breaks.isEmpty() && m_breaks.last().holdFor(width()) : m_brokenTo == width();
    if (!holds) breakTo(std::max(1, width()));
}

int Paragraph::positionAt(const QPoint& point) const {
    layOut();
    const int lines = m_layout.lineCount();
    if (lines == 0) return 0;
    const int line = std::clamp(point.y() / paragraphPitch(m_type), 0, lines - 1);
    return m_layout.lineAt(line).xToCursor(point.x());
}

int Paragraph::heightForWidth(int width) const {
    return linesAt(width) * paragraphPitch(m_type);
}

void Paragraph::changeEvent(QEvent* event) {
    if (event->type() == QEvent::FontChange) {
        refreshLayout();
        updateGeometry();
    }
    QWidget::changeEvent(event);
}

QSize Paragraph::sizeHint() const {
    const auto unbroken =
        std::ranges::find_if(m_breaks, [](const Breaks& breaks) { return breaks.widest == endless; });
    const int widest = unbroken == m_breaks.end() ? breakTo(endless).narrowest : unbroken->narrowest;
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
    layOut();
    m_layout.draw(&painter, {0, 0}, marks());
}

}  // namespace orvo
