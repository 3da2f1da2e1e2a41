// The pointer on a terminal: what the program is told of it, selecting, links, the wheel, dropped files.
#include "appearance/controls/OrvoStyle.h"
#include "platform/observe.h"
#include "terminal/TerminalSession.h"
#include "terminal/ui/TerminalView.h"
#include "terminal/ui/keyPress.h"

#include <QApplication>
#include <QClipboard>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QStyleHints>
#include <QUrl>

#include <algorithm>
#include <cmath>

namespace orvo {
namespace {

// Scrolling: three dip of wheel movement make a line, and a notch (120 of Qt's units) counts nine dip.
constexpr double dipPerLine = 3;
constexpr double dipPerNotch = 9;
constexpr double notch = 120;
/// While a selection is dragged beyond the edge, a line is scrolled each time.
constexpr int selectionScrollMilliseconds = 40;
/// Cursor keys that a step of the wheel sends to a full-screen program.
constexpr int keysPerStep = 3;

std::optional<MouseButton> buttonOf(Qt::MouseButton button) {
    switch (button) {
        case Qt::LeftButton:
            return MouseButton::Left;
        case Qt::MiddleButton:
            return MouseButton::Middle;
        case Qt::RightButton:
            return MouseButton::Right;
        default:
            return std::nullopt;
    }
}

}  // namespace

PointedCell TerminalView::cellAt(QPointF position) const {
    const TerminalScreen& shown = m_session->screen();
    const CellGeometry& cells = geometryOfCells();
    const double across = (position.x() - CellGeometry::marginX) / cells.cellWidth;
    const int row = static_cast<int>(std::floor((position.y() - CellGeometry::marginY) / cells.lineHeight));
    PointedCell cell;
    cell.line = lineOfRow(std::clamp(row, 0, shown.rows() - 1));
    cell.column = std::clamp(static_cast<int>(std::floor(across)), 0, shown.columns() - 1);
    cell.edge = std::clamp(static_cast<int>(std::lround(across)), 0, shown.columns());
    // Beyond the first or last line everything up to the margin is meant.
    if (row < 0) cell.edge = 0;
    if (row >= shown.rows()) cell.edge = shown.columns();
    return cell;
}

// --- What the program is told

bool TerminalView::reportsMouse(Qt::KeyboardModifiers modifiers) const {
    return m_session && m_session->running() && m_scrollOffset == 0 &&
           m_session->screen().modes().mouseReporting() != MouseReporting::None &&
           !modifiers.testFlag(Qt::ShiftModifier);
}

bool TerminalView::reportMouse(MouseAction action, MouseButton button, Qt::KeyboardModifiers modifiers,
                               QPointF position) {
    if (!reportsMouse(modifiers)) return false;
    const TerminalScreen& shown = m_session->screen();
    const PointedCell cell = cellAt(position);
    const int row = static_cast<int>(cell.line - lineOfRow(0));
    if (action == MouseAction::Move) {
        const MouseReporting wanted = shown.modes().mouseReporting();
        const bool told = wanted == MouseReporting::Motion ||
                          (wanted == MouseReporting::Drags && button != MouseButton::None);
        if (!told || m_reportedCell == std::pair(row, cell.column)) return true;
    }
    m_reportedCell = {row, cell.column};
    const MouseForm form = shown.modes().sgrMouse ? MouseForm::Sgr : MouseForm::Classic;
    m_session->sendBytes(QByteArray::fromStdString(
        encodeMouse({action, button, modifiersOf(modifiers), row, cell.column}, form)));
    return true;
}

void TerminalView::mousePressEvent(QMouseEvent* event) {
    setFocus(Qt::MouseFocusReason);
    event->accept();
    if (!m_session) return;
    const auto button = buttonOf(event->button());
    if (button && reportMouse(MouseAction::Press, *button, event->modifiers(), event->position())) {
        m_reportedButton = button;
        return;
    }
    if (event->button() == Qt::MiddleButton && QGuiApplication::clipboard()->supportsSelection()) {
        pasteText(QGuiApplication::clipboard()->text(QClipboard::Selection));
    } else if (event->button() == Qt::LeftButton) {
        const bool third =
            m_sinceDoubleClick.isValid() &&
            m_sinceDoubleClick.elapsed() < QGuiApplication::styleHints()->mouseDoubleClickInterval() &&
            (event->pos() - m_doubleClickPlace).manhattanLength() < QApplication::startDragDistance();
        // Control may have been pressed when the pointer was there already.
        pointAt(event->position(), event->modifiers());
        selectFrom(*event, third ? TextSelection::Unit::Line : TextSelection::Unit::Cell);
    }
}

void TerminalView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || reportsMouse(event->modifiers())) return mousePressEvent(event);
    event->accept();
    if (!m_session) return;
    m_sinceDoubleClick.start();
    m_doubleClickPlace = event->pos();
    selectFrom(*event, TextSelection::Unit::Word);
}

void TerminalView::mouseMoveEvent(QMouseEvent* event) {
    if (!m_session) return;
    if (m_selecting) return selectTo(event->position());
    pointAt(event->position(), event->modifiers());
    reportMouse(MouseAction::Move, m_reportedButton.value_or(MouseButton::None), event->modifiers(),
                event->position());
}

void TerminalView::mouseReleaseEvent(QMouseEvent* event) {
    const auto button = buttonOf(event->button());
    if (m_reportedButton && m_reportedButton == button) {
        m_reportedButton.reset();
        reportMouse(MouseAction::Release, *button, event->modifiers(), event->position());
    } else if (event->button() == Qt::LeftButton && m_selecting) {
        finishSelection();
        if (m_selection.empty() && event->modifiers().testFlag(Qt::ControlModifier) && m_hoveredLink)
            Q_EMIT linkOpened(QUrl(m_hoveredLink->address));
    }
}

void TerminalView::leaveEvent(QEvent*) {
    setHoveredLink(std::nullopt);
}

// --- Selecting

void TerminalView::selectFrom(QMouseEvent& event, TextSelection::Unit unit) {
    const bool rectangle = event.modifiers().testFlag(Qt::AltModifier);
    m_selection.start(m_session->screen(), cellAt(event.position()), unit,
                      rectangle ? TextSelection::Shape::Rectangle : TextSelection::Shape::Running);
    m_selecting = true;
    m_pointer = event.position();
    updateHighlights();
}

void TerminalView::selectTo(QPointF position) {
    m_pointer = position;
    m_selection.extend(m_session->screen(), cellAt(position));
    const bool outside = position.y() < 0 || position.y() >= height();
    if (!outside) m_selectionScroll.stop();
    if (outside && !m_selectionScroll.isActive()) m_selectionScroll.start(selectionScrollMilliseconds);
    updateHighlights();
}

void TerminalView::scrollWhileSelecting() {
    if (!m_session || !m_selecting) return m_selectionScroll.stop();
    setScrollOffset(m_scrollOffset + (m_pointer.y() < 0 ? 1 : -1));
    m_selection.extend(m_session->screen(), cellAt(m_pointer));
    updateHighlights();
}

void TerminalView::finishSelection() {
    m_selecting = false;
    m_selectionScroll.stop();
    QClipboard* const clipboard = QGuiApplication::clipboard();
    if (m_selection.empty() || !clipboard->supportsSelection()) return;
    clipboard->setText(m_selection.text(m_session->screen()), QClipboard::Selection);
}

void TerminalView::clearSelection() {
    m_selection.clear();
    m_selecting = false;
    m_selectionScroll.stop();
    updateHighlights();
}

void TerminalView::dropStaleSelection() {
    if (!m_session || m_selecting || m_selection.empty() || m_selection.holdsOn(m_session->screen())) return;
    clearSelection();
}

// --- Links

void TerminalView::pointAt(QPointF position, Qt::KeyboardModifiers modifiers) {
    const PointedCell cell = cellAt(position);
    setHoveredLink(modifiers.testFlag(Qt::ControlModifier)
                       ? linkAt(m_session->screen(), {cell.line, cell.column})
                       : std::nullopt);
}

void TerminalView::setHoveredLink(std::optional<CellLink> link) {
    if (!link && !m_hoveredLink) return;
    m_hoveredLink = std::move(link);
    setCursor(m_hoveredLink ? Qt::PointingHandCursor : Qt::IBeamCursor);
    setToolTip(m_hoveredLink ? plainToolTip(m_hoveredLink->address) : QString());
    updateHighlights();
}

// --- Wheel, files

void TerminalView::wheelEvent(QWheelEvent* event) {
    const TerminalScreen* shown = screen();
    if (shown == nullptr) return event->ignore();
    const bool toProgram = reportsMouse(event->modifiers()) || shown->alternateScreen();
    if (!toProgram && shown->scrollbackCount() == 0) return event->ignore();
    event->accept();
    // Pixels are to be trusted only when they belong to a gesture: X11 also puts raw driver units there.
    const bool gesture = event->phase() != Qt::NoScrollPhase && !event->pixelDelta().isNull();
    const double moved = gesture ? event->pixelDelta().y() : event->angleDelta().y() * dipPerNotch / notch;
    if (moved * m_wheelRemainder < 0) m_wheelRemainder = 0;
    m_wheelRemainder += moved;
    // Programs are told of whole notches, the history moves by lines.
    const double unit = toProgram ? dipPerNotch : dipPerLine;
    const int steps = static_cast<int>(m_wheelRemainder / unit);
    m_wheelRemainder -= steps * unit;
    if (steps != 0) turnWheel(steps, *event);
}

void TerminalView::turnWheel(int steps, QWheelEvent& event) {
    const TerminalScreen& shown = m_session->screen();
    if (reportsMouse(event.modifiers())) {
        const MouseButton button = steps > 0 ? MouseButton::WheelUp : MouseButton::WheelDown;
        for (int count = std::abs(steps); count > 0; --count)
            reportMouse(MouseAction::Press, button, event.modifiers(), event.position());
    } else if (shown.alternateScreen()) {
        if (!shown.modes().alternateScroll) return;
        const CursorKeys mode = shown.applicationCursor() ? CursorKeys::Application : CursorKeys::Normal;
        const std::string key = encodeKey(steps > 0 ? TerminalKey::Up : TerminalKey::Down, {}, mode);
        m_session->sendBytes(
            QByteArray::fromStdString(key).repeated(qsizetype{keysPerStep} * std::abs(steps)));
    } else {
        setScrollOffset(m_scrollOffset + steps);
    }
}

void TerminalView::dragEnterEvent(QDragEnterEvent* event) {
    const QMimeData& dragged = *event->mimeData();
    if (m_session && (dragged.hasUrls() || dragged.hasText())) event->acceptProposedAction();
}

void TerminalView::dropEvent(QDropEvent* event) {
    QStringList paths;
    for (const QUrl& url : event->mimeData()->urls()) {
        if (url.isLocalFile()) paths += url.toLocalFile();
    }
    event->acceptProposedAction();
    setFocus(Qt::OtherFocusReason);
    if (!paths.isEmpty()) {
        Q_EMIT filesDropped(paths);
    } else {
        pasteText(event->mimeData()->text());
    }
}

}  // namespace orvo
