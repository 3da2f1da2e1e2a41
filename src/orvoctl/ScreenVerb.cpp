#include "orvoctl/Console.h"
#include "orvoctl/Invocation.h"
#include "orvoctl/screenReport.h"
#include "terminal/core/TerminalScreen.h"

#include <QRegularExpression>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <vector>

namespace orvo::ctl {
namespace {

// A terminal's size is two 16-bit numbers; this is far beyond any, and keeps a mistyped size from taking all
// memory.
constexpr int maximumSide = 4'000;
constexpr int defaultChunk = 65'536;
constexpr qint64 afterAllInput = -1;

struct Resize {
    int rows = 0;
    int columns = 0;
    /// Input bytes before it.
    qint64 at = afterAllInput;
};

std::optional<Resize> parseResize(const QString& text) {
    static const QRegularExpression form(QStringLiteral("^(\\d{1,9})x(\\d{1,9})(?:@(\\d{1,18}))?$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch()) return std::nullopt;
    const Resize resize{match.captured(1).toInt(), match.captured(2).toInt(),
                        match.captured(3).isEmpty() ? afterAllInput : match.captured(3).toLongLong()};
    if (std::min(resize.rows, resize.columns) < 1 || std::max(resize.rows, resize.columns) > maximumSide) {
        return std::nullopt;
    }
    return resize;
}

/// A screen that is fed from a stream in pieces of a fixed size, with resizes at given places of the stream.
class Replay {
public:
    Replay(int rows, int columns, int chunk, std::vector<Resize> resizes)
        : m_screen(rows, columns), m_chunk(chunk), m_resizes(std::move(resizes)) {
        m_screen.onResponse = [this](std::string_view reply) {
            m_responses.append(QString::fromUtf8(reply.data(), static_cast<qsizetype>(reply.size())));
        };
    }

    const TerminalScreen& screen() const { return m_screen; }
    const QStringList& responses() const { return m_responses; }

    void add(std::string_view bytes) {
        while (!bytes.empty()) {
            applyDueResizes();
            const std::size_t count = std::min(bytes.size(), room());
            m_piece.append(bytes.substr(0, count));
            bytes.remove_prefix(count);
            if (m_piece.size() == static_cast<std::size_t>(m_chunk) || m_fed + pieceSize() == nextResize())
                feedPiece();
        }
    }

    void finish() {
        feedPiece();
        for (; m_next < m_resizes.size(); ++m_next) {
            m_screen.resize(m_resizes[m_next].rows, m_resizes[m_next].columns);
        }
    }

private:
    qint64 pieceSize() const { return static_cast<qint64>(m_piece.size()); }
    /// Where the next resize that has a place stands; those behind it wait for it.
    qint64 nextResize() const { return m_next < m_resizes.size() ? m_resizes[m_next].at : afterAllInput; }

    /// Bytes that still fit into the piece, which ends at a resize.
    std::size_t room() const {
        const std::size_t inPiece = static_cast<std::size_t>(m_chunk) - m_piece.size();
        const qint64 resize = nextResize();
        if (resize == afterAllInput) return inPiece;
        return std::min(inPiece, static_cast<std::size_t>(resize - m_fed - pieceSize()));
    }

    void applyDueResizes() {
        while (nextResize() != afterAllInput && nextResize() <= m_fed + pieceSize()) {
            feedPiece();
            m_screen.resize(m_resizes[m_next].rows, m_resizes[m_next].columns);
            ++m_next;
        }
    }

    void feedPiece() {
        if (m_piece.empty()) return;
        m_screen.feed(m_piece);
        m_fed += pieceSize();
        m_piece.clear();
    }

    TerminalScreen m_screen;
    QStringList m_responses;
    int m_chunk;
    std::vector<Resize> m_resizes;
    std::size_t m_next = 0;
    std::string m_piece;
    qint64 m_fed = 0;
};

bool feedStandardInput(Replay& replay) {
    std::array<char, 65'536> buffer{};
    for (;;) {
        const ssize_t count = read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count == 0) break;
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        replay.add({buffer.data(), static_cast<std::size_t>(count)});
    }
    replay.finish();
    return true;
}

ExitStatus screen(const Invocation& invocation) {
    if (!invocation.positional().isEmpty()) {
        return invocation.wrongUsage(
            QStringLiteral("\"screen\" takes no arguments; it reads standard input."));
    }
    const auto rows = invocation.number("rows", 1, maximumSide, 24);
    const auto columnCount = invocation.number("columns", 1, maximumSide, 80);
    if (!rows || !columnCount) {
        return invocation.wrongUsage(
            QStringLiteral("--rows and --columns take a number from 1 to %1.").arg(maximumSide));
    }
    const auto chunk = invocation.number("chunk", 1, 1 << 30, defaultChunk);
    if (!chunk) return invocation.wrongUsage(QStringLiteral("--chunk takes a number of bytes, at least 1."));
    std::vector<Resize> resizes;
    for (const QString& text : invocation.values("resize")) {
        const auto resize = parseResize(text);
        if (!resize) {
            return invocation.wrongUsage(
                QStringLiteral("--resize takes ROWSxCOLUMNS or ROWSxCOLUMNS@BYTES, not \"%1\".").arg(text));
        }
        resizes.push_back(*resize);
    }
    if (invocation.isSet("background-erase")) {
        return invocation.failed(QStringLiteral("--background-erase is not available yet."));
    }

    Replay replay(*rows, *columnCount, *chunk, std::move(resizes));
    if (!feedStandardInput(replay))
        return invocation.failed(QStringLiteral("Standard input cannot be read."));
    if (invocation.format() == Invocation::Format::Json) {
        Invocation::printJson(QJsonDocument(screenReport(replay.screen(), replay.responses())));
    } else {
        print(QByteArray::fromStdString(replay.screen().plainText()) + '\n');
    }
    return ExitStatus::Done;
}

constexpr std::array options = {
    Option{"rows", "R", "rows of the terminal (24)"},
    Option{"columns", "C", "columns of the terminal (80)"},
    Option{"chunk", "N", "interpret N bytes at a time"},
    Option{"resize", "RxC[@N]", "change the size after N bytes, or after all of them (repeatable)"},
    Option{"background-erase", nullptr, "erase with the background colour in force"},
};

}  // namespace

const Verb screenVerb = {
    "screen",
    "",
    "interpret raw terminal output and print the screen",
    "Reads raw terminal output from standard input, interprets it and prints the text of\n"
    "screen and scrollback. A captured log becomes readable text.",
    options,
    screen};

}  // namespace orvo::ctl
