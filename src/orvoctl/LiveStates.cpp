#include "orvoctl/LiveStates.h"

#include "orvoctl/Console.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace orvo::ctl {
namespace {

// Leaves room for the state and some output beside it.
constexpr qsizetype maximumNameWidth = 40;

qsizetype terminalColumns() {
    constexpr qsizetype usual = 80;
    winsize size{};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return usual;
    return size.ws_col;
}

}  // namespace

LiveStates::LiveStates(const QStringList& names) : m_inPlace(isatty(STDERR_FILENO) == 1) {
    for (const QString& name : names) {
        m_lines.append({.name = oneLine(name).left(maximumNameWidth), .state = {}});
        m_nameWidth = std::max(m_nameWidth, m_lines.last().name.size());
    }
}

void LiveStates::show(qsizetype line, const State& state) {
    Line& shown = m_lines[line];
    if (shown.state == state) return;
    const bool changed = shown.state.text != state.text;
    shown.state = state;
    if (m_inPlace) {
        draw();
    } else if (changed) {
        std::fprintf(stderr, "%s\n", text(shown).toUtf8().constData());
    }
}

QString LiveStates::text(const Line& line) const {
    QString text = line.name.leftJustified(m_nameWidth + 2) + line.state.text;
    if (!m_inPlace) return text;
    if (line.state.seconds) text += QStringLiteral("  %1 s").arg(*line.state.seconds);
    if (!line.state.output.isEmpty()) text += QStringLiteral("  ") + oneLine(line.state.output);
    // A wrapped line could not be rewritten in place; a wide character takes two columns, so half is sure.
    const qsizetype columns = terminalColumns() - 1;
    const bool isWide = std::ranges::any_of(text, [](QChar c) { return c.unicode() >= 0x1100; });
    return text.left(isWide ? columns / 2 : columns);
}

void LiveStates::draw() {
    // Back to the first line; each is cleared to its end, since the text before may have been longer.
    QString drawn = m_drawn ? QStringLiteral("\033[%1A").arg(m_lines.size()) : QString();
    for (const Line& line : std::as_const(m_lines))
        drawn += text(line) + QStringLiteral("\033[K\n");
    std::fputs(drawn.toUtf8().constData(), stderr);
    m_drawn = true;
}

}  // namespace orvo::ctl
