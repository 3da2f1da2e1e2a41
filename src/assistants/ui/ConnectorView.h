#pragma once

#include "appearance/controls/Sheet.h"
#include "assistants/Provider.h"

#include <optional>

namespace orvo {

class Launcher;
class OrvoButton;
class Paragraph;
class TextField;
class Theme;
class Workspace;

/// The sheet in which a connector is edited or added. Nothing reaches the model before "Save connector". The
/// references outlive the sheet.
class ConnectorView final : public Sheet {
    Q_OBJECT

public:
    /// For `provider`, or for a new connector when there is none. Covers `window`.
    ConnectorView(const std::optional<Provider>& provider, Workspace& workspace, Theme& theme,
                  Launcher& launcher, QWidget* window);

    /// Shows the sheet with the focus in its first field.
    void present();

private:
    QString title() const;
    QWidget* makeHeader() const;
    QWidget* makeBody();
    QWidget* makeFooter();
    void refreshCommand();
    void refreshLink();
    void refreshSave();

    /// What is typed, for checking it.
    Provider candidate() const;
    /// What is typed, as it is stored.
    Provider record() const;
    void save();
    void openDocumentation();

    const std::optional<Provider> m_provider;
    Workspace& m_workspace;
    Theme& m_theme;
    Launcher& m_launcher;
    TextField* m_name = nullptr;
    TextField* m_executable = nullptr;
    TextField* m_template = nullptr;
    TextField* m_documentation = nullptr;
    Paragraph* m_templateError = nullptr;
    OrvoButton* m_link = nullptr;
    OrvoButton* m_save = nullptr;
};

}  // namespace orvo
