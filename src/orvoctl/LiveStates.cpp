#include "orvoctl/LiveStates.h"

#include "orvoctl/Console.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace orvo::ctl {
namespace {

// Keeps a line with its state well below 80 columns: a wrapped line could not be rewritten in place.
constexpr qsizetype maximumNameWidth = 40;

}  // namespace

LiveStates::LiveStates(const QStringList& names) : m_inPlace(isatty(STDERR_FILENO) == 1) {
    for (const QString& name : names) {
        m_lines.append({.name = oneLine(name).left(maximumNameWidth), .state = QString()});
        m_nameWidth = std::max(m_nameWidth, m_lines.last().name.size());
    }
}

void LiveStates::show(qsizetype line, const QString& state, int running) {
    Line& shown = m_lines[line];
    const bool changed = shown.state != state;
    if (!changed && shown.running == running) return;
    shown.state = state;
    shown.running = running;
    if (m_inPlace) {
        draw();
    } else if (changed) {
        std::fprintf(stderr, "%s\n", text(shown).toUtf8().constData());
    }
}

QString LiveStates::text(const Line& line) const {
    const QString text = line.name.leftJustified(m_nameWidth + 2) + line.state;
    return m_inPlace && line.running >= 0 ? text + QStringLiteral("  %1 s").arg(line.running) : text;
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
