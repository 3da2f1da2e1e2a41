#include "files/ProjectFiles.h"

#include "platform/TemporaryFolder.h"
#include "platform/fake/FakeDialogs.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

namespace orvo {
namespace {

using test::readFile;
using test::writeFile;

const QString removedSentence = QStringLiteral(
    "This file was removed or can no longer be read as text. Your editor changes are still here; restore or "
    "reopen "
    "the file before saving.");
const QString notTextSentence = QStringLiteral("This file cannot be opened as UTF-8 text.");

class ProjectFilesTest : public testing::Test {
protected:
    void SetUp() override {
        m_files.setProject(m_folder.path());
        writeFile(m_file, "one\n");
    }

    void openMain() {
        m_files.openFile({m_file, false});
        ASSERT_EQ(m_files.selectedFile(), m_file);
    }

    void makeFolder(const QByteArray& name) {
        ASSERT_EQ(mkdir(m_folder.child(name).bytes().constData(), 0700), 0);
    }

    /// Names as listed, folders with a slash behind.
    QString listing() const {
        QStringList names;
        for (const FileEntry& entry : m_files.files()) {
            names.append(entry.url.displayName() + (entry.isDirectory ? QStringLiteral("/") : QString()));
        }
        return names.join(u' ');
    }

    test::TemporaryFolder m_folder;
    FilePath m_file = m_folder.child("main.py");
    FakeDialogs m_dialogs;
    QStringList m_notices;
    ProjectFiles m_files{m_dialogs, [this](const QString& notice) {
                             m_notices.append(notice);
                         }};
};

TEST_F(ProjectFilesTest, listsFoldersFirstAndNumbersByValue) {
    for (const char* name : {"a10", "a2", "B1", "b2", ".hidden", "a2.txt", "\xC3\xA4"}) {
        writeFile(m_folder.child(name), "");
    }
    makeFolder("z");
    makeFolder(".git");
    ASSERT_EQ(symlink("z", m_folder.child("link").bytes().constData()), 0);
    ASSERT_EQ(symlink("nowhere", m_folder.child("broken").bytes().constData()), 0);
    m_files.refreshFiles();
    EXPECT_EQ(listing(), QStringLiteral("link/ z/ \u00e4 a2 a2.txt a10 B1 b2 broken main.py"));
}

TEST_F(ProjectFilesTest, aNameThatIsNotTextIsListedAndOpenedByItsBytes) {
    const FilePath odd = m_folder.child("odd \xFF\xFE");
    writeFile(odd, "inside");
    m_files.refreshFiles();
    ASSERT_EQ(m_files.files().size(), 2);
    EXPECT_EQ(m_files.files()[1].url, odd);
    m_files.openFile(m_files.files()[1]);
    EXPECT_EQ(m_files.editorText(), QStringLiteral("inside"));
    m_files.setEditorText(QStringLiteral("new"));
    EXPECT_TRUE(m_files.saveFile());
    EXPECT_EQ(readFile(odd), "new");
}

TEST_F(ProjectFilesTest, browsesIntoFoldersAndStaysThere) {
    makeFolder("sub");
    writeFile(m_folder.child("sub").child("x"), "");
    m_files.openFile({m_folder.child("sub"), true});
    EXPECT_EQ(m_files.browsingFolder(), m_folder.child("sub"));
    m_files.refreshFiles();
    EXPECT_EQ(listing(), QStringLiteral("x"));
    m_files.setProject(m_folder.path());
    m_files.refreshFiles();
    EXPECT_EQ(listing(), QStringLiteral("sub/ main.py"));
    m_files.setProject(std::nullopt);
    m_files.refreshFiles();
    EXPECT_EQ(listing(), QString());
}

TEST_F(ProjectFilesTest, aFolderThatCannotBeListedLeavesTheListAndSaysWhy) {
    m_files.refreshFiles();
    m_files.refreshFiles(m_folder.child("gone"));
    EXPECT_EQ(m_notices, QStringList{QStringLiteral("gone: No such file or directory")});
    EXPECT_EQ(listing(), QStringLiteral("main.py"));
}

TEST_F(ProjectFilesTest, opensWholeUtf8FilesBelowTheLimit) {
    struct Case {
        QByteArray content;
        QString notice;
    };
    const QString tooLarge =
        QStringLiteral("This file is too large for the built-in editor. Open it in your preferred editor.");
    const Case cases[] = {
        {QByteArray(1'999'999, 'x'), {}},
        {QByteArray(2'000'000, 'x'), tooLarge},
        {QByteArray(), {}},
        {QByteArray("a\0b\r\n\xE2\x82\xAC", 8), {}},
        {"\xEF\xBB\xBFwith a mark", {}},
        {"latin \xE4", notTextSentence},
        {"cut \xE2\x82", notTextSentence},
        {"surrogate \xED\xA0\x80", notTextSentence},
        {"overlong \xC0\x80", notTextSentence},
    };
    for (const Case& each : cases) {
        m_files.setProject(m_folder.path());
        m_notices.clear();
        writeFile(m_file, each.content);
        m_files.openFile({m_file, false});
        EXPECT_EQ(m_notices.value(0), each.notice);
        EXPECT_EQ(m_files.selectedFile().has_value(), each.notice.isEmpty());
        EXPECT_FALSE(m_files.fileIsDirty());
        EXPECT_TRUE(!each.notice.isEmpty() || m_files.editorText().toUtf8() == each.content);
    }
}

TEST_F(ProjectFilesTest, whatIsNoFileIsRefusedWithoutWaiting) {
    const FilePath pipe = m_folder.child("pipe");
    ASSERT_EQ(mkfifo(pipe.bytes().constData(), 0600), 0);
    for (const FilePath& path : {pipe, m_folder.child("gone"), FilePath("/dev/zero")}) {
        m_files.openFile({path, false});
        EXPECT_EQ(m_notices.takeLast(), notTextSentence);
    }
    EXPECT_FALSE(m_files.selectedFile());
}

TEST_F(ProjectFilesTest, savesKeepingModeAndLink) {
    ASSERT_EQ(chmod(m_file.bytes().constData(), 0755), 0);
    const FilePath link = m_folder.child("link.py");
    ASSERT_EQ(symlink("main.py", link.bytes().constData()), 0);
    m_files.openFile({link, false});
    m_files.setEditorText(QStringLiteral("\u00e4\n"));
    EXPECT_TRUE(m_files.fileIsDirty());
    EXPECT_TRUE(m_files.saveFile());
    EXPECT_EQ(m_notices, QStringList{QStringLiteral("Saved link.py.")});
    EXPECT_FALSE(m_files.fileIsDirty());
    EXPECT_EQ(readFile(m_file), "\xC3\xA4\n");
    EXPECT_EQ(test::modeOf(m_file), 0755U);
    EXPECT_TRUE(std::filesystem::is_symlink(link.bytes().toStdString()));
}

TEST_F(ProjectFilesTest, aFileChangedOutsideIsReplacedOnlyAfterAsking) {
    openMain();
    m_files.setEditorText(QStringLiteral("mine\n"));
    writeFile(m_file, "theirs\n");
    m_dialogs.answer(QStringLiteral("Cancel"));
    EXPECT_FALSE(m_files.saveFile());
    EXPECT_EQ(readFile(m_file), "theirs\n");
    EXPECT_EQ(m_files.editorText(), QStringLiteral("mine\n"));
    EXPECT_TRUE(m_notices.isEmpty());
    const Alert alert = m_dialogs.alerts().constLast();
    EXPECT_EQ(alert.message, QStringLiteral("This file changed on disk"));
    EXPECT_EQ(alert.informativeText,
              QStringLiteral("An assistant or another app edited this file. Replace those changes with your "
                             "editor version?"));
    EXPECT_EQ(alert.buttons.join(u'|'), QStringLiteral("Replace|Cancel"));

    m_dialogs.answer(QStringLiteral("Replace"));
    EXPECT_TRUE(m_files.saveFile());
    EXPECT_EQ(readFile(m_file), "mine\n");
    EXPECT_TRUE(m_files.saveFile()) << "nothing to ask about any more";
}

TEST_F(ProjectFilesTest, aFileThatIsGoneOrNoTextAnyMoreIsNotWritten) {
    openMain();
    m_files.setEditorText(QStringLiteral("mine"));
    ASSERT_EQ(unlink(m_file.bytes().constData()), 0);
    EXPECT_FALSE(m_files.saveFile());
    EXPECT_EQ(m_notices.takeLast(), removedSentence);
    EXPECT_FALSE(m_folder.names().contains("main.py"));

    writeFile(m_file, "\xFF");
    EXPECT_FALSE(m_files.saveFile());
    EXPECT_EQ(m_notices.takeLast(), removedSentence);
    EXPECT_EQ(readFile(m_file), "\xFF");
    EXPECT_EQ(m_files.editorText(), QStringLiteral("mine"));
}

TEST_F(ProjectFilesTest, textTypedWhileAQuestionStandsStaysUnsaved) {
    openMain();
    m_files.setEditorText(QStringLiteral("first"));
    writeFile(m_file, "theirs");
    m_dialogs.answer(QStringLiteral("Replace"), [&] { m_files.setEditorText(QStringLiteral("second")); });
    EXPECT_TRUE(m_files.saveFile());
    EXPECT_EQ(readFile(m_file), "first");
    EXPECT_TRUE(m_files.fileIsDirty());
}

TEST_F(ProjectFilesTest, unsavedChangesAreAskedAboutByName) {
    EXPECT_TRUE(m_files.confirmDiscard());
    m_files.setEditorText(QStringLiteral("loose"));
    m_dialogs.answer(QStringLiteral("Save"));
    EXPECT_FALSE(m_files.confirmDiscard()) << "there is no file to save to";
    EXPECT_EQ(m_dialogs.alerts().constLast().informativeText,
              QStringLiteral("Your file has unsaved changes."));

    m_dialogs.answer(QStringLiteral("Discard"));
    openMain();
    m_files.setEditorText(QStringLiteral("two"));
    for (const auto& [button, goesOn] : {std::pair("Cancel", false), {"Discard", true}, {"Save", true}}) {
        m_dialogs.answer(QLatin1String(button));
        EXPECT_EQ(m_files.confirmDiscard(), goesOn) << button;
        EXPECT_EQ(readFile(m_file), goesOn && std::string_view(button) == "Save" ? "two" : "one\n") << button;
    }
    const Alert alert = m_dialogs.alerts().constLast();
    EXPECT_EQ(alert.message, QStringLiteral("Save your changes?"));
    EXPECT_EQ(alert.informativeText, QStringLiteral("main.py"));
    EXPECT_EQ(alert.buttons.join(u'|'), QStringLiteral("Save|Discard|Cancel"));
    EXPECT_FALSE(m_files.fileIsDirty());
}

TEST_F(ProjectFilesTest, openingAnotherFileMayBeCancelled) {
    openMain();
    m_files.setEditorText(QStringLiteral("two"));
    writeFile(m_folder.child("other"), "other");
    m_dialogs.answer(QStringLiteral("Cancel"));
    m_files.openFile({m_folder.child("other"), false});
    EXPECT_EQ(m_files.selectedFile(), m_file);
    EXPECT_EQ(m_files.editorText(), QStringLiteral("two"));
}

TEST_F(ProjectFilesTest, aNewFileIsEmptyOpenAndListed) {
    const mode_t before = umask(027);
    m_dialogs.chooseFile(m_folder.child("untitled.py"));
    m_files.newFile();
    umask(before);
    EXPECT_EQ(m_dialogs.savePanels()[0].proposedName, QStringLiteral("untitled.py"));
    EXPECT_EQ(m_dialogs.savePanels()[0].folder, m_folder.path());
    EXPECT_EQ(m_files.selectedFile(), m_folder.child("untitled.py"));
    EXPECT_EQ(test::modeOf(m_folder.child("untitled.py")), 0640U);
    EXPECT_EQ(listing(), QStringLiteral("main.py untitled.py"));

    m_dialogs.chooseFile(m_folder.child("missing").child("x.py"));
    m_files.newFile();
    EXPECT_EQ(m_notices, QStringList{QStringLiteral("x.py: No such file or directory")});
    EXPECT_EQ(m_files.selectedFile(), m_folder.child("untitled.py"));

    m_dialogs.chooseFile(std::nullopt);
    m_files.newFile();
    m_files.setProject(std::nullopt);
    m_files.newFile();
    EXPECT_EQ(m_dialogs.savePanels().size(), 3) << "without a project nothing is asked";
}

TEST_F(ProjectFilesTest, theListFollowsTheDisk) {
    makeFolder("sub");
    m_files.refreshFiles();
    int lists = 0;
    QObject::connect(&m_files, &ProjectFiles::filesChanged, [&] { ++lists; });
    // A burst is seen as a few changes, not as one each.
    for (int file = 0; file < 500; ++file)
        writeFile(m_folder.child("new" + QByteArray::number(file)), "x");
    EXPECT_TRUE(test::waitFor([&] { return m_files.files().size() == 502; }));
    EXPECT_LE(lists, 20);
    ASSERT_EQ(unlink(m_folder.child("new7").bytes().constData()), 0);
    EXPECT_TRUE(test::waitFor([&] { return m_files.files().size() == 501; }));

    m_files.refreshFiles(m_folder.child("sub"));
    writeFile(m_folder.child("sub").child("inside"), "x");
    EXPECT_TRUE(test::waitFor([&] { return listing() == QStringLiteral("inside"); }));
    std::filesystem::remove_all(m_folder.child("sub").bytes().toStdString());
    writeFile(m_folder.child("later"), "x");
    m_files.refreshFiles(m_folder.path());
    EXPECT_TRUE(listing().contains(QStringLiteral("later")));
    EXPECT_TRUE(m_notices.isEmpty());
}

TEST_F(ProjectFilesTest, tellsWhatBecameOfTheOpenFileBeforeItIsSaved) {
    using OnDisk = ProjectFiles::OnDisk;
    openMain();
    const auto becomes = [this](OnDisk expected) {
        return test::waitFor([&] { return m_files.onDisk() == expected; });
    };
    // Written in place, written back, replaced as editors do, removed, put back, replaced by a folder.
    writeFile(m_file, "theirs\n");
    EXPECT_TRUE(becomes(OnDisk::Changed));
    writeFile(m_file, "one\n");
    EXPECT_TRUE(becomes(OnDisk::Same));
    const FilePath draft = m_folder.child("draft");
    writeFile(draft, "theirs again\n");
    ASSERT_EQ(rename(draft.bytes().constData(), m_file.bytes().constData()), 0);
    EXPECT_TRUE(becomes(OnDisk::Changed));
    writeFile(m_file, "\xFF");
    EXPECT_TRUE(becomes(OnDisk::Unreadable)) << "the new file is followed, too";
    ASSERT_EQ(unlink(m_file.bytes().constData()), 0);
    writeFile(m_file, "one\n");
    EXPECT_TRUE(becomes(OnDisk::Same));
    ASSERT_EQ(unlink(m_file.bytes().constData()), 0);
    makeFolder("main.py");
    EXPECT_TRUE(becomes(OnDisk::Unreadable));
    m_files.setEditorText(QStringLiteral("mine"));
    EXPECT_FALSE(m_files.saveFile());
    EXPECT_EQ(m_notices.takeLast(), removedSentence);
    EXPECT_EQ(m_files.editorText(), QStringLiteral("mine"));

    ASSERT_EQ(rmdir(m_file.bytes().constData()), 0);
    writeFile(m_file, "theirs");
    EXPECT_TRUE(becomes(OnDisk::Changed));
    m_dialogs.answer(QStringLiteral("Replace"));
    EXPECT_TRUE(m_files.saveFile());
    EXPECT_EQ(m_files.onDisk(), OnDisk::Same);
    writeFile(m_file, "theirs");
    EXPECT_TRUE(becomes(OnDisk::Changed));
    m_files.openFile({m_file, false});
    EXPECT_EQ(m_files.onDisk(), OnDisk::Same);
}

TEST_F(ProjectFilesTest, aLinkLedElsewhereIsAskedAboutAndWrittenWhereItLeads) {
    const FilePath link = m_folder.child("link.py");
    writeFile(m_folder.child("other.py"), "other");
    ASSERT_EQ(symlink("main.py", link.bytes().constData()), 0);
    m_files.openFile({link, false});
    m_files.setEditorText(QStringLiteral("mine"));
    ASSERT_EQ(unlink(link.bytes().constData()), 0);
    ASSERT_EQ(symlink("other.py", link.bytes().constData()), 0);
    m_dialogs.answer(QStringLiteral("Cancel"));
    EXPECT_FALSE(m_files.saveFile());
    EXPECT_EQ(readFile(m_folder.child("other.py")), "other");
    m_dialogs.answer(QStringLiteral("Replace"));
    EXPECT_TRUE(m_files.saveFile());
    EXPECT_EQ(readFile(m_folder.child("other.py")), "mine");
    EXPECT_EQ(readFile(m_file), "one\n");
    EXPECT_TRUE(std::filesystem::is_symlink(link.bytes().toStdString()));
}

TEST_F(ProjectFilesTest, aFileThatGrowsWhileItIsReadIsReadWholeOrRefused) {
    const std::jthread writer([&](const std::stop_token& over) {
        std::ofstream stream(m_file.bytes().toStdString(), std::ios::binary | std::ios::app);
        for (int line = 0; line < 4'000 && !over.stop_requested(); ++line)
            stream << std::string(1'000, 'x') << '\n' << std::flush;
    });
    for (int round = 0; round < 200; ++round) {
        m_notices.clear();
        m_files.openFile({m_file, false});
        // A refusal is said, and leaves the text that was open before; at first that is none.
        ASSERT_TRUE(m_files.editorText().startsWith(QStringLiteral("one\n")) ||
                    (m_files.editorText().isEmpty() && !m_notices.isEmpty()))
            << qPrintable(m_notices.join(u'\n'));
        ASSERT_LT(m_files.editorText().size(), ProjectFiles::tooLargeToOpen);
        ASSERT_FALSE(m_files.fileIsDirty());
    }
}

TEST_F(ProjectFilesTest, aFolderOfTwentyThousandIsListedInOrder) {
    for (int file = 0; file < 20'000; ++file)
        writeFile(m_folder.child("file" + QByteArray::number(file)), "");
    const auto cpuMilliseconds = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    };
    const double before = cpuMilliseconds();
    m_files.refreshFiles();
    RecordProperty("milliseconds", static_cast<int>(cpuMilliseconds() - before));
    ASSERT_EQ(m_files.files().size(), 20'001);
    EXPECT_EQ(m_files.files()[2].url.nameBytes(), "file2");
    EXPECT_EQ(m_files.files()[19'999].url.nameBytes(), "file19999");
}

TEST_F(ProjectFilesTest, announcesRealChangesOnly) {
    QStringList changes;
    const auto note = [&](const char* field) {
        return [&changes, field] {
            changes.append(QLatin1String(field));
        };
    };
    QObject::connect(&m_files, &ProjectFiles::filesChanged, note("files"));
    QObject::connect(&m_files, &ProjectFiles::selectedFileChanged, note("file"));
    QObject::connect(&m_files, &ProjectFiles::editorTextChanged, note("text"));
    QObject::connect(&m_files, &ProjectFiles::savedTextChanged, note("saved"));
    QObject::connect(&m_files, &ProjectFiles::browsingFolderChanged, note("folder"));
    QObject::connect(&m_files, &ProjectFiles::searchChanged, note("search"));
    for (int twice = 0; twice < 2; ++twice) {
        m_files.refreshFiles();
        m_files.openFile({m_file, false});
        m_files.setSearch(QStringLiteral("m"));
    }
    EXPECT_EQ(changes.join(u' '), QStringLiteral("files file saved text search"));
    changes.clear();
    m_files.setEditorText(QStringLiteral("x"));
    m_files.saveFile();
    m_files.setProject(std::nullopt);
    EXPECT_EQ(changes.join(u' '), QStringLiteral("text saved file saved text folder"));
}

}  // namespace
}  // namespace orvo
