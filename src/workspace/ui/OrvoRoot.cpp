#include "workspace/ui/OrvoRoot.h"

#include "appearance/controls/Notice.h"
#include "appearance/controls/layouts.h"
#include "history/ui/HistoryPage.h"
#include "platform/observe.h"
#include "team_runs/ui/TeamRunsPage.h"
#include "workspace/Workspace.h"
#include "workspace/ui/ConnectorSheet.h"
#include "workspace/ui/HeaderBar.h"
#include "workspace/ui/PlaceholderPage.h"
#include "workspace/ui/Sidebar.h"
#include "workspace/ui/StatusBar.h"
#include "workspace/ui/WorkspaceView.h"

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
    observe(m_workspace, {&Workspace::presentConnectorChanged}, this, [this] { refreshConnectorSheet(); });
}

OrvoRoot::~OrvoRoot() {
    // An open sheet is dismissed when its window hides, and that would reach what is destroyed here.
    delete m_connectorSheet;
}

QWidget* OrvoRoot::makePage(Destination destination) {
    if (destination == Destination::Workspace) return new WorkspaceView(m_workspace, m_theme, m_launcher);
    if (destination == Destination::Runs && m_engines.teamRuns)
        return new TeamRunsPage(*m_engines.teamRuns, m_workspace, m_launcher);
    if (destination == Destination::History) return new HistoryPage(m_workspace);
    return makePlaceholderPage(destination);
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
    if (m_workspace.toast())
        m_notice->showText(*m_workspace.toast());
    else
        m_notice->dismiss();
}

void OrvoRoot::refreshConnectorSheet() {
    if (!m_workspace.presentConnector()) {
        if (m_connectorSheet) m_connectorSheet->dismiss();
        return;
    }
    if (m_connectorSheet) return;
    m_connectorSheet = new ConnectorSheet(m_workspace.editingProvider(), m_workspace, m_launcher, this);
    connect(m_connectorSheet, &Sheet::dismissed, this, [this, sheet = m_connectorSheet.data()] {
        sheet->deleteLater();
        m_connectorSheet.clear();
        m_workspace.dismissConnector();
    });
    m_connectorSheet->present();
}

}  // namespace orvo
