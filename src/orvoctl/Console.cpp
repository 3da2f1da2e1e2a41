#include "orvoctl/Console.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace orvo::ctl {

void print(const QByteArray& text) {
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stdout);
    std::fflush(stdout);
}

void printError(const QString& sentence) {
    std::fprintf(stderr, "orvoctl: %s\n", sentence.toUtf8().constData());
}

bool wantsColor(int descriptor) {
    return isatty(descriptor) == 1 && qEnvironmentVariableIsEmpty("NO_COLOR");
}

QString oneLine(const QString& text) {
    QString line = text;
    for (QChar& c : line) {
        const QChar::Category category = c.category();
        if (category == QChar::Other_Control || category == QChar::Other_Format || c.isSpace()) c = u' ';
    }
    return line.simplified();
}

QByteArray columns(const QList<QStringList>& rows) {
    QList<qsizetype> widths;
    for (const QStringList& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (qsizetype i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    }
    QByteArray text;
    for (const QStringList& row : rows) {
        QString line;
        for (qsizetype i = 0; i < row.size(); ++i)
            line += row[i].leftJustified(widths[i] + 2);
        while (line.endsWith(u' '))
            line.chop(1);
        text += line.toUtf8() + '\n';
    }
    return text;
}

void insertPath(QJsonObject& object, const QString& key, const FilePath& path) {
    object.insert(key, path.display());
    if (path.display().toUtf8() != path.bytes()) {
        object.insert(key + QStringLiteral("Bytes"), QString::fromLatin1(path.bytes().toBase64()));
    }
}

}  // namespace orvo::ctl
