#pragma once

#include "appearance/ui/SettingsView.h"

#include <QHash>
#include <QPointer>
#include <QWidget>

class QStackedWidget;

namespace orvo {

class CompanionModel;
class ConnectorView;
class Launcher;
class Notice;
class TeamRuns;
class Theme;
class Workspace;
class WorkspaceMacActions;
enum class Destination;

/// The engines behind pages of their own. Each outlives the screens; one that is absent leaves its page
/// empty.
struct Engines {
    TeamRuns* teamRuns = nullptr;
    WorkspaceMacActions* macActions = nullptr;
    CompanionModel* companion = nullptr;
};

/// The main window's content: sidebar, header, the page of the current destination, status bar; above them
/// the notice and the connector sheet. The models and the launcher outlive it.
class OrvoRoot : public QWidget {
    Q_OBJECT

public:
    OrvoRoot(Workspace& workspace, Theme& theme, Launcher& launcher, const Engines& engines = {},
             QWidget* parent = nullptr);
    ~OrvoRoot() override;

protected:
    bool focusNextPrevChild(bool next) override;

private:
    QWidget* makePage(Destination destination);
    SettingsView::Facts settingsFacts() const;
    QString voiceDraft() const;
    void refreshPage();
    void refreshNotice();
    void refreshConnectorView();

    Workspace& m_workspace;
    Theme& m_theme;
    Launcher& m_launcher;
    const Engines m_engines;
    QStackedWidget* m_pages;
    QHash<Destination, QWidget*> m_pageOf;
    Notice* m_notice;
    QPointer<ConnectorView> m_connectorView;
};

}  // namespace orvo
