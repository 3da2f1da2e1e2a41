#pragma once

#include "appearance/controls/Card.h"
#include "assistants/Provider.h"

namespace orvo {

class ElidedLabel;
class Launcher;
class OrvoButton;
class StatusPill;
class Workspace;

/// One connector with its state and what can be done with it. The compact form stands on the welcome page,
/// the full one on the Assistants page. The card is made for one record; a changed record gets a new card.
class ProviderCard : public Card {
    Q_OBJECT

public:
    enum class Form { Full, Compact };

    ProviderCard(const Provider& provider, Form form, Workspace& workspace, Launcher& launcher,
                 QWidget* parent = nullptr);

    const Provider& provider() const { return m_provider; }

private:
    void layOutCompact();
    void layOutFull();
    QWidget* makeFooter();
    void refreshState();

    const Provider m_provider;
    Workspace& m_workspace;
    Launcher& m_launcher;
    OrvoButton* m_mainAction = nullptr;
    /// Compact form.
    ElidedLabel* m_status = nullptr;
    /// Full form.
    StatusPill* m_pill = nullptr;
    ElidedLabel* m_path = nullptr;
    /// Only for assistants that can be resumed.
    OrvoButton* m_resume = nullptr;
};

}  // namespace orvo
