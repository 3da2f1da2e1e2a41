#include "history/ui/HistoryRow.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/lineText.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/typography.h"

#include <QPainter>

namespace orvo {
namespace {

constexpr int padding = 10;
constexpr int connectorPixels = 10;
// Baseline boxes of the three lines within the 64 of the row.
constexpr int connectorTop = 8;
constexpr int titleTop = 22;
constexpr int dateTop = 42;
constexpr int smallLine = 14;
constexpr int titleLine = 18;

}  // namespace

HistoryRow::HistoryRow(const Lines& lines, QWidget* parent) : ChoiceRow(QString(), parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setLines(lines);
}

void HistoryRow::setLines(const Lines& lines) {
    if (lines == m_lines) return;
    m_lines = lines;
    setTitle(lines.title);
    setAccessibleDescription(QStringLiteral("%1, %2, %3").arg(lines.connector, lines.date, lines.exit));
    setToolTip(plainToolTip(lines.title.left(400)));
    update();
}

void HistoryRow::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    QColor fill = blended(Qt::transparent, toQColor(roles.hover), hover());
    if (isDown()) fill = toQColor(roles.pressed);
    if (isCurrent()) fill = toQColor(roles.selected);
    fillRounded(painter, rect(), 8, fill);
    if (isFocusVisible()) strokeRing(painter, rect(), 8, toQColor(roles.accent));

    const int room = width() - 2 * padding;
    const auto line = [&](const QFont& font, Rgb color, int top, int height, const QString& text,
                          Qt::Alignment side, int width) {
        painter.setFont(font);
        painter.setPen(toQColor(color));
        const int left = side == Qt::AlignRight ? padding + room - width : padding;
        paintText(painter, QRect(left, top, width, height), side | Qt::AlignVCenter,
                  text.left(400).simplified());
    };
    QFont connector = fontOf(TypeRole::Badge);
    connector.setPixelSize(connectorPixels);
    const QFont caption = fontOf(TypeRole::Caption);
    const Rgb muted = isCurrent() ? roles.mutedOnSelected : roles.muted;
    const int exitWidth = measureText(caption, m_lines.exit);
    line(connector, roles.accent, connectorTop, smallLine, m_lines.connector, Qt::AlignLeft, room);
    line(fontOf(TypeRole::Control), roles.text, titleTop, titleLine, m_lines.title, Qt::AlignLeft, room);
    line(caption, muted, dateTop, smallLine, m_lines.date, Qt::AlignLeft, room - exitWidth - padding);
    line(caption, muted, dateTop, smallLine, m_lines.exit, Qt::AlignRight, room);
}

}  // namespace orvo
