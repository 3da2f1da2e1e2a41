#pragma once

#include "files/CodeColoring.h"

#include <QRegularExpression>

namespace orvo::test {

/// One letter a unit: keyword, number, string, comment, a dot for plain text, and line feeds as they are.
using Picture = QByteArray;

constexpr char letterOf(CodeToken token) {
    constexpr char letters[] = {'k', 'n', 's', 'c'};
    return letters[static_cast<int>(token)];
}

inline void paint(Picture& picture, qsizetype start, qsizetype length, char letter) {
    for (qsizetype at = start; at < start + length; ++at) {
        if (picture[at] != '\n') picture[at] = letter;
    }
}

inline Picture plain(const QString& text) {
    Picture picture(text.size(), '.');
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text[at] == u'\n') picture[at] = '\n';
    }
    return picture;
}

/// The four rules as patterns over the whole text, one after the other.
inline Picture byPatterns(const QString& text) {
    // Possessive, because the engine gives up on long runs otherwise; what matches is the same.
    static const QRegularExpression rules[] = {
        QRegularExpression(
            QStringLiteral(
                "\\b(?:func|let|var|class|struct|import|return|if|else|for|while|def|from|as|async|"
                "await|const|function|try|catch|throw|public|private|guard|in|true|false|nil|None|"
                "True|False)\\b"),
            QRegularExpression::UseUnicodePropertiesOption),
        QRegularExpression(QStringLiteral("\\b[0-9]+(?:\\.[0-9]+)?\\b"),
                           QRegularExpression::UseUnicodePropertiesOption),
        QRegularExpression(QStringLiteral("\"(?:[^\"\\\\]++|\\\\.)*+\"|'(?:[^'\\\\]++|\\\\.)*+'")),
        QRegularExpression(QStringLiteral("(?m)(?://|#).*?$")),
    };
    Picture picture = plain(text);
    for (std::size_t rule = 0; rule < std::size(rules); ++rule) {
        for (auto matches = rules[rule].globalMatch(text); matches.hasNext();) {
            const QRegularExpressionMatch match = matches.next();
            paint(picture, match.capturedStart(), match.capturedLength(),
                  letterOf(static_cast<CodeToken>(rule)));
        }
    }
    return picture;
}

}  // namespace orvo::test
