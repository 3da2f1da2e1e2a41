#include "workspace/WorkspaceMacActions.h"

#include "platform/DesktopControl.h"
#include "platform/Dialogs.h"
#include "workspace/Workspace.h"

#include <QPointer>

namespace orvo {
namespace {

// Where desktops keep the entries of installed applications.
constexpr char applicationsFolder[] = "/usr/share/applications";

}  // namespace

WorkspaceMacActions::WorkspaceMacActions(Workspace& workspace, DesktopControl& desktop, Clock& clock,
                                         const FilePath& plans, QObject* parent)
    : QObject(parent),
      m_workspace(workspace),
      m_desktop(desktop),
      m_planner({.host = *this,
                 .desktop = desktop,
                 .dialogs = workspace.dialogs(),
                 .clock = clock,
                 .plans = plans}) {}

void WorkspaceMacActions::openApplication() {
    const auto file = m_workspace.dialogs().openFile({.message = tr("Choose an application to open."),
                                                      .folder = FilePath(applicationsFolder),
                                                      .patterns = {}});
    if (!file) return;
    const QByteArray name = file->nameBytes();
    if (!name.endsWith(".desktop") && !name.endsWith(".app")) return;
    // What a package manager has installed goes by its id, anything else by its file.
    auto application = m_desktop.application(QString::fromUtf8(name));
    if (!application) application = m_desktop.application(file->display());
    if (!application) {
        notify(tr("“%1” is not an application that can be opened here.").arg(file->displayName()));
        return;
    }
    const QPointer<WorkspaceMacActions> self(this);
    m_desktop.openApplication(*application, [self](const auto& opened) {
        if (self && !opened) self->notify(opened.error().message);
    });
}

void WorkspaceMacActions::openTerminal() {
    m_workspace.launch(m_workspace.assistants().provider(QStringLiteral("shell")), QString());
}

void WorkspaceMacActions::runScript(const QString& script) {
    const std::optional<FilePath> folder = m_workspace.folder();
    if (!folder) {
        m_workspace.chooseFolder();
        return;
    }
    m_workspace.startSession(QStringLiteral("shell"), tr("Mac action · AppleScript"),
                             QStringLiteral("/usr/bin/osascript -e ") + shellQuote(script), *folder);
}

std::optional<FilePath> WorkspaceMacActions::executable(const QString& providerID) const {
    const auto& available = m_workspace.assistants().available();
    const auto found = available.constFind(providerID);
    if (found == available.constEnd()) return std::nullopt;
    return *found;
}

std::shared_ptr<TerminalSession> WorkspaceMacActions::startSession(
    const QString& provider, const QString& title, const QString& command, const FilePath& directory,
    std::function<void(TerminalSession&)> onFinish) {
    return m_workspace.startSession(provider, title, command, directory, {}, std::move(onFinish));
}

void WorkspaceMacActions::showMacActions() {
    m_workspace.setDestination(Destination::Mac);
}

void WorkspaceMacActions::focusSession(const QUuid& id) {
    m_workspace.focusSession(id);
}

void WorkspaceMacActions::notify(const QString& message) {
    m_workspace.notify(message);
}

}  // namespace orvo
