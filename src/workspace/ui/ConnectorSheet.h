#pragma once

#include "appearance/controls/Sheet.h"
#include "assistants/Provider.h"

#include <optional>

namespace orvo {

class Launcher;
class OrvoButton;
class Workspace;

/// What stands between a person and a connector that is not ready: says what is missing and where the tool's
/// own documentation tells how to install it. Both references outlive the sheet.
class ConnectorSheet : public Sheet {
    Q_OBJECT

public:
    /// For `provider`, or for a new connector when there is none. Covers `window`.
    ConnectorSheet(const std::optional<Provider>& provider, Workspace& workspace, Launcher& launcher,
                   QWidget* window);

    /// Shows the sheet with the focus on its way out.
    void present();

private:
    QWidget* makeHeader(const std::optional<Provider>& provider) const;
    QWidget* makeBody(const std::optional<Provider>& provider);
    QWidget* makeFooter();
    QString explanationFor(const std::optional<Provider>& provider) const;

    Workspace& m_workspace;
    Launcher& m_launcher;
    OrvoButton* m_cancel = nullptr;
};

}  // namespace orvo
