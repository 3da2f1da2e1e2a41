#include "workspace/ui/WorkspaceInspector.h"

#include "appearance/controls/CheckRow.h"
#include "appearance/controls/Divider.h"
#include "appearance/controls/ElidedLabel.h"
#include "appearance/controls/Eyebrow.h"
#include "appearance/controls/IconTile.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/Paragraph.h"
#include "appearance/controls/Symbol.h"
#include "appearance/controls/layouts.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"

#include <QPainter>

namespace orvo {
namespace {

constexpr int inspectorWidth = 288;
constexpr int padding = 20;
/// Less than at the sides, so that everything is seen in the smallest window.
constexpr int foot = 12;
/// The highlight of a row reaches this far into the padding, so that its content aligns with the texts.
constexpr int rowOverhang = 6;

/// What is no row stands in by the rows' overhang.
QWidget* inset(QWidget* widget) {
    auto* const host = new QWidget;
    columnIn(host, 0, QMargins(rowOverhang, 0, rowOverhang, 0))->addWidget(widget);
    return host;
}

bool takesTasks(const Provider& provider) {
    return provider.id != u"shell";
}

}  // namespace

WorkspaceInspector::WorkspaceInspector(Workspace& workspace, QWidget* parent)
    : QWidget(parent), m_workspace(workspace) {
    setFixedWidth(inspectorWidth);
    auto* const content = new QWidget;
    constexpr int side = padding - rowOverhang;
    auto* const column = columnIn(content, padding, QMargins(side, padding, side, foot));
    for (QWidget* const section : {makeProject(), makeTargets(), makeModeExplanation(), makeNotes()}) {
        if (column->count() > 0) column->addWidget(inset(new Divider));
        column->addWidget(section);
    }
    column->addStretch(1);

    columnIn(this, 0, QMargins(1, 0, 0, 0))->addWidget(scrolling(content));

    observe(m_workspace, {&Workspace::folderChanged}, this, [this] { refreshProject(); });
    observe(m_workspace.assistants(), {&Assistants::providersChanged}, this, [this] { rebuildTargets(); });
    observe(m_workspace.assistants(), {&Assistants::availableChanged}, this, [this] { refreshTargets(); });
    observe(m_workspace, {&Workspace::selectedProvidersChanged}, this, [this] { refreshTargets(); });
    observe(m_workspace, {&Workspace::separateCopiesChanged}, this, [this] { refreshMode(); });
}

QWidget* WorkspaceInspector::makeProject() {
    auto* const section = new QWidget;
    auto* const column = columnIn(section, 12);
    m_projectName = new QWidget;
    auto* const name = rowIn(m_projectName, 10);
    name->addWidget(new IconTile(QStringLiteral("folder.fill")));
    m_folderName = new ElidedLabel(QString(), TypeRole::Name);
    name->addWidget(m_folderName, 1);
    m_noFolder = new Paragraph(tr("Open a folder to give your assistants a place to work."));
    m_chooseFolder =
        new OrvoButton(QString(), QString(), OrvoButton::Kind::Outlined, OrvoButton::Size::Small);
    connect(m_chooseFolder, &OrvoButton::clicked, this, [this] { m_workspace.chooseFolder(); });
    column->addWidget(m_projectName);
    column->addWidget(m_noFolder);
    column->addWidget(wide(m_chooseFolder));
    return inset(section);
}

QWidget* WorkspaceInspector::makeTargets() {
    auto* const section = new QWidget;
    auto* const column = columnIn(section);
    column->addWidget(inset(new Eyebrow(tr("Send task to"))));
    column->addSpacing(8);
    m_targetRows = columnIn(nullptr);
    column->addLayout(m_targetRows);
    column->addSpacing(12);
    auto* const terminal = new OrvoButton(tr("New terminal"), QStringLiteral("terminal"),
                                          OrvoButton::Kind::Outlined, OrvoButton::Size::Small);
    connect(terminal, &OrvoButton::clicked, this, [this] {
        m_workspace.launch(m_workspace.assistants().provider(QStringLiteral("shell")), QString());
    });
    column->addWidget(inset(wide(terminal)));
    return section;
}

QWidget* WorkspaceInspector::makeModeExplanation() {
    auto* const section = new QWidget;
    auto* const column = columnIn(section, 7);
    auto* const heading = rowIn(nullptr, 8);
    heading->addWidget(new Symbol(QStringLiteral("square.stack.3d.up"), 18, Ink::Accent));
    heading->addWidget(new ElidedLabel(tr("Work together, clearly"), TypeRole::Name), 1);
    column->addLayout(heading);
    m_mode = new Paragraph(QString(), TypeRole::Caption);
    column->addWidget(m_mode);
    return inset(section);
}

QWidget* WorkspaceInspector::makeNotes() {
    auto* const section = new QWidget;
    auto* const column = columnIn(section, 8);
    column->addWidget(new Paragraph(tr("Each selected assistant starts its own session. CLI installed means "
                                       "the program was found; login and "
                                       "model access are managed by that provider."),
                                    TypeRole::Caption));
    column->addWidget(new Paragraph(tr("Orvo history stays on this Mac"), TypeRole::Caption));
    return inset(section);
}

void WorkspaceInspector::rebuildTargets() {
    emptyLayout(*m_targetRows);
    m_rows.clear();
    for (const Provider& provider : m_workspace.assistants().providers()) {
        if (!takesTasks(provider)) continue;
        auto* const row =
            new CheckRow(provider.icon, colorFromHex(provider.colorHex.toStdString()), provider.shownName());
        connect(row, &CheckRow::chosen, this, [this, id = provider.id](bool on) { select(id, on); });
        connect(row, &CheckRow::setupRequested, this,
                [this, provider] { m_workspace.editConnector(provider); });
        m_targetRows->addWidget(row);
        m_rows.insert(provider.id, row);
    }
    refreshTargets();
}

void WorkspaceInspector::select(const QString& providerID, bool on) {
    QSet<QString> selected = m_workspace.selectedProviders();
    if (on)
        selected.insert(providerID);
    else
        selected.remove(providerID);
    m_workspace.setSelectedProviders(selected);
}

void WorkspaceInspector::refreshProject() {
    const bool hasFolder = m_workspace.folder().has_value();
    m_projectName->setVisible(hasFolder);
    m_noFolder->setVisible(!hasFolder);
    m_folderName->setText(m_workspace.folderName());
    m_chooseFolder->setTitle(hasFolder ? tr("Change folder  ↗") : tr("Choose folder  ↗"));
}

void WorkspaceInspector::refreshTargets() {
    for (auto it = m_rows.cbegin(); it != m_rows.cend(); ++it) {
        const bool ready = m_workspace.assistants().isReady(m_workspace.assistants().provider(it.key()));
        it.value()->setState(ready, m_workspace.selectedProviders().contains(it.key()));
    }
}

void WorkspaceInspector::refreshMode() {
    m_mode->setText(
        m_workspace.separateCopies()
            ? tr("Each assistant gets its own project copy. Compare results in Team runs and apply the "
                 "files you choose. Dependencies, secrets in .env files and symbolic links are skipped.")
            : tr("Assistants edit this same folder. Give them different tasks to avoid overlapping "
                 "edits."));
}

void WorkspaceInspector::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(QRect(0, 0, 1, height()), toQColor(rolesOf(this).border));
}

}  // namespace orvo
