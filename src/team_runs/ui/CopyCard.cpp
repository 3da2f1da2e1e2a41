#include "team_runs/ui/CopyCard.h"

#include "appearance/controls/ElidedLabel.h"
#include "appearance/controls/IconTile.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/Spinner.h"
#include "appearance/controls/Symbol.h"
#include "appearance/controls/layouts.h"
#include "platform/Launcher.h"
#include "team_runs/TeamRuns.h"
#include "workspace/Workspace.h"

namespace orvo {
namespace {

constexpr int padding = 16;

QString textOf(const RunCopy& copy, CopyState state) {
    switch (state) {
        case CopyState::Working:
            return CopyCard::tr("Working…");
        case CopyState::Finished:
            return CopyCard::tr("Finished");
        case CopyState::Failed:
            return CopyCard::tr("Needs attention · exit %1").arg(copy.exitCode.value_or(-1));
        case CopyState::Interrupted:
            break;
    }
    return CopyCard::tr("Interrupted");
}

}  // namespace

CopyCard::CopyCard(const RunCopy& copy, const TeamRuns& teamRuns, Workspace& workspace, Launcher& launcher,
                   QWidget* parent)
    : Card(parent),
      m_copy(copy),
      m_teamRuns(teamRuns),
      m_workspace(workspace),
      m_launcher(launcher),
      m_state(new ElidedLabel(QString(), TypeRole::Caption, Ink::Muted)),
      m_working(new Spinner),
      m_finished(new Symbol(QStringLiteral("checkmark"), 16, Ink::Accent)),
      m_failed(new Symbol(QStringLiteral("exclamationmark.triangle"), 16, Ink::Danger)) {
    setFixedWidth(cardWidth);
    const Provider provider = workspace.assistants().provider(copy.provider);
    // A connector that is gone has only its id.
    const bool isKnown = provider.id == copy.provider;
    const QString name = isKnown ? provider.shownName() : copy.provider;
    setAccessibleName(name);

    auto* const column = columnIn(this, 12, QMargins(padding, padding, padding, padding));
    auto* const heading = rowIn(nullptr, 10);
    heading->addWidget(new IconTile(provider.icon, 32, colorFromHex(provider.colorHex.toStdString())));
    auto* const lines = columnIn(nullptr);
    lines->addWidget(new ElidedLabel(name, TypeRole::Name));
    lines->addWidget(m_state);
    heading->addLayout(lines, 1);
    heading->addWidget(m_working);
    heading->addWidget(m_finished);
    heading->addWidget(m_failed);
    column->addLayout(heading);
    column->addWidget(makeActions());
    refresh(copy);
}

QWidget* CopyCard::makeActions() {
    auto* const host = new QWidget;
    auto* const row = rowIn(host, 8);
    auto* const review = new OrvoButton(tr("Review files"), QStringLiteral("doc.text.magnifyingglass"),
                                        OrvoButton::Kind::Primary, OrvoButton::Size::Small);
    connect(review, &OrvoButton::clicked, this, &CopyCard::reviewRequested);
    auto* const output =
        new OrvoButton(tr("Output"), QString(), OrvoButton::Kind::Plain, OrvoButton::Size::Small);
    connect(output, &OrvoButton::clicked, this, &CopyCard::outputRequested);
    auto* const open =
        new OrvoButton(tr("Open working copy"), QString(), OrvoButton::Kind::Plain, OrvoButton::Size::Small);
    connect(open, &OrvoButton::clicked, this, &CopyCard::openFolder);
    for (OrvoButton* const button : {review, output, open}) {
        // The same words are on every card; the description tells them apart.
        button->setAccessibleDescription(accessibleName());
        row->addWidget(button);
    }
    row->addStretch();
    return host;
}

void CopyCard::openFolder() {
    if (const auto opened = m_launcher.openFolder(m_copy.directory); !opened)
        m_workspace.notify(opened.error().message);
}

void CopyCard::refresh(const RunCopy& copy) {
    m_copy = copy;
    const CopyState state = m_teamRuns.copyState(copy);
    m_state->setText(textOf(copy, state));
    m_working->setVisible(state == CopyState::Working);
    m_finished->setVisible(state == CopyState::Finished);
    m_failed->setVisible(state == CopyState::Failed);
}

}  // namespace orvo
