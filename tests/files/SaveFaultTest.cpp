#include "files/ProjectFiles.h"
#include "platform/TemporaryFolder.h"
#include "platform/fake/FakeDialogs.h"
#include "team_runs/faults.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

namespace orvo {
namespace {

namespace faults = test::faults;

constexpr char oldText[] = "old\r\nlines\n";
constexpr char newText[] = "new\r\nlines\nand more\n";

/// How a child ended that has edited a file and tried to save it.
enum Ending { Saved, Refused, LostText, Unreached };

/// A file in a folder of its own, with a link to it through which it is edited.
class Scene {
public:
    Scene() {
        test::writeFile(file, oldText);
        EXPECT_EQ(chmod(file.bytes().constData(), 0750), 0);
        EXPECT_EQ(symlink("script.sh", link.bytes().constData()), 0);
    }

    /// The status of a child whose `call`-th system call while saving goes wrong.
    int saveInChild(int call, faults::Effect effect, int code) const {
        const pid_t child = fork();
        if (child == 0) {
            FakeDialogs dialogs;
            int notices = 0;
            ProjectFiles files(dialogs, [&](const QString&) { ++notices; });
            files.openFile({link, false});
            files.setEditorText(QString::fromLatin1(newText));
            faults::arm(call, effect, code);
            const bool isSaved = files.saveFile();
            const bool isReached = faults::fired();
            faults::disarm();
            if (files.editorText() != QLatin1String(newText) || notices != 1) _exit(LostText);
            if (files.fileIsDirty() == isSaved) _exit(LostText);
            _exit(!isReached ? Unreached : isSaved ? Saved : Refused);
        }
        int status = 0;
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
        return status;
    }

    void expectWhole(const QByteArray& content) const {
        EXPECT_EQ(test::readFile(file), content);
        // Where the mode cannot be restored, the file stays private.
        const mode_t mode = test::modeOf(file);
        EXPECT_TRUE(mode == 0750 || mode == 0600) << std::oct << mode;
        EXPECT_EQ(std::filesystem::read_symlink(link.bytes().toStdString()), "script.sh");
    }

    test::TemporaryFolder folder;
    const FilePath file = folder.child("script.sh");
    const FilePath link = folder.child("link.sh");
};

TEST(SaveFault, anErrorAtAnyCallKeepsTheOldFileTheTextAndItsUnsavedMark) {
    for (const int code : {ENOSPC, EIO, EACCES}) {
        int refusals = 0;
        int losses = 0;
        for (int call = 1;; ++call) {
            SCOPED_TRACE(testing::Message() << "error " << code << " at call " << call);
            ASSERT_LT(call, 200);
            const Scene scene;
            const int status = scene.saveInChild(call, faults::Effect::Fail, code);
            ASSERT_TRUE(WIFEXITED(status));
            const int ending = WEXITSTATUS(status);
            ASSERT_NE(ending, LostText);
            refusals += ending == Refused ? 1 : 0;
            losses += ending != Refused && test::modeOf(scene.file) != 0750 ? 1 : 0;
            // Only the last step, writing the folder down, can fail when the new file is in its place.
            if (ending != Refused || test::readFile(scene.file) != oldText) scene.expectWhole(newText);
            EXPECT_EQ(scene.folder.names().size(), 2u) << "no temporary is left";
            if (testing::Test::HasFailure()) return;
            if (ending == Unreached) break;
        }
        EXPECT_GE(refusals, 6);
        EXPECT_LE(losses, 1) << "only the call that restores the mode may cost it";
    }
}

TEST(SaveFault, killedAtAnyCallTheFileIsOldOrNew) {
    int kills = 0;
    for (int call = 1;; ++call) {
        SCOPED_TRACE(testing::Message() << "killed at call " << call);
        ASSERT_LT(call, 200);
        const Scene scene;
        const int status = scene.saveInChild(call, faults::Effect::Kill, 0);
        const bool isOld = test::readFile(scene.file) == oldText;
        scene.expectWhole(isOld ? oldText : newText);
        if (testing::Test::HasFailure()) return;
        if (WIFEXITED(status)) {
            ASSERT_EQ(WEXITSTATUS(status), Unreached);
            EXPECT_FALSE(isOld);
            EXPECT_EQ(test::modeOf(scene.file), 0750U);
            break;
        }
        ++kills;
    }
    EXPECT_GE(kills, 8);
}

}  // namespace
}  // namespace orvo
