#pragma once

#include "assistants/ui/ProviderCard.h"

#include <QList>

namespace orvo {

class FlowGrid;

/// A card for every connector, in their order. Cards of records that did not change stay, with the focus in
/// them. Both references outlive the grid.
class ProviderGrid final : public QWidget {
    Q_OBJECT

public:
    ProviderGrid(ProviderCard::Form form, int minimumColumnWidth, Workspace& workspace, Launcher& launcher,
                 QWidget* parent = nullptr);

    FlowGrid& grid() { return *m_grid; }

private:
    void refreshCards();
    /// The card of this record, out of those that are there; null when there is none.
    ProviderCard* takeCard(const Provider& provider);

    ProviderCard::Form m_form;
    Workspace& m_workspace;
    Launcher& m_launcher;
    FlowGrid* m_grid;
    QList<ProviderCard*> m_cards;
};

}  // namespace orvo
