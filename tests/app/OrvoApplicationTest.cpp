#include "app/OrvoApplication.h"

#include "app/MainWindow.h"
#include "app/TerminationSignals.h"
#include "support/WaitFor.h"
#include "workspace_ui/ScreenFixture.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QMenuBar>

#include <csignal>

namespace orvo {
namespace {

class OrvoApplicationTest : public test::ScreenFixture {
protected:
    enum class Keep { Preferences, Nothing };

    OrvoApplication& launched(const Options& options = {}, Keep keep = Keep::Preferences) {
        WorkspaceServices wanted = services();
        if (keep == Keep::Nothing) wanted.preferences = nullptr;
        m_application = std::make_unique<OrvoApplication>(wanted, options);
        QObject::connect(m_application.get(), &OrvoApplication::ended, m_application.get(),
                         [this] { ++m_ended; });
        m_application->launch();
        return *m_application;
    }

    QAction* menuItem(const QString& menu, const QString& item) const {
        for (const QAction* const top : m_application->window()->menuBar()->actions()) {
            if (top->text() != menu) continue;
            for (QAction* const action : top->menu()->actions()) {
                if (action->text() == item) return action;
            }
        }
        ADD_FAILURE() << "no item " << qPrintable(menu) << " / " << qPrintable(item);
        return nullptr;
    }

    void startTerminal() {
        m_application->workspace().openFolderForThisRun(makeProject(QStringLiteral("notes")));
        menuItem(QStringLiteral("File"), QStringLiteral("New Terminal"))->trigger();
        ASSERT_EQ(m_application->workspace().sessions().size(), 1u);
    }

    std::unique_ptr<OrvoApplication> m_application;
    int m_ended = 0;
};

TEST_F(OrvoApplicationTest, menusHaveTheirItemsAndKeysInOrder) {
    launched();
    QStringList lines;
    for (const QAction* const top : m_application->window()->menuBar()->actions()) {
        lines.append(top->text());
        for (const QAction* const action : top->menu()->actions()) {
            const QString keys = action->shortcut().toString();
            lines.append(action->isSeparator()
                             ? QStringLiteral("  -")
                             : QStringLiteral("  ") + action->text() +
                                   (keys.isEmpty() ? QString() : QStringLiteral(" | ") + keys));
        }
    }
    EXPECT_EQ(lines.join(u'\n').toStdString(),
              "Orvo AI\n"
              "  About Orvo AI\n"
              "  -\n"
              "  Settings… | Ctrl+,\n"
              "  -\n"
              "  Hide Orvo AI | Ctrl+H\n"
              "  -\n"
              "  Quit Orvo AI | Ctrl+Q\n"
              "File\n"
              "  Open Project… | Ctrl+O\n"
              "  New Terminal | Ctrl+N\n"
              "  Save File | Ctrl+S\n"
              "  Export Interface Preview…\n"
              "Edit\n"
              "  Undo | Ctrl+Z\n"
              "  Redo | Ctrl+Shift+Z\n"
              "  -\n"
              "  Cut | Ctrl+X\n"
              "  Copy | Ctrl+C\n"
              "  Paste | Ctrl+V\n"
              "  Select All | Ctrl+A\n"
              "Window\n"
              "  Minimize | Ctrl+M\n"
              "  Zoom");
}

TEST_F(OrvoApplicationTest, editItemsActOnTheFocusedControl) {
    launched();
    QWidget* const task =
        test::findNamed(*m_application->window(), QStringLiteral("Task for selected assistants"));
    ASSERT_TRUE(task);
    m_application->workspace().setPrompt(QStringLiteral("one two"));
    task->setFocus();
    ASSERT_TRUE(test::waitFor([&] { return QApplication::focusWidget() == task; }));
    menuItem(QStringLiteral("Edit"), QStringLiteral("Select All"))->trigger();
    menuItem(QStringLiteral("Edit"), QStringLiteral("Cut"))->trigger();
    EXPECT_EQ(m_application->workspace().prompt(), QString());
    menuItem(QStringLiteral("Edit"), QStringLiteral("Undo"))->trigger();
    EXPECT_EQ(m_application->workspace().prompt(), QStringLiteral("one two"));
}

TEST_F(OrvoApplicationTest, settingsItemShowsThePage) {
    launched();
    menuItem(QStringLiteral("Orvo AI"), QStringLiteral("Settings…"))->trigger();
    EXPECT_EQ(m_application->workspace().destination(), Destination::Settings);
}

TEST_F(OrvoApplicationTest, aFolderOnTheCommandLineIsForThisRunOnly) {
    const FilePath saved = makeProject(QStringLiteral("saved"));
    const FilePath given = makeProject(QStringLiteral("given"));
    m_preferences.preset(preference::workspace.name, saved.display());
    launched({.workspace = given});
    EXPECT_EQ(m_application->workspace().folder(), given);
    EXPECT_EQ(m_preferences.value(preference::workspace), saved.display());
    EXPECT_FALSE(m_preferences.value(preference::recentFolders));
    EXPECT_FALSE(m_application->workspace().toast());
}

TEST_F(OrvoApplicationTest, closingTheWindowEndsTheRunWithoutAQuestionWhenNothingRuns) {
    launched();
    m_application->window()->close();
    EXPECT_EQ(m_ended, 1);
    EXPECT_TRUE(m_dialogs.alerts().isEmpty());
}

TEST_F(OrvoApplicationTest, quittingAsksWhileASessionRuns) {
    launched();
    startTerminal();
    const auto session = m_application->workspace().sessions().front();

    m_dialogs.answer(QStringLiteral("Cancel"));
    m_application->quit();
    EXPECT_EQ(m_ended, 0);
    EXPECT_TRUE(session->running());

    m_dialogs.answer(QStringLiteral("Quit & stop"));
    m_application->quit();
    EXPECT_EQ(m_ended, 1);
    EXPECT_TRUE(test::waitFor([&] { return !session->running(); }));
    EXPECT_EQ(m_dialogs.alerts().last().message, QStringLiteral("Quit and stop running sessions?"));
}

TEST_F(OrvoApplicationTest, aTransientRunQuitsWithoutAQuestion) {
    launched({}, Keep::Nothing);
    startTerminal();
    m_application->quit();
    EXPECT_EQ(m_ended, 1);
    EXPECT_TRUE(m_dialogs.alerts().isEmpty());
}

TEST_F(OrvoApplicationTest, aSignalOfTheSystemStopsTheSessionsWithoutAQuestion) {
    launched();
    startTerminal();
    const TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::received, m_application.get(),
                     &OrvoApplication::endNow);
    ASSERT_EQ(raise(SIGTERM), 0);
    EXPECT_TRUE(test::waitFor([this] { return m_ended == 1; }));
    EXPECT_TRUE(test::waitFor([this] { return !m_application->workspace().anySessionRunning(); }));
    EXPECT_TRUE(m_dialogs.alerts().isEmpty());
}

TEST_F(OrvoApplicationTest, exportsAPictureOfTheWindow) {
    launched();
    const QString path = m_folder.filePath(QStringLiteral("preview.png"));
    m_dialogs.chooseFile(FilePath::fromString(path));
    menuItem(QStringLiteral("File"), QStringLiteral("Export Interface Preview…"))->trigger();
    EXPECT_EQ(m_dialogs.savePanels().last().proposedName, QStringLiteral("Orvo-Preview.png"));
    EXPECT_EQ(QImage(path).size(), m_application->window()->centralWidget()->size());
    EXPECT_EQ(m_application->workspace().toast(), QStringLiteral("Interface preview exported."));

    m_dialogs.chooseFile(FilePath::fromString(m_folder.filePath(QStringLiteral("missing/preview.png"))));
    m_application->exportPreview();
    EXPECT_EQ(m_application->workspace().toast(), QStringLiteral("Could not export the preview."));
}

TEST_F(OrvoApplicationTest, capturesSixPagesAndEnds) {
    const FilePath folder = FilePath::fromString(m_folder.filePath(QStringLiteral("deep/pictures")));
    launched({.capture = folder}, Keep::Nothing);
    m_clock.advance(std::chrono::seconds(7));
    EXPECT_EQ(m_ended, 1);
    EXPECT_EQ(QDir(folder.display()).entryList(QDir::Files, QDir::Name),
              (QStringList{QStringLiteral("Appearance.png"), QStringLiteral("Assistants.png"),
                           QStringLiteral("Files & runner.png"), QStringLiteral("Mac actions.png"),
                           QStringLiteral("Settings.png"), QStringLiteral("Workspace.png")}));
}

}  // namespace
}  // namespace orvo
