#include "workspace/ui/WorkspaceView.h"

#include "appearance/controls/ScrollPage.h"
#include "appearance/controls/layouts.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"
#include "workspace/ui/Composer.h"
#include "workspace/ui/SessionDeck.h"
#include "workspace/ui/WelcomeView.h"
#include "workspace/ui/WorkspaceInspector.h"

#include <QStackedWidget>

namespace orvo {
namespace {

constexpr int aboveComposer = 12;
constexpr int belowComposer = 20;

}  // namespace

WorkspaceView::WorkspaceView(Workspace& workspace, Theme& theme, Launcher& launcher, QWidget* parent)
    : QWidget(parent), m_workspace(workspace), m_centre(new QStackedWidget) {
    m_welcome = scrolling(new WelcomeView(workspace, launcher));
    m_deck = new SessionDeck(workspace, theme, launcher);
    m_centre->addWidget(m_welcome);
    m_centre->addWidget(m_deck);

    auto* const row = rowIn(this);
    auto* const column = columnIn(nullptr);
    column->addWidget(m_centre, 1);
    auto* const composer =
        rowIn(nullptr, 0, QMargins(ScrollPage::margin, aboveComposer, ScrollPage::margin, belowComposer));
    composer->addWidget(new Composer(workspace));
    column->addLayout(composer);
    row->addLayout(column, 1);
    row->addWidget(new WorkspaceInspector(workspace));

    observe(m_workspace, {&Workspace::sessionsChanged}, this, [this] { refreshCentre(); });
}

void WorkspaceView::refreshCentre() {
    m_centre->setCurrentWidget(m_workspace.sessions().empty() ? m_welcome : m_deck);
}

}  // namespace orvo
