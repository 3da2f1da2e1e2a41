#include "app/EditorRecovery.h"

#include "files/ProjectFiles.h"
#include "platform/TemporaryFolder.h"
#include "platform/fake/FakeDialogs.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace orvo {
namespace {

class EditorRecoveryTest : public testing::Test {
protected:
    struct Run {
        explicit Run(EditorRecoveryTest& test)
            : files(test.m_dialogs, [](const QString&) {}), recovery(files, test.m_kept) {}
        ProjectFiles files;
        EditorRecovery recovery;
    };

    /// A run that the system ended while the file was being edited.
    void endWith(const QString& text) {
        Run run(*this);
        run.files.openFile({.url = m_file});
        run.files.setEditorText(text);
        ASSERT_TRUE(run.recovery.keep());
    }
    qsizetype keptTexts() const { return QDir(m_kept.display()).entryList(QDir::Files).size(); }

    QTemporaryDir m_temporary;
    FilePath m_file = FilePath::fromString(m_temporary.filePath(QStringLiteral("tides.py")));
    FilePath m_kept = FilePath::fromString(m_temporary.filePath(QStringLiteral("data/Recovery")));
    FakeDialogs m_dialogs;
};

TEST_F(EditorRecoveryTest, restoresTheTextAndGuardsWhatTheFileHasBecome) {
    test::writeFile(m_file, "low");
    endWith(QStringLiteral("low \u6f6e"));
    test::writeFile(m_file, "high");

    Run next(*this);
    m_dialogs.answer(QStringLiteral("Restore"));
    ASSERT_TRUE(next.recovery.offer(m_dialogs));
    EXPECT_EQ(m_dialogs.alerts().last().informativeText,
              QStringLiteral("Orvo AI was ended while you had unsaved changes in tides.py."));
    EXPECT_EQ(next.files.selectedFile(), m_file);
    EXPECT_EQ(next.files.editorText(), QStringLiteral("low \u6f6e"));
    EXPECT_TRUE(next.files.fileIsDirty());
    EXPECT_EQ(keptTexts(), 1) << "a fault now would find it again";

    m_dialogs.answer(QStringLiteral("Replace"));
    EXPECT_TRUE(next.files.saveFile());
    EXPECT_EQ(m_dialogs.alerts().last().message, QStringLiteral("This file changed on disk"));
    EXPECT_EQ(test::readFile(m_file), QByteArray("low \xe6\xbd\xae"));
    ASSERT_TRUE(next.recovery.keep());
    EXPECT_EQ(keptTexts(), 0);
}

TEST_F(EditorRecoveryTest, asksAgainNextTimeWhenThePersonWantsToDecideLater) {
    test::writeFile(m_file, "low");
    endWith(QStringLiteral("first"));
    endWith(QStringLiteral("second"));
    Run next(*this);
    m_dialogs.answer(QStringLiteral("Later"));
    m_dialogs.answer(QStringLiteral("Later"));
    EXPECT_FALSE(next.recovery.offer(m_dialogs));
    EXPECT_FALSE(next.files.selectedFile());

    m_dialogs.answer(QStringLiteral("Discard"));
    m_dialogs.answer(QStringLiteral("Restore"));
    EXPECT_TRUE(next.recovery.offer(m_dialogs));
    EXPECT_EQ(next.files.editorText(), QStringLiteral("first")) << "the newest is asked about first";
    EXPECT_EQ(keptTexts(), 1);
    next.recovery.forget();
    EXPECT_EQ(keptTexts(), 0);
}

TEST_F(EditorRecoveryTest, aClockThatWasSetBackChangesNeitherOrderNorOlderTexts) {
    test::writeFile(m_file, "low");
    endWith(QStringLiteral("first"));
    const QDir kept(m_kept.display());
    // Ten years ahead of the second.
    ASSERT_TRUE(QFile::rename(kept.filePath(kept.entryList(QDir::Files).first()),
                              kept.filePath(QStringLiteral("2100000000000000.unsaved.json"))));
    endWith(QStringLiteral("second"));
    EXPECT_EQ(keptTexts(), 2);
    Run next(*this);
    m_dialogs.answer(QStringLiteral("Restore"));
    EXPECT_TRUE(next.recovery.offer(m_dialogs));
    EXPECT_EQ(next.files.editorText(), QStringLiteral("second"));
}

TEST_F(EditorRecoveryTest, keepsOneTextARunAndNoneWithoutUnsavedChanges) {
    test::writeFile(m_file, "low");
    Run run(*this);
    ASSERT_TRUE(run.recovery.keep());
    EXPECT_EQ(keptTexts(), 0);
    run.files.openFile({.url = m_file});
    run.files.setEditorText(QStringLiteral("lower"));
    ASSERT_TRUE(run.recovery.keep());
    ASSERT_TRUE(run.recovery.keep());
    EXPECT_EQ(keptTexts(), 1);
    EXPECT_FALSE(run.recovery.offer(m_dialogs)) << "its own text is in the editor still";
    ASSERT_TRUE(run.files.saveFile());
    ASSERT_TRUE(run.recovery.keep());
    EXPECT_EQ(keptTexts(), 0);
}

TEST_F(EditorRecoveryTest, whatIsKeptInTheBackgroundNeverReplacesWhatCameLater) {
    test::writeFile(m_file, "low");
    Run run(*this);
    run.files.openFile({.url = m_file});
    for (int typed = 0; typed < 20; ++typed) {
        run.files.setEditorText(QString(100'000, QLatin1Char('a')) + QString::number(typed));
        run.recovery.keepSoon();
    }
    run.files.setEditorText(QStringLiteral("the last word"));
    ASSERT_TRUE(run.recovery.keep());

    Run next(*this);
    m_dialogs.answer(QStringLiteral("Restore"));
    ASSERT_TRUE(next.recovery.offer(m_dialogs));
    EXPECT_EQ(next.files.editorText(), QStringLiteral("the last word"));

    run.recovery.keepSoon();
    run.recovery.forget();
    next.recovery.forget();
    EXPECT_EQ(keptTexts(), 0);
}

TEST_F(EditorRecoveryTest, leavesDamagedFilesAlone) {
    ASSERT_TRUE(QDir().mkpath(m_kept.display()));
    test::writeFile(m_kept.child("1700000000000000.unsaved.json"), "{\"text\": 7}");
    Run run(*this);
    EXPECT_FALSE(run.recovery.offer(m_dialogs));
    EXPECT_EQ(keptTexts(), 1);
}

}  // namespace
}  // namespace orvo
