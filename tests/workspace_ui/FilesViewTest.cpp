#include "appearance/controls/TextField.h"
#include "files/ui/CodeEditor.h"
#include "files/ui/FileList.h"
#include "platform/TemporaryFolder.h"
#include "support/WaitFor.h"
#include "workspace_ui/ScreenFixture.h"

#include <QAbstractItemModelTester>
#include <QDir>
#include <QTest>

namespace orvo::test {
namespace {

class FilesViewTest : public ScreenFixture {
protected:
    void openPage() {
        workspace().setDestination(Destination::Files);
        screen();
        QTest::qWait(0);
    }
    /// A project with the file "main.py" in it.
    void openProject() {
        m_project = makeProject(text("notes"));
        writeFile(m_project.child("main.py"), "return 3.14\n");
        writeFile(m_project.child("readme.md"), "# Notes\n");
        QDir(m_project.display()).mkpath(text("src/deep"));
        writeFile(m_project.child("src").child("a2.txt"), "");
        workspace().openFolderForThisRun(m_project);
        openPage();
    }
    FileList& list() { return *find<FileList>(screen(), text("Files")); }
    CodeEditor& editor() { return *find<CodeEditor>(screen(), text("Code editor")); }
    /// Names as shown, the open file in brackets.
    QString rows() {
        QStringList names;
        const QAbstractItemModel& model = *list().model();
        for (int row = 0; row < model.rowCount(); ++row) {
            const QModelIndex index = model.index(row, 0);
            const bool isOpen = index.data(FileModel::IsOpenRole).toBool();
            names.append(isOpen ? text("[%1]").arg(index.data().toString()) : index.data().toString());
        }
        return names.join(u' ');
    }
    void click(const char* name) {
        const QAbstractItemModel& model = *list().model();
        const auto found = model.match(model.index(0, 0), Qt::DisplayRole, text(name), 1, Qt::MatchExactly);
        ASSERT_FALSE(found.isEmpty()) << name;
        QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, list().visualRect(found[0]).center());
    }

    FilePath m_project;
};

TEST_F(FilesViewTest, WithoutAProjectThereIsNothingToList) {
    openPage();
    EXPECT_TRUE(shows(screen(), text("No project")));
    EXPECT_TRUE(shows(screen(), text("Make something here.")));
    EXPECT_EQ(rows(), QString());
    EXPECT_FALSE(find<QAbstractButton>(screen(), text("Go up"))->isEnabled());
}

TEST_F(FilesViewTest, BrowsesFiltersAndGoesUp) {
    openProject();
    const QAbstractItemModelTester tester(list().model());
    EXPECT_EQ(rows(), text("src main.py readme.md"));
    auto* const filter = find<TextField>(screen(), text("Find a file…"));
    filter->setText(text("READ"));
    EXPECT_EQ(rows(), text("readme.md"));
    EXPECT_FALSE(shows(screen(), text("No file matches.")));
    filter->setText(text("no such file"));
    EXPECT_TRUE(shows(screen(), text("No file matches.")));
    filter->setText(QString());
    EXPECT_FALSE(shows(screen(), text("No file matches.")));
    click("src");
    EXPECT_EQ(rows(), text("deep a2.txt"));
    EXPECT_TRUE(shows(screen(), text("src")));
    writeFile(m_project.child("src").child("a10.txt"), "");
    press(text("Reload"));
    EXPECT_EQ(rows(), text("deep a2.txt a10.txt"));
    press(text("Go up"));
    EXPECT_EQ(rows(), text("src main.py readme.md"));
    EXPECT_TRUE(shows(screen(), text("notes")));
}

TEST_F(FilesViewTest, ASecondClickOfADoubleClickOpensNothing) {
    openProject();
    click("src");
    const QPoint first = list().visualRect(list().model()->index(0, 0)).center();
    QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, first);
    EXPECT_EQ(workspace().files().browsingFolder(), m_project.child("src"));
}

TEST_F(FilesViewTest, EditsAndSavesTheChosenFile) {
    openProject();
    click("main.py");
    EXPECT_EQ(rows(), text("src [main.py] readme.md"));
    EXPECT_EQ(editor().text(), text("return 3.14\n"));
    EXPECT_FALSE(shows(screen(), text("Unsaved changes")));
    editor().moveCursor(QTextCursor::End);
    QTest::keyClicks(&editor(), text("x = 1"));
    EXPECT_EQ(workspace().files().editorText(), text("return 3.14\nx = 1"));
    EXPECT_EQ(editor().textCursor().position(), 17) << "the caret stays where the person types";
    EXPECT_TRUE(shows(screen(), text("Unsaved changes")));
    press(text("Save"));
    EXPECT_EQ(readFile(m_project.child("main.py")), "return 3.14\nx = 1");
    EXPECT_FALSE(shows(screen(), text("Unsaved changes")));
    editor().undo();
    EXPECT_EQ(workspace().files().editorText(), text("return 3.14\n")) << "saving keeps the undo steps";

    m_dialogs.answer(text("Discard"));
    click("readme.md");
    EXPECT_EQ(editor().text(), text("# Notes\n"));
    EXPECT_FALSE(editor().document()->isUndoAvailable()) << "another file, another history";
}

TEST_F(FilesViewTest, ReturnRunsACommand) {
    openProject();
    auto* const command = find<TextField>(screen(), text("Run a command in this project"));
    command->setText(text("echo free"));
    QTest::keyClick(command, Qt::Key_Return);
    ASSERT_EQ(workspace().sessions().size(), 1u);
    ASSERT_TRUE(waitFor([&] { return !workspace().anySessionRunning(); }));
    EXPECT_EQ(workspace().sessions()[0]->screen().plainText(), "free");
}

TEST_F(FilesViewTest, TheHeaderTellsOfChangesOnDiskAndReloads) {
    openProject();
    click("main.py");
    EXPECT_FALSE(shows(screen(), text("Changed on disk")));
    writeFile(m_project.child("main.py"), "theirs");
    EXPECT_TRUE(waitFor([&] { return shows(screen(), text("Changed on disk")); }));
    press(text("Reload file"));
    EXPECT_EQ(editor().text(), text("theirs"));
    EXPECT_FALSE(shows(screen(), text("Changed on disk")));
    EXPECT_FALSE(shows(screen(), text("Reload file")));
    QFile::remove(m_project.child("main.py").display());
    EXPECT_TRUE(waitFor([&] { return shows(screen(), text("Removed, or no longer readable as text")); }));
    EXPECT_TRUE(waitFor([&] { return rows() == text("src readme.md"); }));
}

TEST_F(FilesViewTest, FindsAndGoesToLines) {
    openProject();
    writeFile(m_project.child("main.py"), "one two\nTwo\nthree");
    click("main.py");
    editor().setFocus();
    QTest::keyClick(&editor(), Qt::Key_F, Qt::ControlModifier);
    auto* const field = find<TextField>(screen(), text("Find in file…"));
    QTest::keyClicks(field, text("two"));
    EXPECT_TRUE(shows(screen(), text("1 of 2")));
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(shows(screen(), text("2 of 2")));
    EXPECT_EQ(editor().textCursor().selectedText(), text("Two"));
    press(text("Previous match"));
    EXPECT_EQ(editor().textCursor().selectedText(), text("two"));
    // The search stays open while texts come and go.
    writeFile(m_project.child("other.py"), "no 2");
    press(text("Reload"));
    click("other.py");
    EXPECT_TRUE(shows(screen(), text("No matches")));
    click("main.py");
    EXPECT_TRUE(shows(screen(), text("2 matches")));
    editor().selectAll();
    QTest::keyClick(&editor(), Qt::Key_Delete);
    EXPECT_TRUE(shows(screen(), text("No matches")));
    editor().undo();
    EXPECT_TRUE(shows(screen(), text("2 matches")));
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_FALSE(field->isVisible());

    QTest::keyClick(&editor(), Qt::Key_G, Qt::ControlModifier);
    auto* const line = find<TextField>(screen(), text("Go to line…"));
    EXPECT_TRUE(shows(screen(), text("of 3")));
    line->setText(text("3"));
    QTest::keyClick(line, Qt::Key_Return);
    EXPECT_EQ(editor().currentLine(), 3);
    EXPECT_FALSE(line->isVisible());
}

TEST_F(FilesViewTest, ATextFromElsewhereChangesOnlyWhatDiffers) {
    openProject();
    click("main.py");
    editor().moveCursor(QTextCursor::End);
    workspace().files().setEditorText(text("# first\nreturn 3.14\n"));
    EXPECT_EQ(editor().text(), text("# first\nreturn 3.14\n"));
    EXPECT_TRUE(editor().textCursor().atEnd());
    editor().undo();
    EXPECT_EQ(workspace().files().editorText(), text("return 3.14\n"));
}

}  // namespace
}  // namespace orvo::test
