#include "assistants/ui/AssistantsView.h"

#include "appearance/controls/ElidedLabel.h"
#include "appearance/controls/InfoCard.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/PageTitle.h"
#include "appearance/controls/ScrollPage.h"
#include "appearance/controls/layouts.h"
#include "assistants/ui/ProviderGrid.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"

namespace orvo {
namespace {

constexpr int cardWidth = 340;

}  // namespace

AssistantsView::AssistantsView(Workspace& workspace, Launcher& launcher, QWidget* parent)
    : QWidget(parent), m_workspace(workspace) {
    auto* const page = new ScrollPage;
    columnIn(this)->addWidget(page);
    QVBoxLayout& column = page->column();
    column.addWidget(new PageTitle(tr("Connected intelligence"), tr("Your best minds, together."),
                                   tr("Run the original tools in Orvo. Each provider keeps its own login, "
                                      "model settings, and approvals.")));
    column.addSpacing(20);
    column.addWidget(makeActions());
    column.addSpacing(20);
    column.addWidget(new ProviderGrid(ProviderCard::Form::Full, cardWidth, workspace, launcher));
    column.addSpacing(12);
    column.addWidget(new InfoCard(
        QStringLiteral("puzzlepiece.extension"), tr("A place for your tools"),
        tr("Add any installed command-line assistant as a connector. Configure MCP servers, skills, and "
           "plugins through the provider’s original terminal commands. Orvo keeps each provider’s "
           "configuration in its own hands.")));
    column.addStretch(1);
}

QWidget* AssistantsView::makeActions() {
    auto* const host = new QWidget;
    auto* const row = rowIn(host, 8);
    auto* const add = new OrvoButton(tr("Add connector"), QStringLiteral("plus"), OrvoButton::Kind::Primary);
    connect(add, &OrvoButton::clicked, this, [this] { m_workspace.editConnector(std::nullopt); });
    m_check = new OrvoButton(QString(), QStringLiteral("arrow.clockwise"));
    connect(m_check, &OrvoButton::clicked, this, [this] { m_workspace.assistants().checkConnections(); });
    row->addWidget(add);
    row->addWidget(m_check);
    row->addSpacing(8);
    row->addWidget(new ElidedLabel(tr("Checks sign-in status without sending AI requests."),
                                   TypeRole::Caption, Ink::Muted),
                   1);
    observe(m_workspace.assistants(), {&Assistants::checkingConnectionsChanged}, this,
            [this] { refreshCheck(); });
    return host;
}

void AssistantsView::refreshCheck() {
    const bool checking = m_workspace.assistants().checkingConnections();
    m_check->setBusy(checking);
    m_check->setTitle(checking ? tr("Checking accounts…") : tr("Check connections"));
    m_check->setEnabled(!checking);
}

}  // namespace orvo
