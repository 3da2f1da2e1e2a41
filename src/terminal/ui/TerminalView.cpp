#include "terminal/ui/TerminalView.h"

#include "appearance/Theme.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/typography.h"
#include "platform/observe.h"
#include "terminal/TerminalSession.h"
#include "terminal/core/DefaultColors.h"
#include "terminal/ui/TerminalAccessible.h"

#include <QPaintEvent>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvo {
namespace {

constexpr int frameMilliseconds = 16;
// A program that never ends its picture is shown all the same.
constexpr int longestHoldMilliseconds = 150;
// A screen reader cannot follow faster, and every announcement compares the whole text.
constexpr int announcementMilliseconds = 100;
constexpr double smallestFont = 6;
constexpr double largestFont = 40;

// Shares of the accent in the fill behind marked text.
constexpr double selectionShare = 0.38;
constexpr double matchShare = 0.22;
constexpr double currentMatchShare = 0.5;

constexpr double focusedCursorOpacity = 0.6;
constexpr double cursorOpacity = 0.22;

constexpr int minimumRows = 3;
constexpr int minimumColumns = 10;

}  // namespace

TerminalView::TerminalView(Theme& theme, QWidget* parent) : QWidget(parent), m_theme(theme) {
    installTerminalAccessibility();
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_InputMethodEnabled);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::IBeamCursor);
    setMouseTracking(true);
    setAcceptDrops(true);
    connect(&m_selectionScroll, &QTimer::timeout, this, &TerminalView::scrollWhileSelecting);

    m_frame.setSingleShot(true);
    m_frame.setTimerType(Qt::PreciseTimer);
    connect(&m_frame, &QTimer::timeout, this, &TerminalView::showChanges);
    m_sinceFrame.start();
    m_hold.setSingleShot(true);
    m_hold.setInterval(longestHoldMilliseconds);
    connect(&m_hold, &QTimer::timeout, this, [this] {
        m_holdOver = true;
        showChanges();
    });
    m_announcement.setSingleShot(true);
    m_announcement.setInterval(announcementMilliseconds);
    connect(&m_announcement, &QTimer::timeout, this, [this] { TerminalAccessible::announceChanges(*this); });

    observe(m_theme, {&Theme::fontSizeChanged}, this, [this] { applyFont(); });
    observe(m_theme, {&Theme::backgroundHexChanged, &Theme::accentHexChanged}, this,
            [this] { applyColors(); });
}

TerminalView::~TerminalView() = default;

void TerminalView::setSession(TerminalSession* session) {
    if (m_session == session) return;
    if (m_session) disconnect(m_session, nullptr, this, nullptr);
    m_session = session;
    setAccessibleName(session != nullptr ? session->title() : QString());
    m_preedit.clear();
    m_wheelRemainder = 0;
    clearSelection();
    m_matches.clear();
    m_reportedButton.reset();
    setScrollOffset(0);
    if (session != nullptr) {
        for (const auto change : {&TerminalSession::revisionChanged, &TerminalSession::runningChanged}) {
            connect(session, change, this, &TerminalView::scheduleFrame);
        }
        connect(session, &QObject::destroyed, this, &TerminalView::repaintAll);
    }
    tellColors();
    if (isVisible()) fitSession();
    repaintAll();
}

TerminalSession* TerminalView::session() const {
    return m_session;
}

const TerminalScreen* TerminalView::screen() const {
    return m_session ? &m_session->screen() : nullptr;
}

void TerminalView::applyFont() {
    m_glyphs =
        std::make_unique<GlyphCache>(std::clamp(m_theme.fontSize() + m_zoom, smallestFont, largestFont));
    if (isVisible()) fitSession();
    repaintAll();
}

void TerminalView::setZoom(int steps) {
    const int least = static_cast<int>(std::ceil(smallestFont - m_theme.fontSize()));
    const int most = static_cast<int>(std::floor(largestFont - m_theme.fontSize()));
    if (assign(m_zoom, std::clamp(steps, std::min(least, 0), std::max(most, 0)))) applyFont();
}

void TerminalView::applyColors() {
    m_defaults = {toQColor(defaultTextColor), toQColor(m_theme.bg())};
    m_accent = toQColor(m_theme.accent());
    tellColors();
    repaintAll();
}

/// What is drawn is what programs are told when they ask.
void TerminalView::tellColors() {
    if (m_session) m_session->setColors({defaultTextColor, m_theme.bg(), m_theme.accent()});
}

void TerminalView::fitSession() {
    if (!m_session) return;
    const CellGeometry& cells = m_glyphs->geometry();
    const int rows = std::max(cells.rowsIn(height()), minimumRows);
    const int columns = std::max(cells.columnsIn(width()), minimumColumns);
    const TerminalScreen& screen = m_session->screen();
    if (screen.rows() == rows && screen.columns() == columns) return;
    m_session->resize(rows, columns);
    repaintAll();
}

// --- What is visible, and what of it has changed

void TerminalView::setScrollOffset(int lines) {
    const TerminalScreen* shown = screen();
    // Lines that went by while the view was live are not to be followed.
    if (shown != nullptr && m_scrollOffset == 0) m_scrolledLines = shown->scrolledLines();
    if (!assign(m_scrollOffset, std::clamp(lines, 0, shown != nullptr ? shown->scrollbackCount() : 0)))
        return;
    update(scrollbackLabelRect());
    updateChanged();
}

void TerminalView::follow(const TerminalScreen& screen) {
    const std::uint64_t scrolled =
        screen.scrolledLines() - std::exchange(m_scrolledLines, screen.scrolledLines());
    if (m_scrollOffset == 0) return;
    // Scrolled back, the view stays on the same text while lines go by below it.
    const auto most = static_cast<std::uint64_t>(screen.scrollbackCount());
    setScrollOffset(static_cast<int>(std::min(most, static_cast<std::uint64_t>(m_scrollOffset) + scrolled)));
}

const TerminalRow& TerminalView::visibleLine(const TerminalScreen& screen, int row) const {
    const int history = screen.scrollbackCount();
    // The program may have emptied the history since the offset was set.
    const int index = history - std::min(m_scrollOffset, history) + row;
    return index < history ? screen.scrollbackLine(index) : screen.line(index - history);
}

QRect TerminalView::cursorRect() const {
    const TerminalScreen* shown = screen();
    return shown != nullptr ? m_glyphs->geometry().around(shown->row(), shown->column()) : QRect();
}

std::optional<QRect> TerminalView::drawnCursor() const {
    if (m_scrollOffset != 0 || !m_session || !m_session->running() || !screen()->cursorVisible()) return {};
    return cursorRect();
}

void TerminalView::scheduleFrame() {
    if (m_frame.isActive() || !isVisible()) return;
    // The first change after a quiet time is shown at once, so that typing has no delay of its own.
    m_frame.start(static_cast<int>(
        std::clamp<qint64>(frameMilliseconds - m_sinceFrame.elapsed(), 0, frameMilliseconds)));
}

bool TerminalView::holdsPicture() {
    const bool drawing = m_session && m_session->running() && screen()->modes().synchronizedOutput;
    if (!drawing) {
        m_hold.stop();
        m_holdOver = false;
    } else if (!m_holdOver && !m_hold.isActive()) {
        m_hold.start();
    }
    return drawing && !m_holdOver;
}

void TerminalView::showChanges() {
    if (holdsPicture()) return;
    m_sinceFrame.start();
    if (const TerminalScreen* shown = screen()) follow(*shown);
    dropStaleSelection();
    updateChanged();
    if (!m_announcement.isActive() && TerminalAccessible::isListenedTo(*this)) m_announcement.start();
}

void TerminalView::updateChanged() {
    const TerminalScreen* shown = screen();
    if (shown == nullptr) return;
    m_shownStamps.resize(static_cast<std::size_t>(shown->rows()));
    for (int row = 0; row < shown->rows(); ++row) {
        const std::uint64_t stamp = visibleLine(*shown, row).stamp();
        if (std::exchange(m_shownStamps[static_cast<std::size_t>(row)], stamp) == stamp) continue;
        update(m_glyphs->geometry().line(row, width()));
    }
    updateHighlights();
    // Composed text lies over cells that no line tells about, and moves with the cursor.
    if (!m_preedit.isEmpty()) update();
    updateCursor();
}

LineNumber TerminalView::lineOfRow(int row) const {
    const TerminalScreen& shown = m_session->screen();
    const int history = shown.scrollbackCount();
    return firstLine(shown) + history - std::min(m_scrollOffset, history) + row;
}

std::vector<Highlight> TerminalView::highlightsIn(int row) const {
    std::vector<Highlight> marks;
    const int columns = m_session->screen().columns();
    const LineNumber line = lineOfRow(row);
    const auto marked = [this](double share) {
        return blended(m_defaults.background, m_accent, share).rgb();
    };
    const auto add = [&marks](const std::optional<ColumnRange>& range, QRgb fill, bool underlined = false) {
        if (range) marks.push_back({range->first, range->end, fill, underlined});
    };
    auto match =
        std::ranges::lower_bound(m_matches, line, {}, [](const TextMatch& each) { return each.end.line; });
    for (; match != m_matches.end() && match->begin.line <= line; ++match) {
        const bool current = match - m_matches.begin() == m_currentMatch;
        add(match->columnsIn(line, columns), marked(current ? currentMatchShare : matchShare));
    }
    add(m_selection.columnsIn(line, columns), marked(selectionShare));
    if (m_hoveredLink) add(m_hoveredLink->extent.columnsIn(line, columns), m_accent.rgb(), true);
    return marks;
}

void TerminalView::updateHighlights() {
    const TerminalScreen* shown = screen();
    if (shown == nullptr) return;
    m_shownHighlights.resize(static_cast<std::size_t>(shown->rows()));
    for (int row = 0; row < shown->rows(); ++row) {
        std::vector<Highlight> marks = highlightsIn(row);
        std::vector<Highlight>& before = m_shownHighlights[static_cast<std::size_t>(row)];
        if (marks == before) continue;
        before = std::move(marks);
        update(m_glyphs->geometry().line(row, width()));
    }
}

void TerminalView::markMatches(std::vector<TextMatch> matches, int current) {
    m_matches = std::move(matches);
    m_currentMatch = current;
    updateHighlights();
}

void TerminalView::showMatches(std::vector<TextMatch> matches, int current) {
    markMatches(std::move(matches), current);
    const TerminalScreen* shown = screen();
    if (shown != nullptr && current >= 0 && std::cmp_less(current, m_matches.size())) {
        const LineNumber line = m_matches[static_cast<std::size_t>(current)].begin.line;
        const LineNumber top = lineOfRow(0);
        // In the middle, unless it is on the screen already.
        if (line < top || line >= top + shown->rows()) {
            const LineNumber wanted = endLine(*shown) - line - shown->rows() / 2 - 1;
            setScrollOffset(static_cast<int>(std::clamp<LineNumber>(wanted, 0, shown->scrollbackCount())));
        }
    }
}

void TerminalView::updateCursor() {
    if (!m_strayCursors.isEmpty()) update(std::exchange(m_strayCursors, {}));
    const std::optional<QRect> cursor = drawnCursor();
    const std::optional<QRect> before = std::exchange(m_shownCursor, cursor);
    const CursorShape shape = screen() != nullptr ? screen()->cursorShape() : CursorShape::Block;
    if (const CursorShape shown = std::exchange(m_shownShape, shape); before == cursor && shown == shape)
        return;
    if (before) update(*before);
    if (cursor) update(*cursor);
    if (hasFocus()) updateMicroFocus();
}

void TerminalView::repaintAll() {
    m_shownStamps.clear();
    m_shownCursor.reset();
    update();
    scheduleFrame();
}

// --- Painting

void TerminalView::paintEvent(QPaintEvent* event) {
    fitSession();
    QPainter painter(this);
    const QRegion& damaged = event->region();
    for (const QRect& rect : damaged)
        painter.fillRect(rect, m_defaults.background);
    const TerminalScreen* shown = screen();
    if (shown == nullptr) return;

    LinePainter lines(painter, *m_glyphs, m_defaults, shown->extras(), shown->columns());
    for (int row = 0; row < shown->rows(); ++row) {
        if (damaged.intersects(m_glyphs->geometry().line(row, width())))
            lines.paint(visibleLine(*shown, row), row, highlightsIn(row));
    }
    painter.setClipping(false);
    if (const std::optional<QRect> cursor = drawnCursor()) {
        paintCursor(painter, lines);
        // Moved since the last frame: the next one has to paint over it.
        if (cursor != m_shownCursor) m_strayCursors += *cursor;
    }
    if (!m_preedit.isEmpty()) paintPreedit(painter);
    if (m_scrollOffset > 0) paintScrollbackLabel(painter);
}

void TerminalView::paintCursor(QPainter& painter, const LinePainter& lines) const {
    QColor color = m_accent;
    color.setAlphaF(static_cast<float>(hasFocus() ? focusedCursorOpacity : cursorOpacity));
    QRectF area = lines.snappedCell(screen()->row(), screen()->column());
    // A line needs the full colour to be found; it hides no character.
    const double thick = std::max(1.0, std::round(m_theme.fontSize() / 6));
    switch (screen()->cursorShape()) {
        case CursorShape::Block:
            break;
        case CursorShape::Underline:
            area.setTop(area.bottom() - thick);
            break;
        case CursorShape::Bar:
            area.setWidth(thick);
            break;
    }
    if (screen()->cursorShape() != CursorShape::Block && hasFocus()) color.setAlphaF(1);
    painter.fillRect(area, color);
}

void TerminalView::paintPreedit(QPainter& painter) const {
    QFont font = m_glyphs->font(GlyphStyle::Regular);
    font.setUnderline(true);
    QTextLayout layout(m_preedit, font);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(1e6);
    layout.endLayout();
    const QRectF cell = cursorRect();
    const double textWidth = line.naturalTextWidth();
    // Moved left as far as needed to be seen whole.
    const double left = std::max<double>(CellGeometry::marginX,
                                         std::min(cell.x(), width() - CellGeometry::marginX - textWidth));
    painter.fillRect(QRectF(left, cell.y(), textWidth, cell.height()), m_defaults.background);
    painter.setPen(m_defaults.text);
    layout.draw(&painter, QPointF(left, cell.y() + m_glyphs->baseline() - line.ascent()));
}

QRect TerminalView::scrollbackLabelRect() const {
    return {12, height() - 20, width() - 24, 16};
}

void TerminalView::paintScrollbackLabel(QPainter& painter) const {
    QFont font = fontOf(TypeRole::Caption);
    font.setPixelSize(10);
    const QString label = tr("Scrollback · %1 lines").arg(m_scrollOffset);
    QRect area = scrollbackLabelRect();
    area.setWidth(QFontMetrics(font).horizontalAdvance(label) + 4);
    painter.fillRect(area, m_defaults.background);
    painter.setFont(font);
    painter.setPen(m_accent);
    painter.drawText(area, Qt::AlignLeft | Qt::AlignVCenter, label);
}

void TerminalView::resizeEvent(QResizeEvent*) {
    fitSession();
}

void TerminalView::showEvent(QShowEvent*) {
    fitSession();
    repaintAll();
}

void TerminalView::focusInEvent(QFocusEvent*) {
    update();
    reportFocus();
    Q_EMIT focusChanged();
}

void TerminalView::focusOutEvent(QFocusEvent*) {
    update();
    reportFocus();
    Q_EMIT focusChanged();
}

void TerminalView::reportFocus() {
    if (m_session && screen()->modes().focusReports)
        m_session->sendBytes(hasFocus() ? QByteArray("\x1B[I") : QByteArray("\x1B[O"));
}

}  // namespace orvo
