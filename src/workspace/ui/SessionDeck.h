#pragma once

#include <QHash>
#include <QUuid>
#include <QWidget>

#include <optional>

class QMenu;

namespace orvo {

class CountBadge;
class DeckGrid;
class Launcher;
class SegmentedControl;
class SessionTabs;
class TerminalPane;
class TerminalSession;
class Theme;
class Workspace;

/// The live sessions: a tab each, and their panes side by side or one alone. A pane lives as long as its
/// session is listed, whatever the layout. The models outlive the deck.
class SessionDeck : public QWidget {
    Q_OBJECT

public:
    SessionDeck(Workspace& workspace, Theme& theme, Launcher& launcher, QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;

private:
    QWidget* makeHeader();
    TerminalPane* makePane(TerminalSession& session);
    void fillNewSessionMenu();
    void refreshPanes();
    void refreshNames();
    void refreshLayout();
    void refreshActive();
    void focusTerminal(const QUuid& id);
    void focusNewTerminal(const QUuid& id);

    Workspace& m_workspace;
    Theme& m_theme;
    Launcher& m_launcher;
    CountBadge* m_count = nullptr;
    SegmentedControl* m_layout = nullptr;
    QMenu* m_newSession = nullptr;
    SessionTabs* m_tabs = nullptr;
    DeckGrid* m_grid = nullptr;
    QHash<QUuid, TerminalPane*> m_panes;
    /// A terminal that was started behind another page waits for the keyboard.
    std::optional<QUuid> m_waiting;
};

}  // namespace orvo
