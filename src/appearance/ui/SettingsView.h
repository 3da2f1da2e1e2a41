#pragma once

#include "platform/FilePath.h"

#include <QWidget>

#include <optional>

class QVBoxLayout;

namespace orvo {

class Launcher;
class Switch;
class Workspace;
enum class Destination;

/// The Settings page: how the workspace behaves, ways to other pages, and the keep-awake switch. The
/// references outlive the page.
class SettingsView final : public QWidget {
    Q_OBJECT

public:
    struct Facts {
        /// The application's version, for people.
        QString version;
        /// Where team runs are kept; nothing when this process keeps none.
        std::optional<FilePath> runsFolder;
    };

    SettingsView(Workspace& workspace, Launcher& launcher, Facts facts, QWidget* parent = nullptr);

private:
    QWidget* makeCards();
    QWidget* makeActions();
    QWidget* makeKeepAwake();
    QWidget* makePageButton(const QString& title, const QString& icon, Destination page,
                            bool primary = false);
    void openRuns();

    Workspace& m_workspace;
    Launcher& m_launcher;
    const Facts m_facts;
};

}  // namespace orvo
