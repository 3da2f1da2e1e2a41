#include "assistants/ui/ProviderGrid.h"

#include "appearance/controls/FlowGrid.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"

#include <algorithm>

namespace orvo {
namespace {

constexpr int gap = 12;

}  // namespace

ProviderGrid::ProviderGrid(ProviderCard::Form form, int minimumColumnWidth, Workspace& workspace,
                           Launcher& launcher, QWidget* parent)
    : QWidget(parent),
      m_form(form),
      m_workspace(workspace),
      m_launcher(launcher),
      m_grid(new FlowGrid(minimumColumnWidth, gap, this)) {
    observe(m_workspace.assistants(), {&Assistants::providersChanged}, this, [this] { refreshCards(); });
}

ProviderCard* ProviderGrid::takeCard(const Provider& provider) {
    const auto found =
        std::ranges::find_if(m_cards, [&](const ProviderCard* card) { return card->provider() == provider; });
    return found == m_cards.end() ? nullptr : m_cards.takeAt(found - m_cards.begin());
}

void ProviderGrid::refreshCards() {
    while (QLayoutItem* const item = m_grid->takeAt(0))
        delete item;
    QList<ProviderCard*> cards;
    for (const Provider& provider : m_workspace.assistants().providers()) {
        ProviderCard* card = takeCard(provider);
        if (!card) card = new ProviderCard(provider, m_form, m_workspace, m_launcher, this);
        m_grid->addWidget(card);
        cards.append(card);
    }
    qDeleteAll(m_cards);
    m_cards = cards;
}

}  // namespace orvo
