#include "platform/fake/FakeDialogs.h"

#include <QtDebug>

namespace orvo {
namespace {

std::optional<FilePath> take(QList<std::optional<FilePath>>& answers, const char* panel,
                             const QString& text) {
    if (answers.isEmpty()) {
        qCritical("Unexpected %s: %s", panel, qUtf8Printable(text));
        return std::nullopt;
    }
    return answers.takeFirst();
}

}  // namespace

void FakeDialogs::answer(const QString& button, std::function<void()> meanwhile) {
    m_answers.append({button, std::move(meanwhile)});
}

int FakeDialogs::alert(const Alert& alert) {
    m_alerts.append(alert);
    const int cancelled = static_cast<int>(alert.buttons.size()) - 1;
    if (m_answers.isEmpty()) {
        qCritical("Unexpected alert: %s", qUtf8Printable(alert.message));
        return cancelled;
    }
    const Answer answer = m_answers.takeFirst();
    if (answer.meanwhile) answer.meanwhile();
    const auto index = alert.buttons.indexOf(answer.button);
    if (index < 0) {
        qCritical("The alert \"%s\" has no button \"%s\"", qUtf8Printable(alert.message),
                  qUtf8Printable(answer.button));
        return cancelled;
    }
    return static_cast<int>(index);
}

std::optional<FilePath> FakeDialogs::openFolder(const QString& message) {
    m_folderPanels.append(message);
    return take(m_folders, "folder panel", message);
}

std::optional<FilePath> FakeDialogs::openFile(const OpenPanel& panel) {
    m_openPanels.append(panel);
    return take(m_opened, "open panel", panel.message);
}

std::optional<FilePath> FakeDialogs::saveFile(const QString& proposedName,
                                              const std::optional<FilePath>& folder) {
    m_savePanels.append({proposedName, folder});
    return take(m_files, "save panel", proposedName);
}

}  // namespace orvo
