#include "appearance/controls/lineText.h"

#include <QCache>
#include <QCoreApplication>
#include <QFontMetrics>
#include <QPainter>
#include <QTextLayout>

#include <cmath>
#include <memory>
#include <utility>

namespace orvo {
namespace {

// Characters, not lines: a shaped one takes some tens of bytes, so that all of them stay under half a
// megabyte.
constexpr qsizetype keptCharacters = 8192;
constexpr qsizetype longestKept = 1024;

using LineKey = std::pair<QFont, QString>;

std::shared_ptr<QTextLayout> shape(const QFont& font, const QString& text) {
    QString line = text;
    for (QChar& character : line) {
        if (character == u'\n' || character == u'\t' || character == QChar::LineSeparator) character = u' ';
    }
    auto layout = std::make_shared<QTextLayout>(line, font);
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    // Their width counts, as it does in QFontMetrics.
    option.setFlags(QTextOption::IncludeTrailingSpaces);
    layout->setTextOption(option);
    layout->setCacheEnabled(true);
    layout->beginLayout();
    layout->createLine();
    layout->endLayout();
    return layout;
}

/// Emptied with the application object: shaped text holds fonts, which must not outlive it.
class KeptLines : public QCache<LineKey, std::shared_ptr<QTextLayout>> {
public:
    static KeptLines& instance() {
        static KeptLines lines;
        return lines;
    }

private:
    KeptLines() : QCache(keptCharacters) {
        qAddPostRoutine([] { instance().clear(); });
    }
};

std::shared_ptr<QTextLayout> shaped(const QFont& font, const QString& text) {
    if (text.size() > longestKept) return shape(font, text);
    KeptLines& kept = KeptLines::instance();
    const LineKey key(font, text);
    if (const std::shared_ptr<QTextLayout>* const known = kept.object(key)) return *known;
    std::shared_ptr<QTextLayout> layout = shape(font, text);
    kept.insert(key, new std::shared_ptr<QTextLayout>(layout), std::max<qsizetype>(text.size(), 8));
    return layout;
}

}  // namespace

int measureText(const QFont& font, const QString& text) {
    if (text.isEmpty()) return 0;
    return static_cast<int>(std::lround(shaped(font, text)->lineAt(0).naturalTextWidth()));
}

void paintText(QPainter& painter, const QRectF& area, Qt::Alignment alignment, const QString& text,
               Qt::TextElideMode elide) {
    if (text.isEmpty()) return;
    std::shared_ptr<QTextLayout> layout = shaped(painter.font(), text);
    // A control is as wide as the rounded width of its text.
    if (elide != Qt::ElideNone && layout->lineAt(0).naturalTextWidth() > area.width() + 0.5) {
        const QString shortened =
            QFontMetrics(painter.font()).elidedText(layout->text(), elide, static_cast<int>(area.width()));
        if (shortened.isEmpty()) return;
        layout = shaped(painter.font(), shortened);
    }
    const QTextLine line = layout->lineAt(0);
    double x = area.left();
    if (alignment & Qt::AlignRight) x = area.right() - line.naturalTextWidth();
    if (alignment & Qt::AlignHCenter) x = area.center().x() - line.naturalTextWidth() / 2;
    double y = area.top();
    if (alignment & Qt::AlignBottom) y = area.bottom() - line.height();
    if (alignment & Qt::AlignVCenter) y = area.top() + (area.height() - line.height()) / 2;
    layout->draw(&painter, {x, y});
}

}  // namespace orvo
