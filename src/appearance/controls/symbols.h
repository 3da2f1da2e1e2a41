#pragma once

#include <QPixmap>
#include <QRectF>
#include <QString>

class QColor;
class QPainter;

namespace orvo {

/// The drawing of a symbol (a name of resources/symbols.tsv) in one colour. `size` is in dip; lines are 1.5
/// dip wide at every size. A name that the table does not have gives the puzzle piece, so that a connector
/// may name any symbol. Drawn once for each name, size and scale. Window's thread.
QPixmap symbolPixmap(const QString& name, const QColor& color, int size, double devicePixelRatio);

/// Draws on another core, meanwhile, a symbol that is about to be painted. Window's thread.
void prepareSymbol(const QString& name, int size);

/// Paints a symbol of `size` dip in the middle of `area`, on whole pixels.
void paintSymbol(QPainter& painter, const QRectF& area, const QString& name, const QColor& color, int size);

}  // namespace orvo
