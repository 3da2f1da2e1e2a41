#include "workspace/ui/OrvoRoot.h"

#include "appearance/controls/Notice.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"
#include "workspace/ui/ConnectorSheet.h"
#include "workspace/ui/HeaderBar.h"
#include "workspace/ui/PlaceholderPage.h"
#include "workspace/ui/Sidebar.h"
#include "workspace/ui/StatusBar.h"
#include "workspace/ui/WorkspaceView.h"
#include "workspace/ui/layouts.h"

#include <QStackedWidget>

namespace orvo {

OrvoRoot::OrvoRoot(Workspace& workspace, Theme& theme, Launcher& launcher, QWidget* parent)
    : QWidget(parent),
      m_workspace(workspace),
      m_theme(theme),
      m_launcher(launcher),
      m_pages(new QStackedWidget) {
    for (const Destination destination : allDestinations) {
        QWidget* const page = makePage(destination);
        m_pages->addWidget(page);
        m_pageOf.insert(destination, page);
    }
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
    return makePlaceholderPage(destination);
}

void OrvoRoot::refreshPage() {
    m_pages->setCurrentWidget(m_pageOf.value(m_workspace.destination()));
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
