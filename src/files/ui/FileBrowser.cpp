#include "files/ui/FileBrowser.h"

#include "appearance/controls/ElidedLabel.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/TextField.h"
#include "appearance/controls/TextLabel.h"
#include "appearance/controls/layouts.h"
#include "files/ui/FileList.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"

namespace orvo {

FileBrowser::FileBrowser(Workspace& workspace, QWidget* parent) : Card(parent), m_workspace(workspace) {
    constexpr int padding = 12;
    auto* const column = columnIn(this, 0, QMargins(1, padding, 1, padding - FileList::padding));
    auto* const field = rowIn(nullptr, 0, QMargins(padding, 0, padding, 0));
    m_search = new TextField(tr("Find a file…"));
    m_search->setAccessibleName(m_search->placeholderText());
    m_search->setIcon(QStringLiteral("magnifyingglass"));
    connect(m_search, &TextField::textChanged, &workspace.files(), &ProjectFiles::setSearch);
    field->addWidget(m_search);
    column->addLayout(field);
    column->addSpacing(8);

    auto* const heading = rowIn(nullptr, 0, QMargins(padding + FileList::rowPadding, 0, padding, 0));
    m_folder = new ElidedLabel(QString(), TypeRole::SmallControl);
    heading->addWidget(wide(m_folder), 1);
    const auto addButton = [&](const QString& title, const char* icon) {
        auto* const button =
            new OrvoButton(title, QLatin1String(icon), OrvoButton::Kind::Icon, OrvoButton::Size::Small);
        heading->addWidget(button);
        return button;
    };
    m_up = addButton(tr("Go up"), "arrow.turn.left.up");
    connect(m_up, &OrvoButton::clicked, this, &FileBrowser::goUp);
    m_reload = addButton(tr("Reload"), "arrow.clockwise");
    connect(m_reload, &OrvoButton::clicked, this, [this] { m_workspace.files().refreshFiles(); });
    column->addLayout(heading);
    column->addSpacing(4);
    m_nothingFound = new TextLabel(tr("No file matches."), TypeRole::Caption, Ink::Muted);
    m_nothingFound->setContentsMargins(padding + FileList::rowPadding, 0, 0, 0);
    column->addWidget(m_nothingFound);
    m_list = new FileList(workspace.files());
    column->addWidget(m_list, 1);

    observe(workspace.files(), {&ProjectFiles::searchChanged}, this, [this] { refreshSearch(); });
    // The list has its rows by now: it hears of these first.
    observe(workspace.files(), {&ProjectFiles::searchChanged, &ProjectFiles::filesChanged}, this,
            [this] { refreshNothingFound(); });
    observe(workspace.files(), {&ProjectFiles::browsingFolderChanged}, this, [this] { refreshFolder(); });
    observe(workspace, {&Workspace::folderChanged}, this, [this] { refreshFolder(); });
}

void FileBrowser::refreshSearch() {
    const QString& search = m_workspace.files().search();
    if (m_search->text() != search) m_search->setText(search);
}

void FileBrowser::refreshNothingFound() {
    m_nothingFound->setVisible(!m_workspace.files().search().isEmpty() && m_list->model()->rowCount() == 0);
}

void FileBrowser::refreshFolder() {
    const auto& browsed = m_workspace.files().browsingFolder();
    const auto& shown = browsed ? browsed : m_workspace.folder();
    m_folder->setText(shown ? shown->displayName() : tr("No project"));
    m_up->setEnabled(shown && shown->parent() != *shown);
    m_reload->setEnabled(shown.has_value());
}

void FileBrowser::goUp() {
    const auto& browsed = m_workspace.files().browsingFolder();
    if (browsed) m_workspace.files().refreshFiles(browsed->parent());
}

}  // namespace orvo
