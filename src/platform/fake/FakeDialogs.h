#pragma once

#include "platform/Dialogs.h"

#include <QList>

#include <functional>

namespace orvo {

/// Answers questions from a script and records them. A question without a scripted answer is reported as a
/// Qt critical message, which fails the running test, and counts as cancelled.
class FakeDialogs final : public Dialogs {
public:
    struct SavePanel {
        QString proposedName;
        std::optional<FilePath> folder;
    };

    /// The next alert is answered by the button with this text; `meanwhile` runs while the question stands.
    void answer(const QString& button, std::function<void()> meanwhile = {});
    /// The next folder panel gives `folder`, or is cancelled.
    void chooseFolder(std::optional<FilePath> folder) { m_folders.append(std::move(folder)); }
    /// The next panel for an existing file gives `file`, or is cancelled.
    void openFile(std::optional<FilePath> file) { m_opened.append(std::move(file)); }
    /// The next save panel gives `file`, or is cancelled.
    void chooseFile(std::optional<FilePath> file) { m_files.append(std::move(file)); }

    const QList<Alert>& alerts() const { return m_alerts; }
    /// Messages of the folder panels shown.
    const QStringList& folderPanels() const { return m_folderPanels; }
    const QList<OpenPanel>& openPanels() const { return m_openPanels; }
    const QList<SavePanel>& savePanels() const { return m_savePanels; }
    /// False while a scripted answer still waits for its question.
    bool everyAnswerUsed() const {
        return m_answers.isEmpty() && m_folders.isEmpty() && m_opened.isEmpty() && m_files.isEmpty();
    }

    int alert(const Alert& alert) override;
    std::optional<FilePath> openFolder(const QString& message) override;
    std::optional<FilePath> openFile(const OpenPanel& panel) override;
    std::optional<FilePath> saveFile(const QString& proposedName,
                                     const std::optional<FilePath>& folder) override;

private:
    struct Answer {
        QString button;
        std::function<void()> meanwhile;
    };

    QList<Answer> m_answers;
    QList<std::optional<FilePath>> m_folders;
    QList<std::optional<FilePath>> m_opened;
    QList<std::optional<FilePath>> m_files;
    QList<Alert> m_alerts;
    QStringList m_folderPanels;
    QList<OpenPanel> m_openPanels;
    QList<SavePanel> m_savePanels;
};

}  // namespace orvo
