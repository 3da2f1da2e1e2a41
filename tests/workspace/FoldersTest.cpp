#include "workspace/WorkspaceTestCase.h"

#include <QDir>

namespace orvo {
namespace {

class Folders : public test::WorkspaceTestCase {
protected:
    QStringList recentNames() const {
        QStringList names;
        for (const FilePath& folder : workspace->recentFolders())
            names.append(folder.displayName());
        return names;
    }
};

TEST_F(Folders, TheEightNewestStayNewestFirstWithoutDoubles) {
    makeWorkspace();
    for (const char* const name : {"1", "2", "3", "4", "5", "6", "7", "8", "9"}) {
        workspace->setFolder(makeFolder(name));
    }
    EXPECT_EQ(recentNames().join(u' '), QStringLiteral("9 8 7 6 5 4 3 2"));
    workspace->setFolder(makeFolder("4"));
    EXPECT_EQ(recentNames().join(u' '), QStringLiteral("4 9 8 7 6 5 3 2"));
    EXPECT_EQ(preferences.value(preference::recentFolders)->size(), 8);
    EXPECT_EQ(preferences.value(preference::workspace), makeFolder("4").display());
    EXPECT_EQ(workspace->folderName(), QStringLiteral("4"));
    EXPECT_EQ(toast(), QStringLiteral("Workspace opened: 4"));
}

TEST_F(Folders, AFolderThatIsGoneOrNoFolderKeepsTheProject) {
    makeWorkspace();
    workspace->setFolder(project);
    workspace->files().setEditorText(QStringLiteral("half a thought"));
    const FilePath gone = makeFolder("gone");
    QDir().rmdir(gone.display());
    QFile file(root.filePath(QStringLiteral("file")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const auto writes = preferences.writes().size();

    for (const FilePath& bad : {gone, FilePath::fromString(file.fileName()), FilePath()}) {
        workspace->setFolder(bad);
        EXPECT_EQ(toast(),
                  QStringLiteral("This project folder is no longer available. Choose another folder."));
        EXPECT_EQ(workspace->folder(), project);
        EXPECT_EQ(workspace->files().editorText(), QStringLiteral("half a thought"));
        EXPECT_EQ(workspace->files().browsingFolder(), project);
        EXPECT_EQ(recentNames(), QStringList(QStringLiteral("project")));
    }
    EXPECT_EQ(preferences.writes().size(), writes);
}

TEST_F(Folders, ANewProjectEmptiesTheEditorAndListsItsFiles) {
    makeWorkspace();
    workspace->setFolder(project);
    workspace->files().setEditorText(QStringLiteral("text"));
    const FilePath other = makeFolder("other");
    makeFolder("other/inside");
    workspace->setFolder(other);
    EXPECT_EQ(workspace->files().editorText(), QString());
    ASSERT_EQ(workspace->files().files().size(), 1);
    EXPECT_EQ(workspace->files().files().first().url, other.child("inside"));
}

TEST_F(Folders, ChoosingAsksAboutTheEditorFirst) {
    makeWorkspace();
    workspace->setFolder(project);
    workspace->files().setEditorText(QStringLiteral("unsaved"));
    dialogs.answer(QStringLiteral("Cancel"));
    workspace->chooseFolder();
    EXPECT_TRUE(dialogs.folderPanels().isEmpty());

    dialogs.answer(QStringLiteral("Discard"));
    dialogs.chooseFolder(std::nullopt);
    workspace->chooseFolder();
    EXPECT_EQ(workspace->folder(), project);

    dialogs.answer(QStringLiteral("Discard"));
    dialogs.chooseFolder(makeFolder("other"));
    workspace->chooseFolder();
    EXPECT_EQ(workspace->folderName(), QStringLiteral("other"));
    EXPECT_EQ(dialogs.folderPanels().last(),
              QStringLiteral("Choose the folder your assistants will work in."));
}

TEST_F(Folders, AFolderForThisRunIsNeitherStoredNorSaid) {
    makeWorkspace();
    const auto writes = preferences.writes().size();
    workspace->openFolderForThisRun(project);
    EXPECT_EQ(workspace->folder(), project);
    EXPECT_EQ(toast(), QString());
    EXPECT_TRUE(workspace->recentFolders().isEmpty());
    EXPECT_EQ(preferences.writes().size(), writes);
}

TEST_F(Folders, RevealingSaysWhyItFailed) {
    makeWorkspace();
    workspace->revealFolder();
    EXPECT_TRUE(launcher.folders().isEmpty());
    workspace->openFolderForThisRun(project);
    launcher.refuse(Error{QStringLiteral("Test"), 1, QStringLiteral("No file manager is installed.")});
    workspace->revealFolder();
    EXPECT_EQ(launcher.folders(), QList<FilePath>{project});
    EXPECT_EQ(toast(), QStringLiteral("No file manager is installed."));
}

TEST_F(Folders, ANoticeStaysFourSecondsUnlessANewerOneComes) {
    using namespace std::chrono_literals;
    makeWorkspace();
    workspace->notify(QStringLiteral("first"));
    clock.advance(3s);
    workspace->notify(QStringLiteral("second"));
    clock.advance(3999ms);
    EXPECT_EQ(toast(), QStringLiteral("second"));
    clock.advance(1ms);
    EXPECT_FALSE(workspace->toast());
}

}  // namespace
}  // namespace orvo
