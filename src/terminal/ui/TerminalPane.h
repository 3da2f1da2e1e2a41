#pragma once

#include <QPointer>
#include <QWidget>

class QAction;
class QMenu;
class QUrl;

namespace orvo {

class ConsentBar;
class ElidedLabel;
class FindBar;
class OrvoButton;
class StatusPill;
class TerminalSession;
class TerminalView;
class Theme;

/// The framed panel of one session: a header with the connector's name, the session's state and a small menu,
/// above the terminal. Owns no session. The focus given to the pane is the terminal's.
class TerminalPane : public QWidget {
    Q_OBJECT

public:
    /// `theme` outlives the pane; `session` may go first.
    TerminalPane(TerminalSession& session, Theme& theme, QWidget* parent = nullptr);
    ~TerminalPane() override;

    TerminalSession* session() const;
    TerminalView& view() const { return *m_view; }
    FindBar& findBar() const { return *m_find; }

    void setConnectorName(const QString& name);
    /// Whether this is the workspace's active session, which the frame tells.
    void setActive(bool active);
    bool isActive() const { return m_active; }

Q_SIGNALS:
    /// The person has put the focus into this pane.
    void activated();
    void linkOpened(const QUrl& address);
    /// To be typed into the session, quoted for the shell.
    void filesDropped(const QStringList& paths);
    void exportRequested();
    void closeRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QWidget* makeHeader();
    QMenu* makeMenu();
    void refreshState();
    void refreshConsent();
    void refreshInFront();
    void placeBars();
    QColor frameColor() const;

    QPointer<TerminalSession> m_session;
    ElidedLabel* m_name;
    StatusPill* m_state;
    OrvoButton* m_menuButton;
    QAction* m_stop = nullptr;
    TerminalView* m_view;
    /// The two that round the terminal's lower corners.
    QWidget* m_leftCorner;
    QWidget* m_rightCorner;
    // Over the terminal, each while it is needed.
    FindBar* m_find = nullptr;
    ConsentBar* m_consent = nullptr;
    bool m_active = false;
};

}  // namespace orvo
