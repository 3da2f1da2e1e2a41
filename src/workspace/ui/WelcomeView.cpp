#include "workspace/ui/WelcomeView.h"

#include "appearance/controls/ActionCard.h"
#include "appearance/controls/ElidedLabel.h"
#include "appearance/controls/FlowGrid.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/Symbol.h"
#include "appearance/controls/layouts.h"
#include "assistants/ui/ProviderGrid.h"
#include "workspace/Workspace.h"
#include "workspace/ui/WelcomeHero.h"

#include <array>

namespace orvo {
namespace {

/// At the right each section keeps its own distance, because some reach into the margin.
constexpr int margin = 24;
constexpr int compactCardWidth = 280;
constexpr int plainButtonPadding = 10;
constexpr int gap = 12;

struct Idea {
    const char* title;
    const char* icon;
    const char* task;
};

constexpr std::array ideas = {
    Idea{QT_TRANSLATE_NOOP("orvo::WelcomeView", "Build something"), "hammer",
         QT_TRANSLATE_NOOP("orvo::WelcomeView",
                           "Help me build a new feature in this project. Start by inspecting the folder and "
                           "proposing a plan.")},
    Idea{QT_TRANSLATE_NOOP("orvo::WelcomeView", "Review my code"), "checkmark.shield",
         QT_TRANSLATE_NOOP(
             "orvo::WelcomeView",
             "Review this project for bugs and opportunities to improve it. Explain your findings "
             "before making changes.")},
    Idea{QT_TRANSLATE_NOOP("orvo::WelcomeView", "Explore a project"), "doc.text.magnifyingglass",
         QT_TRANSLATE_NOOP(
             "orvo::WelcomeView",
             "Explore this project and explain its architecture, how to run it, and where to start. "
             "Do not modify files.")},
};

}  // namespace

WelcomeView::WelcomeView(Workspace& workspace, Launcher& launcher, QWidget* parent)
    : QWidget(parent), m_workspace(workspace), m_launcher(launcher) {
    auto* const column = columnIn(this, 0, QMargins(margin, 32, 0, margin));
    column->addWidget(new WelcomeHero);
    column->addSpacing(20);
    column->addWidget(makeIdeas());
    column->addSpacing(24);
    column->addWidget(makeTools());
    column->addStretch(1);
}

QWidget* WelcomeView::makeIdeas() {
    auto* const section = new QWidget;
    auto* const column = columnIn(section, gap, QMargins(0, 0, margin, 0));
    auto* const heading = rowIn(nullptr, 10);
    heading->addWidget(new TextLabel(tr("Start with an idea"), TypeRole::Section));
    heading->addWidget(new TextLabel(tr("Or write your own below"), TypeRole::SmallControl, Ink::Muted), 1);
    column->addLayout(heading);

    auto* const cards = rowIn(nullptr, gap);
    for (const Idea& idea : ideas) {
        auto* const card = new ActionCard(QString::fromLatin1(idea.icon), tr(idea.title));
        connect(card, &ActionCard::clicked, this, [this, &idea] { m_workspace.setPrompt(tr(idea.task)); });
        cards->addWidget(card, 1);
    }
    column->addLayout(cards);
    return section;
}

QWidget* WelcomeView::makeTools() {
    auto* const section = new QWidget;
    auto* const column = columnIn(section, 8);
    // The button's padding hangs into the margin, so that its text aligns with the cards.
    auto* const heading = rowIn(nullptr, 0, QMargins(0, 0, margin - plainButtonPadding, 0));
    heading->addWidget(new TextLabel(tr("Connected tools"), TypeRole::Section), 1);
    auto* const viewAll =
        new OrvoButton(tr("View all  ↗"), QString(), OrvoButton::Kind::Plain, OrvoButton::Size::Small);
    connect(viewAll, &OrvoButton::clicked, this, [this] { m_workspace.setDestination(Destination::Agents); });
    heading->addWidget(viewAll);
    column->addLayout(heading);

    auto* const tools =
        new ProviderGrid(ProviderCard::Form::Compact, compactCardWidth, m_workspace, m_launcher);
    tools->grid().setContentsMargins(0, 0, margin, 0);
    column->addWidget(tools);

    auto* const note = rowIn(nullptr, 6, QMargins(0, 2, margin, 0));
    note->addWidget(new Symbol(QStringLiteral("plus.circle"), 14, Ink::Muted));
    note->addWidget(new ElidedLabel(tr("Z.ai, your own tools, and custom CLI connectors live in Assistants."),
                                    TypeRole::Caption, Ink::Muted),
                    1);
    column->addLayout(note);
    return section;
}

}  // namespace orvo
