#include "files/ui/FilesView.h"

#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/PageTitle.h"
#include "appearance/controls/ScrollPage.h"
#include "appearance/controls/layouts.h"
#include "files/ui/EditorPane.h"
#include "files/ui/FileBrowser.h"
#include "files/ui/RunnerCard.h"
#include "workspace/Workspace.h"

#include <QResizeEvent>

namespace orvo {
namespace {

constexpr int browserWidth = 264;
constexpr int wideBrowserWidth = 320;
constexpr int wideWindow = 1800;
constexpr int gap = 12;

}  // namespace

FilesView::FilesView(Workspace& workspace, Theme& theme, QWidget* parent)
    : QWidget(parent), m_browser(new FileBrowser(workspace)) {
    constexpr int margin = ScrollPage::margin;
    auto* const column = columnIn(this, 0, QMargins(margin, margin, margin, margin));
    auto* const title =
        new PageTitle(QString(), tr("Files & runner"),
                      tr("Edit a file, run it locally, and inspect the output in a terminal."));
    auto* const newFile = new OrvoButton(tr("New file"), QStringLiteral("doc.badge.plus"));
    connect(newFile, &OrvoButton::clicked, this, [&workspace] { workspace.files().newFile(); });
    auto* const openProject = new OrvoButton(tr("Open project"), QStringLiteral("folder"));
    connect(openProject, &OrvoButton::clicked, this, [&workspace] { workspace.chooseFolder(); });
    title->addTrailing(newFile);
    title->addTrailing(openProject);
    column->addWidget(title);
    column->addSpacing(20);
    auto* const columns = rowIn(nullptr, gap);
    columns->addWidget(m_browser);
    columns->addWidget(new EditorPane(workspace, theme), 1);
    column->addLayout(columns, 1);
    column->addSpacing(gap);
    column->addWidget(new RunnerCard(workspace));
}

void FilesView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    m_browser->setFixedWidth(window()->width() >= wideWindow ? wideBrowserWidth : browserWidth);
}

}  // namespace orvo
