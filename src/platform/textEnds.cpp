#include "platform/textEnds.h"

#include <QTextBoundaryFinder>

namespace orvo {

QString firstCharacters(const QString& text, qsizetype count) {
    if (text.size() <= count) return text;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype i = 0; i < count; ++i) {
        if (finder.toNextBoundary() < 0) return text;
    }
    return text.left(finder.position());
}

QString lastCharacters(const QString& text, qsizetype count) {
    if (text.size() <= count) return text;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.toEnd();
    for (qsizetype i = 0; i < count; ++i) {
        if (finder.toPreviousBoundary() < 0) return text;
    }
    return text.mid(finder.position());
}

QString lastBytes(const QString& text, qsizetype bytes) {
    const QByteArray utf8 = text.toUtf8();
    if (utf8.size() <= bytes) return text;
    qsizetype from = utf8.size() - bytes;
    // Continuation bytes begin with the bits 10.
    while (from < utf8.size() && (static_cast<unsigned char>(utf8[from]) & 0xC0) == 0x80)
        ++from;
    return QString::fromUtf8(utf8.mid(from));
}

}  // namespace orvo
