#include "orvoctl/screenReport.h"

#include "terminal/core/TerminalScreen.h"

#include <QJsonArray>

#include <array>

namespace orvo::ctl {
namespace {

struct AttributeName {
    std::uint16_t bits;
    const char* name;
};

// Bits 9 to 11 hold the underline style.
constexpr std::uint16_t anyUnderline = 7 << 9;

// In the order of their names, in which they are printed.
constexpr std::array attributeNames = {
    AttributeName{TerminalCell::Conceal, "conceal"}, AttributeName{TerminalCell::Dim, "dim"},
    AttributeName{TerminalCell::Italic, "italic"},   AttributeName{TerminalCell::Overline, "overline"},
    AttributeName{TerminalCell::Strike, "strike"},   AttributeName{anyUnderline, "underline"},
};

/// What is printed of a cell's look; cells that agree in it belong to one run.
struct Look {
    CellColor foreground;
    CellColor background;
    bool bold = false;
    bool inverse = false;
    std::array<bool, attributeNames.size()> attributes{};

    bool operator==(const Look&) const = default;
};

Look lookOf(const TerminalCell& cell) {
    Look look{cell.foreground, cell.background, cell.bold(), cell.inverse(), {}};
    for (std::size_t i = 0; i < attributeNames.size(); ++i) {
        look.attributes[i] = (cell.attributes & attributeNames[i].bits) != 0;
    }
    return look;
}

QJsonValue colorValue(CellColor color) {
    const auto rgb = color.color();
    return rgb ? QJsonValue(QString::fromStdString(hexOf(*rgb))) : QJsonValue(QJsonValue::Null);
}

QJsonObject runObject(const Look& look, const std::string& text, int cells) {
    QJsonArray attributes;
    for (std::size_t i = 0; i < attributeNames.size(); ++i) {
        if (look.attributes[i]) attributes.append(QLatin1String(attributeNames[i].name));
    }
    return {{QStringLiteral("text"), QString::fromStdString(text)},
            {QStringLiteral("cells"), cells},
            {QStringLiteral("fg"), colorValue(look.foreground)},
            {QStringLiteral("bg"), colorValue(look.background)},
            {QStringLiteral("bold"), look.bold},
            {QStringLiteral("inverse"), look.inverse},
            {QStringLiteral("attributes"), attributes}};
}

QJsonArray runsOf(const TerminalRow& row) {
    QJsonArray runs;
    const auto cells = row.cells();
    for (std::size_t i = 0; i < cells.size();) {
        const Look look = lookOf(cells[i]);
        std::string text;
        std::size_t end = i;
        for (; end < cells.size() && lookOf(cells[end]) == look; ++end)
            text += row.text(static_cast<int>(end));
        runs.append(runObject(look, text, static_cast<int>(end - i)));
        i = end;
    }
    return runs;
}

}  // namespace

QJsonObject screenReport(const TerminalScreen& screen, const QStringList& responses) {
    QJsonArray lines;
    for (int row = 0; row < screen.rows(); ++row)
        lines.append(runsOf(screen.line(row)));
    QJsonArray scrollback;
    for (int i = 0; i < screen.scrollbackCount(); ++i) {
        scrollback.append(QString::fromStdString(screen.scrollbackLine(i).plainText()));
    }
    return {{QStringLiteral("rows"), screen.rows()},
            {QStringLiteral("columns"), screen.columns()},
            {QStringLiteral("row"), screen.row()},
            {QStringLiteral("column"), screen.column()},
            {QStringLiteral("cursorVisible"), screen.cursorVisible()},
            {QStringLiteral("bracketedPaste"), screen.bracketedPaste()},
            {QStringLiteral("applicationCursor"), screen.applicationCursor()},
            {QStringLiteral("alternateScreen"), screen.alternateScreen()},
            {QStringLiteral("scrollTop"), screen.scrollTop()},
            {QStringLiteral("scrollBottom"), screen.scrollBottom()},
            {QStringLiteral("pendingWrap"), screen.pendingWrap()},
            {QStringLiteral("responses"), QJsonArray::fromStringList(responses)},
            {QStringLiteral("plainText"), QString::fromStdString(screen.plainText())},
            {QStringLiteral("lines"), lines},
            {QStringLiteral("scrollbackCount"), screen.scrollbackCount()},
            {QStringLiteral("scrollback"), scrollback}};
}

}  // namespace orvo::ctl
