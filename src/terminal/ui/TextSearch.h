#pragma once

#include "terminal/ui/TextSelection.h"

#include <vector>

namespace orvo {

/// A piece of text that lies in one line, or in several rows of a wrapped one.
struct TextMatch {
    LogicalLine::Place begin;
    /// The cell behind the last one.
    LogicalLine::Place end;

    std::optional<ColumnRange> columnsIn(LineNumber line, int width) const;
};

/// Where a text is in history and screen, oldest first; capitals make no difference. Not more than
/// `mostMatches`, the newest.
std::vector<TextMatch> findText(const TerminalScreen& screen, const QString& wanted);

inline constexpr std::size_t mostMatches = 10'000;

/// The address that a cell belongs to: the program's link, or text that reads like an address. Empty when
/// there is none; only http, https, file, mailto and ftp are followed.
struct CellLink {
    QString address;
    TextMatch extent;
};
std::optional<CellLink> linkAt(const TerminalScreen& screen, LogicalLine::Place place);

}  // namespace orvo
