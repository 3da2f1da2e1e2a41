#include "assistants/ui/ProviderCard.h"

#include "appearance/controls/Divider.h"
#include "appearance/controls/ElidedLabel.h"
#include "appearance/controls/IconTile.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/StatusPill.h"
#include "appearance/controls/layouts.h"
#include "platform/Launcher.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"

namespace orvo {
namespace {

constexpr int compactTile = 32;
constexpr int fullTile = 36;
/// Lines of a card stand closer than captions elsewhere.
constexpr int stackedLine = 14;

bool canSignIn(const QString& id) {
    return id == u"claude" || id == u"codex" || id == u"kimi";
}

bool canResume(const QString& id) {
    return canSignIn(id) || id == u"antigravity";
}

Rgb colorOf(const Provider& provider) {
    return colorFromHex(provider.colorHex.toStdString());
}

/// Connected and ready for work, as far as it is known.
bool isConnected(const QString& label) {
    return label == u"Signed in" || label == u"Ready";
}

}  // namespace

ProviderCard::ProviderCard(const Provider& provider, Form form, Workspace& workspace, Launcher& launcher,
                           QWidget* parent)
    : Card(parent), m_provider(provider), m_workspace(workspace), m_launcher(launcher) {
    m_mainAction =
        new OrvoButton(QString(), QString(), OrvoButton::Kind::Outlined,
                       form == Form::Compact ? OrvoButton::Size::Compact : OrvoButton::Size::Regular);
    connect(m_mainAction, &OrvoButton::clicked, this, [this] { m_workspace.launch(m_provider, QString()); });
    if (form == Form::Compact)
        layOutCompact();
    else
        layOutFull();

    observe(
        m_workspace.assistants(),
        {&Assistants::availableChanged, &Assistants::connectionStatusChanged, &Assistants::providersChanged},
        this, [this] { refreshState(); });
}

void ProviderCard::layOutCompact() {
    m_status = new ElidedLabel(QString(), TypeRole::Caption, Ink::Muted);
    auto* const subtitle = new ElidedLabel(m_provider.subtitle, TypeRole::Caption, Ink::Muted);
    subtitle->setLineHeight(stackedLine);
    m_status->setLineHeight(stackedLine);

    auto* const row = rowIn(this, 10, QMargins(10, 8, 10, 8));
    row->addWidget(new IconTile(m_provider.icon, compactTile, colorOf(m_provider)));
    auto* const lines = columnIn(nullptr);
    lines->addStretch();
    lines->addWidget(new ElidedLabel(m_provider.shownName(), TypeRole::Name));
    lines->addWidget(subtitle);
    lines->addWidget(m_status);
    lines->addStretch();
    row->addLayout(lines, 1);
    row->addWidget(m_mainAction);
    setFixedHeight(64);
}

void ProviderCard::layOutFull() {
    m_pill = new StatusPill(QString(), Ink::Muted);
    m_path = new ElidedLabel(QString(), TypeRole::Caption, Ink::Muted);
    m_path->setElideMode(Qt::ElideMiddle);

    auto* const column = columnIn(this);
    auto* const top = columnIn(nullptr, 0, QMargins(16, 16, 16, 12));
    auto* const heading = rowIn(nullptr, 12);
    heading->addWidget(new IconTile(m_provider.icon, fullTile, colorOf(m_provider)));
    auto* const names = columnIn(nullptr);
    names->addWidget(new ElidedLabel(m_provider.shownName(), TypeRole::CardTitle));
    names->addWidget(new ElidedLabel(m_provider.subtitle, TypeRole::Caption, Ink::Muted));
    heading->addLayout(names, 1);
    heading->addWidget(m_mainAction, 0, Qt::AlignTop);
    top->addLayout(heading);
    top->addSpacing(12);
    top->addWidget(m_pill, 0, Qt::AlignLeft);
    top->addSpacing(8);
    top->addWidget(m_path);
    column->addLayout(top);
    column->addStretch();
    column->addWidget(new Divider);
    column->addWidget(makeFooter());
}

QWidget* ProviderCard::makeFooter() {
    auto* const footer = new QWidget;
    auto* const row = rowIn(footer, 4, QMargins(10, 6, 10, 6));
    const auto addAction = [&](const QString& title, const QString& icon, auto work) {
        auto* const button = new OrvoButton(title, icon, OrvoButton::Kind::Plain, OrvoButton::Size::Small);
        // The bare verb is on every card; the description tells them apart.
        button->setAccessibleDescription(m_provider.shownName());
        connect(button, &OrvoButton::clicked, this, work);
        row->addWidget(button);
        return button;
    };
    if (canSignIn(m_provider.id)) {
        addAction(tr("Sign in"), QStringLiteral("person.crop.circle"),
                  [this] { m_workspace.signIn(m_provider); });
    }
    if (canResume(m_provider.id)) {
        m_resume = addAction(tr("Resume"), QStringLiteral("clock.arrow.circlepath"),
                             [this] { m_workspace.resume(m_provider); });
    }
    addAction(tr("Configure"), QStringLiteral("slider.horizontal.3"),
              [this] { m_workspace.editConnector(m_provider); });
    row->addStretch();
    if (const auto address = m_provider.documentationURL()) {
        auto* const link =
            new OrvoButton(tr("%1 documentation").arg(m_provider.shownName()), QStringLiteral("book"),
                           OrvoButton::Kind::Icon, OrvoButton::Size::Small);
        connect(link, &OrvoButton::clicked, this, [this, address] {
            const Result<void> opened = m_launcher.openAddress(*address);
            if (!opened) m_workspace.notify(opened.error().message);
        });
        row->addWidget(link);
    }
    return footer;
}

void ProviderCard::refreshState() {
    const Assistants& assistants = m_workspace.assistants();
    const bool ready = assistants.isReady(m_provider);
    m_mainAction->setTitle(ready ? tr("Open") : tr("Set up"));
    m_mainAction->setIconName(ready ? QStringLiteral("arrow.up.right") : QString());
    m_mainAction->setAccessibleDescription(m_provider.shownName());

    const QString label = assistants.connectionLabel(m_provider);
    const Ink ink = isConnected(label) ? Ink::Accent : Ink::Muted;
    if (m_status) {
        m_status->setText(label);
        m_status->setInk(ink);
    }
    if (m_pill) m_pill->setStatus(label, ink);
    const auto path = assistants.available().constFind(m_provider.id);
    const bool installed = path != assistants.available().constEnd();
    // What is not there has no conversation to go on with.
    if (m_resume) m_resume->setEnabled(installed);
    if (m_path) {
        m_path->setText(installed ? path->display() : tr("Install this tool to connect it"));
        m_path->setFont(installed ? monoFont(11) : fontOf(TypeRole::Caption));
    }
}

}  // namespace orvo
