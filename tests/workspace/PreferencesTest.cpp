#include "history/HistoryInbox.h"
#include "workspace/WorkspaceTestCase.h"

namespace orvo {
namespace {

using namespace std::chrono_literals;

class WorkspacePreferences : public test::WorkspaceTestCase {};

TEST_F(WorkspacePreferences, StoredStateIsRestoredWithoutANotice) {
    preferences.preset("keepAwake", true);
    preferences.preset("recentFolders", QStringList{QStringLiteral("/a"), QStringLiteral("/b")});
    preferences.preset("workspace", project.display());
    makeWorkspace();
    EXPECT_TRUE(workspace->keepAwake());
    EXPECT_EQ(workspace->recentFolders(), (QList<FilePath>{FilePath("/a"), FilePath("/b")}));
    EXPECT_EQ(workspace->folder(), project);
    EXPECT_EQ(workspace->files().browsingFolder(), project);
    EXPECT_FALSE(workspace->toast());
}

TEST_F(WorkspacePreferences, AStoredFolderThatIsGoneIsDroppedSilently) {
    preferences.preset("workspace", project.display() + QStringLiteral("/gone"));
    makeWorkspace();
    EXPECT_FALSE(workspace->folder());
    EXPECT_EQ(workspace->folderName(), QStringLiteral("Choose a project"));
    EXPECT_FALSE(workspace->toast());
}

TEST_F(WorkspacePreferences, UndecodableConnectorsAreKeptAsideWhenOverwritten) {
    preferences.preset("providers", QByteArray("[{\"id\":1}]"));
    makeWorkspace();
    EXPECT_EQ(workspace->assistants().providers(), Provider::defaults());
    EXPECT_TRUE(preferences.setAside().isEmpty());

    Provider provider = Provider::defaults().first();
    provider.name = QStringLiteral("Mine");
    workspace->saveProvider(provider);
    EXPECT_EQ(toast(), QStringLiteral("Mine configuration saved."));
    EXPECT_EQ(preferences.setAside().value("providers"), PreferenceValue(QByteArray("[{\"id\":1}]")));
    EXPECT_EQ(decodeProviders(*preferences.value(preference::providers)),
              workspace->assistants().providers());
}

TEST_F(WorkspacePreferences, AStoredListReplacesTheCatalogWhole) {
    preferences.preset("providers", encodeProviders({Provider::defaults().at(1)}));
    makeWorkspace();
    EXPECT_EQ(workspace->assistants().providers(), QList<Provider>{Provider::defaults().at(1)});
    EXPECT_EQ(workspace->assistants().provider(QStringLiteral("claude")).id, QStringLiteral("shell"));
}

TEST_F(WorkspacePreferences, WithoutPersistenceNothingIsReadOrWritten) {
    preferences.preset("keepAwake", true);
    preferences.preset("workspace", project.display());
    makeWorkspace(Persist::No);
    EXPECT_FALSE(workspace->keepAwake());
    EXPECT_FALSE(workspace->folder());
    EXPECT_FALSE(workspace->assistants().checkingConnections());
    workspace->setFolder(project);
    workspace->setKeepAwake(true);
    workspace->saveProvider(Provider::defaults().first());
    EXPECT_TRUE(preferences.writes().isEmpty());
    EXPECT_EQ(workspace->selectedProviders(),
              (QSet<QString>{QStringLiteral("claude"), QStringLiteral("codex")}));
}

TEST_F(WorkspacePreferences, SessionsOfCommandLineRunsEnterTheHistory) {
    const HistoryInbox inbox(home.child("history.pending"));
    HistoryEntry entry;
    entry.id = QUuid::createUuid();
    entry.title = QStringLiteral("before");
    entry.directory = project;
    entry.started = clock.now();
    ASSERT_TRUE(inbox.append(entry));
    historyInbox = &inbox;
    makeWorkspace();
    ASSERT_EQ(workspace->history().entries().size(), 1);

    entry.id = QUuid::createUuid();
    entry.title = QStringLiteral("meanwhile");
    ASSERT_TRUE(inbox.append(entry));
    EXPECT_TRUE(test::waitFor([&] { return workspace->history().entries().size() == 2; }));
    EXPECT_EQ(workspace->history().entries().first().title, QStringLiteral("meanwhile"));
    EXPECT_EQ(decodeHistory(*preferences.value(preference::history))->size(), 2);
    workspace.reset();
}

TEST_F(WorkspacePreferences, ARowOfFailedWritesIsOneNoticeThatOutlastsTheOperations) {
    makeWorkspace();
    preferences.refuseWrites(Error{QStringLiteral("Test"), 1, QStringLiteral("Read-only file system")});
    workspace->setFolder(project);
    EXPECT_EQ(toast(), QStringLiteral("Workspace opened: project"));
    clock.advance(0ms);
    EXPECT_EQ(
        toast(),
        QStringLiteral("Your settings could not be saved and hold until you quit: Read-only file system"));
    clock.advance(4s);
    workspace->setKeepAwake(true);
    clock.advance(0ms);
    EXPECT_EQ(toast(), QString());

    preferences.refuseWrites(std::nullopt);
    workspace->setKeepAwake(false);
    preferences.refuseWrites(Error{QStringLiteral("Test"), 1, QStringLiteral("No space left on device")});
    workspace->setKeepAwake(true);
    clock.advance(0ms);
    EXPECT_TRUE(toast().endsWith(QStringLiteral("No space left on device")));
}

}  // namespace
}  // namespace orvo
