// What a first start finds: preferences of the former identity, and samples to copy.

#include "app/exampleProject.h"
#include "app/preferenceMigration.h"
#include "platform/TemporaryFolder.h"
#include "platform/fake/FakePreferences.h"
#include "platform/linux/FilePreferences.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace orvo {
namespace {

class FirstStartTest : public testing::Test {
protected:
    FilePath path(const char* name) const {
        return FilePath::fromString(m_temporary.filePath(QString::fromLatin1(name)));
    }
    void write(const FilePath& file, const QByteArray& content) {
        ASSERT_TRUE(QDir().mkpath(file.parent().display()));
        test::writeFile(file, content);
    }

    QTemporaryDir m_temporary;
    FakePreferences m_current;
};

TEST_F(FirstStartTest, takesOverWhatIsNotSetYetAndNothingElse) {
    FilePreferences former(path("former"), FilePreferences::Access::ReadWrite);
    ASSERT_TRUE(former.setValue(preference::accent, QStringLiteral("AA0000")));
    ASSERT_TRUE(former.setValue(preference::terminalFont, 15));
    ASSERT_TRUE(former.setValue(preference::recentFolders, {QStringLiteral("/srv/notes")}));
    ASSERT_TRUE(former.setValue(preference::history, "[]"));
    ASSERT_TRUE(former.setValue(preference::keepAwake, true));
    ASSERT_TRUE(m_current.setValue(preference::accent, QStringLiteral("00BB00")));

    migratePreferences(m_current, path("former"));
    EXPECT_EQ(m_current.value(preference::accent), QStringLiteral("00BB00"));
    EXPECT_EQ(m_current.value(preference::terminalFont), 15);
    EXPECT_EQ(m_current.value(preference::recentFolders), QStringList{QStringLiteral("/srv/notes")});
    EXPECT_EQ(m_current.value(preference::history), QByteArray("[]"));
    EXPECT_FALSE(m_current.value(preference::keepAwake)) << "the former program had no such key of ours";
    EXPECT_EQ(m_current.value(preference::migratedFromPelk), true);
}

TEST_F(FirstStartTest, takesOverOnlyOnceEvenWhenThereWasNothingThen) {
    migratePreferences(m_current, path("former"));
    EXPECT_EQ(m_current.value(preference::migratedFromPelk), true);
    EXPECT_FALSE(QFile::exists(path("former").display()));

    FilePreferences former(path("former"), FilePreferences::Access::ReadWrite);
    ASSERT_TRUE(former.setValue(preference::accent, QStringLiteral("AA0000")));
    migratePreferences(m_current, path("former"));
    EXPECT_FALSE(m_current.value(preference::accent));
}

TEST_F(FirstStartTest, updatesOfTheSamplesKeepWhatThePersonChanged) {
    write(path("samples/README.md"), "read me");
    write(path("samples/practice/planner.sh"), "plan");
    write(path("samples/.hidden"), "seen");
    const FilePath project = path("data/Example Project");
    ASSERT_TRUE(ExampleProject::prepare(path("samples"), project));
    EXPECT_EQ(test::readFile(project.child(".hidden")), "seen");

    write(project.child("README.md"), "mine");
    QFile::remove(project.child("practice").child("planner.sh").display());
    write(path("samples/README.md"), "read me anew");
    write(path("samples/tides.py"), "new");
    ASSERT_EQ(ExampleProject::prepare(path("samples"), project), project);
    EXPECT_EQ(test::readFile(project.child("README.md")), "mine");
    EXPECT_EQ(test::readFile(project.child("tides.py")), "new");
    EXPECT_FALSE(QFile::exists(project.child("practice").child("planner.sh").display()))
        << "a folder of the person's is left as it is";
}

TEST_F(FirstStartTest, samplesThatCannotBeReadOrCopiedAreAnError) {
    EXPECT_FALSE(ExampleProject::prepare(path("missing"), path("data/Example Project")));
    write(path("samples/README.md"), "read me");
    write(path("taken"), "a file where the folder belongs");
    EXPECT_FALSE(ExampleProject::prepare(path("samples"), path("taken")));
}

}  // namespace
}  // namespace orvo
