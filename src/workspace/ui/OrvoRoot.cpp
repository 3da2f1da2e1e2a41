#include "workspace/ui/OrvoRoot.h"

#include "appearance/controls/Notice.h"
#include "appearance/controls/layouts.h"
#include "appearance/controls/readingOrder.h"
#include "appearance/ui/AppearanceView.h"
#include "assistants/ui/AssistantsView.h"
#include "assistants/ui/ConnectorView.h"
#include "companion/CompanionModel.h"
#include "companion/ui/CompanionSettingsView.h"
#include "files/ui/FilesView.h"
#include "history/ui/HistoryView.h"
#include "mac_actions/ui/ComputerActionsView.h"
#include "platform/observe.h"
#include "team_runs/TeamRuns.h"
#include "team_runs/ui/TeamRunsView.h"
#include "workspace/Workspace.h"
#include "workspace/ui/HeaderBar.h"
#include "workspace/ui/PlaceholderPage.h"
#include "workspace/ui/Sidebar.h"
#include "workspace/ui/StatusBar.h"
#include "workspace/ui/WorkspaceView.h"
#include "workspace/ui/version.h"

#include <QStackedWidget>

namespace orvo {

OrvoRoot::OrvoRoot(Workspace& workspace, Theme& theme, Launcher& launcher, const Engines& engines,
                   QWidget* parent)
    : QWidget(parent),
      m_workspace(workspace),
      m_theme(theme),
      m_launcher(launcher),
      m_engines(engines),
      m_pages(new QStackedWidget) {
    auto* const row = rowIn(this);
    row->addWidget(new Sidebar(workspace));
    auto* const column = columnIn(nullptr);
    column->addWidget(new HeaderBar(workspace));
    column->addWidget(m_pages, 1);
    column->addWidget(new StatusBar(workspace));
    row->addLayout(column, 1);
    // Made last, so that it lies above everything that is in the window by now.
    m_notice = new Notice(m_pages);

    observe(m_workspace, {&Workspace::destinationChanged}, this, [this] { refreshPage(); });
    observe(m_workspace, {&Workspace::toastChanged}, this, [this] { refreshNotice(); });
    observe(m_workspace, {&Workspace::presentConnectorChanged}, this, [this] { refreshConnectorView(); });
}

OrvoRoot::~OrvoRoot() {
    // An open sheet is dismissed when its window hides, and that would reach what is destroyed here.
    delete m_connectorView;
}

bool OrvoRoot::focusNextPrevChild(bool next) {
    return focusNeighbour(*this, next);
}

QWidget* OrvoRoot::makePage(Destination destination) {
    switch (destination) {
        case Destination::Workspace:
            return new WorkspaceView(m_workspace, m_theme, m_launcher);
        case Destination::Runs:
            if (!m_engines.teamRuns) break;
            return new TeamRunsView(*m_engines.teamRuns, m_workspace, m_launcher);
        case Destination::Agents:
            return new AssistantsView(m_workspace, m_launcher);
        case Destination::Files:
            return new FilesView(m_workspace, m_theme);
        case Destination::History:
            return new HistoryView(m_workspace);
        case Destination::Appearance:
            return new AppearanceView(m_theme);
        case Destination::Settings:
            return new SettingsView(m_workspace, m_launcher, settingsFacts());
        case Destination::Mac:
            if (!m_engines.macActions) break;
            return new ComputerActionsView(*m_engines.macActions, m_workspace, m_theme,
                                           [this] { return voiceDraft(); });
        case Destination::Companion:
            if (!m_engines.companion) break;
            return new CompanionSettingsView(*m_engines.companion, m_workspace);
    }
    return makePlaceholderPage(destination);
}

SettingsView::Facts OrvoRoot::settingsFacts() const {
    std::optional<FilePath> runs;
    if (m_engines.teamRuns) runs = m_engines.teamRuns->runsFolder();
    return {.version = versionText(), .runsFolder = runs};
}

QString OrvoRoot::voiceDraft() const {
    return m_engines.companion ? m_engines.companion->draft() : QString();
}

// A page is made when it is first shown: most starts need one of nine.
void OrvoRoot::refreshPage() {
    const Destination destination = m_workspace.destination();
    QWidget*& page = m_pageOf[destination];
    if (!page) {
        page = makePage(destination);
        m_pages->addWidget(page);
    }
    m_pages->setCurrentWidget(page);
}

void OrvoRoot::refreshNotice() {
    if (const std::optional<QString>& toast = m_workspace.toast())
        m_notice->showText(*toast);
    else
        m_notice->dismiss();
}

void OrvoRoot::refreshConnectorView() {
    if (!m_workspace.presentConnector()) {
        if (m_connectorView) m_connectorView->dismiss();
        return;
    }
    if (m_connectorView) return;
    m_connectorView =
        new ConnectorView(m_workspace.editingProvider(), m_workspace, m_theme, m_launcher, this);
    connect(m_connectorView, &Sheet::dismissed, this, [this, sheet = m_connectorView.data()] {
        sheet->deleteLater();
        m_connectorView.clear();
        m_workspace.dismissConnector();
    });
    m_connectorView->present();
}

}  // namespace orvo
