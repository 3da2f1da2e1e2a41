#pragma once

#include "terminal/core/MouseEncoder.h"
#include "terminal/core/TerminalModes.h"
#include "terminal/ui/GlyphCache.h"
#include "terminal/ui/LinePainter.h"
#include "terminal/ui/TextSearch.h"
#include "terminal/ui/TextSelection.h"

#include <QColor>
#include <QElapsedTimer>
#include <QPointer>
#include <QRegion>
#include <QTimer>
#include <QWidget>

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

class QMenu;
class QMouseEvent;
class QUrl;

namespace orvo {

class TerminalRow;
class TerminalScreen;
class TerminalSession;
class Theme;

/// Draws one session's screen, gives the session the size that fits, and turns keys, pastes and scrolling
/// into bytes and view changes. Repaints only lines that changed, at most once a frame. Main thread only;
/// owns no session.
class TerminalView : public QWidget {
    Q_OBJECT

public:
    /// `theme` outlives the view.
    explicit TerminalView(Theme& theme, QWidget* parent = nullptr);
    ~TerminalView() override;

    /// Null for none: then only the background is drawn.
    void setSession(TerminalSession* session);
    TerminalSession* session() const;

    /// Lines that the view is scrolled back into history; 0 shows the live screen.
    int scrollOffset() const { return m_scrollOffset; }
    void setScrollOffset(int lines);

    const CellGeometry& geometryOfCells() const { return m_glyphs->geometry(); }
    /// Where the cursor's cell is, whether it is drawn or not.
    QRect cursorRect() const;

    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

    const TextSelection& selection() const { return m_selection; }
    /// Marks these places, `current` (-1 for none) more than the others; none forgets them.
    void markMatches(std::vector<TextMatch> matches, int current);
    /// Marks them, and brings `current` into view.
    void showMatches(std::vector<TextMatch> matches, int current);
    /// Steps of text size beside the theme's, for this view alone.
    int zoom() const { return m_zoom; }
    void setZoom(int steps);

public Q_SLOTS:
    /// The selection, or without one the whole text with its history, to the clipboard; an empty text without
    /// a session.
    void copy();
    void copyAll();
    /// The clipboard's text to the program, between brackets when it asked for them.
    void paste();

Q_SIGNALS:
    void focusChanged();
    /// The person wants to find something in this terminal.
    void findRequested();
    /// The person has opened a link; the address is one of those that may be followed.
    void linkOpened(const QUrl& address);
    /// Files were dropped; whoever listens types their names, quoted for the shell.
    void filesDropped(const QStringList& paths);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    const TerminalScreen* screen() const;
    /// The line shown in a row of the view, which may lie in the scrollback.
    const TerminalRow& visibleLine(const TerminalScreen& screen, int row) const;
    std::optional<QRect> drawnCursor() const;
    QRect scrollbackLabelRect() const;

    void applyFont();
    void applyColors();
    void tellColors();
    void fitSession();
    void scheduleFrame();
    void showChanges();
    /// Whether the program is in the middle of a picture, and has not been for too long.
    bool holdsPicture();
    /// Asks for a repaint of the lines that differ from what is shown.
    void updateChanged();
    void updateCursor();
    /// Asks for a repaint of everything, and forgets what was shown.
    void repaintAll();
    void follow(const TerminalScreen& screen);
    /// Back into history, or forward when negative. False in the alternate screen, which has none.
    bool scrollByPages(int pages);
    void send(const QByteArray& bytes);
    void pasteText(const QString& text);
    void reportFocus();
    void triggerMenuItem(int key) const;

    // The mouse.
    PointedCell cellAt(QPointF position) const;
    bool reportsMouse(Qt::KeyboardModifiers modifiers) const;
    /// False when the program does not want to be told.
    bool reportMouse(MouseAction action, MouseButton button, Qt::KeyboardModifiers modifiers,
                     QPointF position);
    void selectFrom(QMouseEvent& event, TextSelection::Unit unit);
    void selectTo(QPointF position);
    void finishSelection();
    void clearSelection();
    void dropStaleSelection();
    void scrollWhileSelecting();
    void turnWheel(int lines, QWheelEvent& event);
    void pointAt(QPointF position, Qt::KeyboardModifiers modifiers);
    void setHoveredLink(std::optional<CellLink> link);

    std::vector<Highlight> highlightsIn(int row) const;
    /// Asks for a repaint of the rows whose highlights differ from what is shown.
    void updateHighlights();
    LineNumber lineOfRow(int row) const;

    void paintCursor(QPainter& painter, const LinePainter& lines) const;
    void paintPreedit(QPainter& painter) const;
    void paintScrollbackLabel(QPainter& painter) const;

    Theme& m_theme;
    QPointer<TerminalSession> m_session;
    std::unique_ptr<GlyphCache> m_glyphs;
    CellDefaults m_defaults;
    QColor m_accent;

    int m_scrollOffset = 0;
    /// The screen's count of scrolled lines when the offset was last brought up to date.
    std::uint64_t m_scrolledLines = 0;
    /// Wheel movement, in dip, that has not made a whole line yet.
    double m_wheelRemainder = 0;
    QString m_preedit;
    int m_zoom = 0;

    TextSelection m_selection;
    bool m_selecting = false;
    /// Where the pointer was last while it selects.
    QPointF m_pointer;
    QTimer m_selectionScroll;
    QElapsedTimer m_sinceDoubleClick;
    QPoint m_doubleClickPlace;
    std::vector<TextMatch> m_matches;
    int m_currentMatch = -1;
    std::optional<CellLink> m_hoveredLink;
    /// The button that the program was told of and not of its release.
    std::optional<MouseButton> m_reportedButton;
    std::pair<int, int> m_reportedCell{-1, -1};
    std::vector<std::vector<Highlight>> m_shownHighlights;

    // What the last requested repaint shows: a line's stamp for each row, and the cursor's place.
    std::vector<std::uint64_t> m_shownStamps;
    std::optional<QRect> m_shownCursor;
    CursorShape m_shownShape = CursorShape::Block;
    /// Where a paint between two frames has drawn the cursor besides.
    QRegion m_strayCursors;
    QTimer m_frame;
    /// While a program draws a picture that it wants to be shown whole.
    QTimer m_hold;
    bool m_holdOver = false;
    QElapsedTimer m_sinceFrame;
    /// Until the next word to assistive technology.
    QTimer m_announcement;
};

}  // namespace orvo
