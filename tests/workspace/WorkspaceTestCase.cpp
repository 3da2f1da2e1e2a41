#include "workspace/WorkspaceTestCase.h"

#include <QDir>

#include <algorithm>

namespace orvo::test {

WorkspaceTestCase::WorkspaceTestCase() {
    home = makeFolder("home");
    project = makeFolder("project");
    qputenv("HOME", home.bytes());
}

WorkspaceTestCase::~WorkspaceTestCase() {
    if (!workspace) return;
    workspace->stopAll();
    EXPECT_TRUE(waitFor([this] { return !workspace->anySessionRunning(); }));
}

Workspace& WorkspaceTestCase::makeWorkspace(Persist persist) {
    workspace = std::make_unique<Workspace>(
        WorkspaceServices{.preferences = persist == Persist::Yes ? &preferences : nullptr,
                          .clock = clock,
                          .dialogs = dialogs,
                          .launcher = launcher,
                          .sleepInhibitor = sleepInhibitor,
                          .tools = {.home = home, .systemFolders = {}},
                          .historyInbox = historyInbox});
    workspace->setSeparateCopies(false);
    return *workspace;
}

FilePath WorkspaceTestCase::makeFolder(const char* name) {
    const QString path = root.filePath(QString::fromUtf8(name));
    EXPECT_TRUE(QDir().mkpath(path));
    return FilePath::fromString(path);
}

void WorkspaceTestCase::install(const char* script, const char* name) {
    const QString folder = home.display() + QStringLiteral("/.local/bin/");
    EXPECT_TRUE(QDir().mkpath(folder));
    EXPECT_TRUE(QFile::link(QStringLiteral(ORVO_TEST_DATA "/bin/") + QString::fromUtf8(script),
                            folder + QString::fromUtf8(name ? name : script)));
    if (workspace) workspace->assistants().refreshProviders();
}

QStringList WorkspaceTestCase::runningCommands() const {
    QStringList commands;
    for (const auto& session : workspace->sessions())
        commands.append(session->command());
    return commands;
}

QString WorkspaceTestCase::textOf(const TerminalSession& session) {
    return QString::fromStdString(session.screen().plainText());
}

bool WorkspaceTestCase::everySessionEnds() {
    QSet<QUuid> answered;
    return waitFor([&] {
        for (const auto& session : workspace->sessions()) {
            if (!answered.contains(session->id()) && textOf(*session).contains(QStringLiteral("[y/n]"))) {
                answered.insert(session->id());
                session->send(QStringLiteral("y\r"));
            }
        }
        return !workspace->anySessionRunning();
    });
}

std::shared_ptr<TerminalSession> WorkspaceTestCase::run(const char* command) {
    return workspace->startSession(QStringLiteral("shell"), QString::fromUtf8(command),
                                   QString::fromUtf8(command), project);
}

}  // namespace orvo::test
