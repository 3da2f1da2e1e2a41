#include "workspace/characters.h"

#include <QTextBoundaryFinder>

namespace orvo {

QString firstCharacters(const QString& text, int count) {
    // A cluster has at least one code unit.
    if (text.size() <= count) return text;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (int i = 0; i < count; ++i) {
        if (finder.toNextBoundary() < 0) return text;
    }
    return text.left(finder.position());
}

}  // namespace orvo
