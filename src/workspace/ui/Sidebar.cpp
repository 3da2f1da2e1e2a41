#include "workspace/ui/Sidebar.h"

#include "appearance/controls/Divider.h"
#include "appearance/controls/ElidedLabel.h"
#include "appearance/controls/Eyebrow.h"
#include "appearance/controls/ListRow.h"
#include "appearance/controls/NavRow.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/OrvoMark.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/Paragraph.h"
#include "appearance/controls/Symbol.h"
#include "appearance/controls/layouts.h"
#include "platform/observe.h"
#include "workspace/SessionNotices.h"
#include "workspace/Workspace.h"
#include "workspace/ui/version.h"

#include <QEvent>
#include <QPainter>

namespace orvo {
namespace {

constexpr int sidebarWidth = 232;
constexpr int padding = 12;
/// What stands in the rows stands this far in from their edge, and so do texts without a row.
constexpr int inset = 8;
constexpr int shownProjects = 4;

}  // namespace

Sidebar::Sidebar(Workspace& workspace, QWidget* parent) : QWidget(parent), m_workspace(workspace) {
    setFixedWidth(sidebarWidth);
    auto* const column = columnIn(this);
    // One pixel at the right belongs to the line that parts the sidebar from the page.
    auto* const top = columnIn(nullptr, 0, QMargins(padding, 2, padding + 1, 0));
    top->addWidget(makeBrand());
    top->addSpacing(6);
    top->addWidget(makeNavigation());
    top->addSpacing(20);
    top->addWidget(makeRecentProjects());
    top->addSpacing(padding);
    auto* const open =
        new OrvoButton(tr("Open project"), QStringLiteral("folder.badge.plus"), OrvoButton::Kind::Outlined);
    connect(open, &OrvoButton::clicked, this, [this] { m_workspace.chooseFolder(); });
    top->addWidget(wide(open));
    column->addLayout(top);
    column->addStretch(1);
    column->addWidget(makeFooter());

    observe(m_workspace, {&Workspace::destinationChanged, &Workspace::sessionsChanged}, this,
            [this] { refreshNavigation(); });
    observe(m_workspace, {&Workspace::sessionsChanged, &Workspace::sessionMarksChanged}, this,
            [this] { refreshWanted(); });
    m_rows[Destination::Workspace]->installEventFilter(this);
    observe(m_workspace, {&Workspace::recentFoldersChanged}, this, [this] { refreshRecentProjects(); });
}

QWidget* Sidebar::makeBrand() {
    auto* const brand = new QWidget;
    brand->setFixedHeight(64);
    auto* const row = rowIn(brand, 10, QMargins(inset, 0, 0, 0));
    row->addWidget(new OrvoMark(32));
    auto* const lines = columnIn(nullptr);
    auto* const motto = new TextLabel(tr("Your ideas, in orbit"), TypeRole::Caption, Ink::Muted);
    motto->setLineHeight(14);
    lines->addStretch();
    lines->addWidget(new TextLabel(tr("Orvo AI"), TypeRole::CardTitle));
    lines->addWidget(motto);
    lines->addStretch();
    row->addLayout(lines, 1);
    return brand;
}

QWidget* Sidebar::makeNavigation() {
    auto* const navigation = new QWidget;
    auto* const column = columnIn(navigation, 2);
    for (const Destination destination : allDestinations) {
        auto* const row = new NavRow(symbolOf(destination), textOf(destination));
        connect(row, &NavRow::clicked, this,
                [this, destination] { m_workspace.setDestination(destination); });
        column->addWidget(row);
        m_rows.insert(destination, row);
    }
    return navigation;
}

QWidget* Sidebar::makeRecentProjects() {
    auto* const section = new QWidget;
    auto* const column = columnIn(section, 6);
    auto* const heading = rowIn(nullptr, 0, QMargins(inset, 0, 0, 0));
    heading->addWidget(new Eyebrow(tr("Recent projects")));
    column->addLayout(heading);
    m_recentRows = columnIn(nullptr);
    column->addLayout(m_recentRows);
    return section;
}

QWidget* Sidebar::makeFooter() {
    auto* const footer = new QWidget;
    footer->setFixedHeight(55);
    auto* const column = columnIn(footer, 0, QMargins(0, 0, 1, 0));
    column->addWidget(new Divider);
    auto* const row = rowIn(nullptr, 11, QMargins(padding + inset + 1, 0, padding, 0));
    row->addWidget(new Symbol(QStringLiteral("laptopcomputer"), 16, Ink::Muted));
    auto* const lines = columnIn(nullptr);
    auto* const version =
        new ElidedLabel(tr("Local workspace · v%1").arg(versionText()), TypeRole::Caption, Ink::Muted);
    version->setLineHeight(14);
    lines->addStretch();
    lines->addWidget(new TextLabel(tr("Made for your Mac"), TypeRole::SmallControl));
    lines->addWidget(version);
    lines->addStretch();
    row->addLayout(lines, 1);
    column->addLayout(row, 1);
    return footer;
}

void Sidebar::refreshNavigation() {
    for (auto it = m_rows.cbegin(); it != m_rows.cend(); ++it) {
        it.value()->setCurrent(it.key() == m_workspace.destination());
    }
    m_rows[Destination::Workspace]->setCount(static_cast<int>(m_workspace.sessions().size()));
}

void Sidebar::refreshWanted() {
    NavRow& row = *m_rows[Destination::Workspace];
    const QString asking = askingText(m_workspace);
    row.setWanted(!asking.isEmpty());
    row.setToolTip(asking.isEmpty() ? QString() : plainToolTip(asking));
}

bool Sidebar::eventFilter(QObject* watched, QEvent* event) {
    // The evidence has an age.
    if (event->type() == QEvent::ToolTip) refreshWanted();
    return QWidget::eventFilter(watched, event);
}

void Sidebar::refreshRecentProjects() {
    emptyLayout(*m_recentRows);
    const QList<FilePath> recent = m_workspace.recentFolders().mid(0, shownProjects);
    for (const FilePath& folder : recent) {
        auto* const row = new ListRow(folder.displayName());
        // Opening a project rebuilds these rows, so the one that was chosen must be done with its click
        // first.
        connect(
            row, &ListRow::clicked, this,
            [this, folder] {
                if (m_workspace.files().confirmDiscard()) m_workspace.setFolder(folder);
            },
            Qt::QueuedConnection);
        m_recentRows->addWidget(row);
    }
    if (recent.isEmpty()) {
        auto* const hint = new QWidget;
        columnIn(hint, 0, QMargins(inset, 0, inset, 0))
            ->addWidget(new Paragraph(tr("Your projects will appear here."), TypeRole::Caption));
        m_recentRows->addWidget(hint);
    }
}

void Sidebar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const Roles& roles = rolesOf(this);
    painter.fillRect(rect(), toQColor(roles.sidebar));
    painter.fillRect(QRect(width() - 1, 0, 1, height()), toQColor(roles.border));
}

}  // namespace orvo
