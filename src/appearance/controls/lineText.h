#pragma once

#include <QRectF>
#include <QString>
#include <Qt>

class QFont;
class QPainter;

namespace orvo {

/// One line of plain text, shaped once for measuring and painting alike: shaping is what text costs, and
/// every control asks for its width several times before it paints. Line feeds and tabs count as spaces,
/// ampersands as themselves. Window's thread only.

/// How far the text reaches in dip, rounded; 0 for none.
int measureText(const QFont& font, const QString& text);

/// Paints the text with the painter's font and pen. What does not fit into `area` gives way to an ellipsis.
void paintText(QPainter& painter, const QRectF& area, Qt::Alignment alignment, const QString& text,
               Qt::TextElideMode elide = Qt::ElideRight);

}  // namespace orvo
