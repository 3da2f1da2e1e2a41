#pragma once

#include "terminal/core/TerminalModes.h"
#include "terminal/ui/GlyphCache.h"
#include "terminal/ui/LinePainter.h"

#include <QColor>
#include <QElapsedTimer>
#include <QPointer>
#include <QRegion>
#include <QTimer>
#include <QWidget>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

class QMenu;

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

public Q_SLOTS:
    /// The whole text, history included, to the clipboard; an empty text without a session.
    void copy();
    /// The clipboard's text to the program, between brackets when it asked for them.
    void paste();

Q_SIGNALS:
    void scrollOffsetChanged();
    void focusChanged();

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
    void send(const QByteArray& bytes);
    void triggerMenuItem(int key) const;

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
