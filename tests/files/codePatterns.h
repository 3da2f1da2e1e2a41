#pragma once

#include "files/CodeColoring.h"

#include <QRegularExpression>
#include <QStringList>

#include <span>

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

/// What random edits put in, so that strings, comments and words begin and end everywhere.
inline QStringList codePieces() {
    return QStringLiteral(
               "\"|'|\\|\n|#|//|for|12|.| |x_|\\\"|\\\n|None|\n\n|\u00e9|return 3.14\n|'#' // 1\n|"
               "say('it\\'s', \"#\") // 1\n")
        .split(u'|');
}

/// The four rules as patterns, in their order.
inline std::span<const QRegularExpression> codePatterns() {
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
    return rules;
}

/// The colours by the patterns over the whole text, one after the other.
inline Picture byPatterns(const QString& text) {
    const auto rules = codePatterns();
    Picture picture = plain(text);
    for (std::size_t rule = 0; rule < rules.size(); ++rule) {
        for (auto matches = rules[rule].globalMatch(text); matches.hasNext();) {
            const QRegularExpressionMatch match = matches.next();
            paint(picture, match.capturedStart(), match.capturedLength(),
                  letterOf(static_cast<CodeToken>(rule)));
        }
    }
    return picture;
}

}  // namespace orvo::test
