#include "terminal/ui/TextSearch.h"

#include "terminal/core/TerminalScreen.h"

#include <QRegularExpression>
#include <QStringList>
#include <QUrl>

#include <algorithm>

namespace orvo {
namespace {

TextMatch matchOf(const LogicalLine& line, qsizetype offset, qsizetype length) {
    const LogicalLine::Place& last = line.places[static_cast<std::size_t>(offset + length - 1)];
    return {line.places[static_cast<std::size_t>(offset)], {last.line, last.column + 1}};
}

bool isFollowed(const QString& address) {
    static const QStringList schemes = {QStringLiteral("http"), QStringLiteral("https"),
                                        QStringLiteral("file"), QStringLiteral("mailto"),
                                        QStringLiteral("ftp")};
    const QUrl url(address, QUrl::StrictMode);
    return url.isValid() && schemes.contains(url.scheme());
}

/// What ends a sentence or closes a bracket opened before the address does not belong to it.
qsizetype lengthWithoutPunctuation(QStringView address) {
    while (!address.isEmpty()) {
        const QChar last = address.back();
        const bool closes = (last == u')' && address.count(u')') > address.count(u'(')) ||
                            (last == u']' && address.count(u']') > address.count(u'['));
        if (!closes && !QStringView(u".,;:!?'\"").contains(last)) break;
        address.chop(1);
    }
    return address.size();
}

std::optional<CellLink> programLink(const TerminalScreen& screen, LogicalLine::Place place) {
    const TerminalRow* const row = lineAt(screen, place.line);
    if (row == nullptr || place.column >= static_cast<int>(row->cells().size())) return std::nullopt;
    const auto cells = row->cells();
    const std::uint16_t extra = cells[static_cast<std::size_t>(place.column)].extra;
    const CellExtra& link = screen.extras().at(extra);
    if (link.link.empty()) return std::nullopt;
    const QString address = QString::fromStdString(link.link);
    if (!isFollowed(address)) return std::nullopt;
    const auto same = [&](int column) {
        const CellExtra& other = screen.extraOf(cells[static_cast<std::size_t>(column)]);
        return other.link == link.link && other.linkName == link.linkName;
    };
    int first = place.column;
    while (first > 0 && same(first - 1))
        --first;
    int end = place.column + 1;
    while (end < static_cast<int>(cells.size()) && same(end))
        ++end;
    return CellLink{address, {{place.line, first}, {place.line, end}}};
}

}  // namespace

std::optional<ColumnRange> TextMatch::columnsIn(LineNumber line, int width) const {
    if (line < begin.line || line > end.line) return std::nullopt;
    const ColumnRange columns{line == begin.line ? begin.column : 0,
                              line == end.line ? std::min(end.column, width) : width};
    if (columns.first >= columns.end) return std::nullopt;
    return columns;
}

std::vector<TextMatch> findText(const TerminalScreen& screen, const QString& wanted) {
    std::vector<TextMatch> matches;
    if (wanted.isEmpty()) return matches;
    for (LineNumber number = firstLine(screen); number < endLine(screen);) {
        const LogicalLine line = LogicalLine::from(screen, number);
        qsizetype at = line.text.indexOf(wanted, 0, Qt::CaseInsensitive);
        for (; at >= 0; at = line.text.indexOf(wanted, at + wanted.size(), Qt::CaseInsensitive)) {
            matches.push_back(matchOf(line, at, wanted.size()));
        }
        number += std::max(line.rows, 1);
    }
    if (matches.size() > mostMatches)
        matches.erase(matches.begin(), matches.end() - static_cast<std::ptrdiff_t>(mostMatches));
    return matches;
}

std::optional<CellLink> linkAt(const TerminalScreen& screen, LogicalLine::Place place) {
    if (auto link = programLink(screen, place)) return link;
    static const QRegularExpression pattern(
        QStringLiteral(R"((?:https?://|ftp://|file://|mailto:)[^\s<>"`{}|\\^\x{2500}-\x{259F}]+)"));
    const LogicalLine line = LogicalLine::around(screen, place.line);
    const int offset = line.offsetOf(place);
    for (auto found = pattern.globalMatch(line.text); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        const qsizetype length = lengthWithoutPunctuation(match.capturedView());
        if (offset < match.capturedStart() || offset >= match.capturedStart() + length) continue;
        const QString address = match.captured().left(length);
        if (!isFollowed(address)) return std::nullopt;
        return CellLink{address, matchOf(line, match.capturedStart(), length)};
    }
    return std::nullopt;
}

}  // namespace orvo
