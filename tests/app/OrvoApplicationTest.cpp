#include "app/OrvoApplication.h"

#include "app/EndRequests.h"
#include "app/MainWindow.h"
#include "companion/ui/CompanionController.h"
#include "platform/fake/FakeDesktopNotifications.h"
#include "platform/fake/FakeEscapedPrograms.h"
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
        m_application = std::make_unique<OrvoApplication>(
            wanted, options, places(),
            DesktopServices{m_desktop, m_images, m_microphone, m_recognition, m_synthesizer, m_escaped,
                            m_notifications});
        QObject::connect(m_application.get(), &OrvoApplication::ended, m_application.get(),
                         [this] { ++m_ended; });
        m_application->launch();
        return *m_application;
    }

    AppPlaces places() {
        const FilePath root = FilePath::fromString(m_folder.path());
        return {.folders = {root.child("configuration"), root.child("data")},
                .exampleSource = root.child("samples")};
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

    FakeEscapedPrograms m_escaped;
    FakeDesktopNotifications m_notifications;
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
              // Of the status item, for a desktop that has no place for one.
              "  Stop microphone && audio\n"
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

TEST_F(OrvoApplicationTest, withoutAFolderTheSamplesAreOpenedForThisRunOnly) {
    QDir(m_folder.path()).mkpath(QStringLiteral("samples/practice"));
    launched();
    EXPECT_EQ(m_application->workspace().folder(), places().folders.applicationData("Example Project"));
    EXPECT_FALSE(m_preferences.value(preference::workspace));
    EXPECT_FALSE(m_preferences.value(preference::recentFolders));
}

TEST_F(OrvoApplicationTest, aTransientRunThrowsItsSamplesAway) {
    QDir(m_folder.path()).mkpath(QStringLiteral("samples/practice"));
    launched({}, Keep::Nothing);
    const FilePath folder = m_application->workspace().folder().value();
    EXPECT_TRUE(folder.nameBytes().startsWith("Orvo-examples-"));
    EXPECT_TRUE(QDir(folder.child("practice").display()).exists());
    m_application.reset();
    EXPECT_FALSE(QDir(folder.display()).exists());
}

TEST_F(OrvoApplicationTest, missingSamplesAreSaidAndLeaveNoFolder) {
    launched();
    EXPECT_FALSE(m_application->workspace().folder());
    EXPECT_EQ(m_application->workspace().toast(),
              QStringLiteral("Choose a project folder to get started. The example project could not be "
                             "prepared."));
}

TEST_F(OrvoApplicationTest, aLaterStartShowsTheMinimizedWindowAndOpensItsFolder) {
    const FilePath given = makeProject(QStringLiteral("given"));
    launched();
    m_application->minimize();
    m_application->serve({.workspace = given});
    EXPECT_FALSE(m_application->window()->isMinimized());
    EXPECT_EQ(m_application->workspace().folder(), given);
    EXPECT_FALSE(m_preferences.value(preference::workspace));
}

TEST_F(OrvoApplicationTest, aNoticeOfTheDesktopLeadsToTheSessionThatAsks) {
    using namespace std::chrono_literals;
    launched();
    startTerminal();
    const auto asking = m_application->workspace().sessions().at(0);
    menuItem(QStringLiteral("File"), QStringLiteral("New Terminal"))->trigger();
    m_application->workspace().setDestination(Destination::Settings);
    m_application->minimize();
    asking->send(QStringLiteral("printf '\\033]777;notify;Build;done\\a'\r"));
    ASSERT_TRUE(test::waitFor([&] { return asking->mark() == Attention::Mark::WantsYou; }));
    m_clock.advance(1s);
    ASSERT_TRUE(m_notifications.shown());
    EXPECT_EQ(m_notifications.shown()->title, asking->title() + QStringLiteral(" wants you"));
    EXPECT_EQ(m_notifications.shown()->body, QStringLiteral("message “Build done”"));

    m_notifications.choose("token");
    EXPECT_FALSE(m_application->window()->isMinimized());
    EXPECT_EQ(m_application->workspace().activeSessionID(), asking->id());
    EXPECT_EQ(m_application->workspace().destination(), Destination::Workspace);
    EXPECT_TRUE(qEnvironmentVariableIsEmpty("XDG_ACTIVATION_TOKEN"));
}

TEST_F(OrvoApplicationTest, aLaterStartAsksBeforeItsFolderReplacesUnsavedChanges) {
    const FilePath first = makeProject(QStringLiteral("first"));
    const FilePath given = makeProject(QStringLiteral("given"));
    launched({.workspace = first});
    ProjectFiles& files = m_application->workspace().files();
    files.setEditorText(QStringLiteral("unsaved"));
    m_application->serve({.workspace = first});
    EXPECT_TRUE(m_dialogs.alerts().isEmpty()) << "the folder is open already";

    // Another start while the question stands only brings the window to the front.
    m_dialogs.answer(QStringLiteral("Cancel"), [&] { m_application->serve({.workspace = given}); });
    m_application->serve({.workspace = given});
    EXPECT_EQ(m_application->workspace().folder(), first);
    EXPECT_EQ(files.editorText(), QStringLiteral("unsaved"));

    m_dialogs.answer(QStringLiteral("Discard"));
    m_application->serve({.workspace = given});
    EXPECT_EQ(m_application->workspace().folder(), given);
}

TEST_F(OrvoApplicationTest, errandsOfAStartAreRun) {
    launched({.workspace = makeProject(QStringLiteral("notes")), .errand = Options::Errand::NewTerminal});
    EXPECT_EQ(m_application->workspace().sessions().size(), 1u);
    const auto focusIsIn = [](const char* className) {
        return test::waitFor([className] {
            return QApplication::focusWidget() && QApplication::focusWidget()->inherits(className);
        });
    };
    ASSERT_TRUE(focusIsIn("orvo::TerminalView"));
    stopSessionsAndWait(m_application->workspace().sessions());

    m_application->serve({.errand = Options::Errand::QuickDraft});
    EXPECT_TRUE(m_application->companionController()->isDraftVisible());
    ASSERT_TRUE(focusIsIn("orvo::TaskEditor"));
    EXPECT_EQ(test::nameOf(*QApplication::focusWidget()), QStringLiteral("Companion draft"));

    // A run that keeps nothing has no companion; its drafts are written in the composer.
    launched({.errand = Options::Errand::QuickDraft}, Keep::Nothing);
    ASSERT_TRUE(focusIsIn("orvo::TaskEditor"));
    EXPECT_EQ(test::nameOf(*QApplication::focusWidget()), QStringLiteral("Task for selected assistants"));
}

TEST_F(OrvoApplicationTest, theWindowOnlyHidesWhileThePetCanBringItBack) {
    launched();
    m_clock.advance(std::chrono::seconds(1));
    ASSERT_TRUE(m_application->companionController()->isPetVisible());
    m_application->window()->close();
    EXPECT_FALSE(m_application->window()->isVisible());
    EXPECT_EQ(m_ended, 0);
    m_application->companion().openWorkspace();
    EXPECT_TRUE(m_application->window()->isVisible());

    m_application->companion().setEnabled(false);
    m_application->window()->close();
    EXPECT_EQ(m_ended, 1);
}

TEST_F(OrvoApplicationTest, unsavedTextSurvivesAnEndThatTheSystemWants) {
    launched();
    m_application->workspace().files().setEditorText(QStringLiteral("half a thought"));
    m_application->endNow();
    m_application->endNow();
    EXPECT_EQ(m_ended, 1);
    EXPECT_TRUE(m_dialogs.alerts().isEmpty());

    launched();
    m_dialogs.answer(QStringLiteral("Restore"));
    m_clock.advance(std::chrono::seconds(0));
    EXPECT_EQ(m_application->workspace().files().editorText(), QStringLiteral("half a thought"));
    EXPECT_EQ(m_application->workspace().destination(), Destination::Files);

    // What the person gives up when quitting is not offered again.
    m_dialogs.answer(QStringLiteral("Discard"));
    m_application->keepUnsavedText();
    m_application->quit();
    const qsizetype asked = m_dialogs.alerts().size();
    launched();
    m_clock.advance(std::chrono::seconds(0));
    EXPECT_EQ(m_dialogs.alerts().size(), asked);
}

TEST_F(OrvoApplicationTest, aFaultCostsNoMoreThanTheLastSecondsOfTyping) {
    const auto kept = [this] {
        const FilePath folder = places().folders.applicationData("Recovery");
        return QDir(folder.display()).entryList(QDir::Files).size();
    };
    launched();
    ProjectFiles& files = m_application->workspace().files();
    files.setEditorText(QStringLiteral("half"));
    files.setEditorText(QStringLiteral("half a thought"));
    m_clock.advance(std::chrono::seconds(3));
    ASSERT_TRUE(test::waitFor([&] { return kept() == 1; }));
    // Gone without a farewell.
    m_application.reset();

    launched();
    m_dialogs.answer(QStringLiteral("Restore"));
    m_clock.advance(std::chrono::seconds(0));
    ProjectFiles& restored = m_application->workspace().files();
    EXPECT_EQ(restored.editorText(), QStringLiteral("half a thought"));
    EXPECT_EQ(kept(), 1) << "it is still unsaved";

    // What is saved or given up needs no keeping.
    restored.setEditorText(QString());
    EXPECT_TRUE(test::waitFor([&] { return kept() == 0; }));
    m_clock.advance(std::chrono::seconds(10));
    EXPECT_EQ(kept(), 0);
}

TEST_F(OrvoApplicationTest, programsThatLeftTheirTerminalsAreNamedAndStoppedOnlyWithAYes) {
    const QList<EscapedProgram> programs = {{.pid = 4711, .started = 1, .name = QStringLiteral("node")},
                                            {.pid = 4712, .started = 2, .name = QStringLiteral("redis")}};
    m_escaped.setRunning(programs);
    launched();
    m_dialogs.answer(QStringLiteral("Leave running"));
    m_application->quit();
    EXPECT_EQ(m_ended, 1);
    EXPECT_EQ(m_escaped.running(), programs);
    EXPECT_TRUE(
        m_dialogs.alerts().last().informativeText.contains(QStringLiteral("node (4711), redis (4712)")));

    launched();
    m_dialogs.answer(QStringLiteral("Stop them"));
    m_application->quit();
    EXPECT_EQ(m_ended, 2);
    EXPECT_TRUE(m_escaped.running().isEmpty());

    // Nobody is asked when the system ends the run.
    m_escaped.setRunning(programs);
    launched();
    const qsizetype asked = m_dialogs.alerts().size();
    m_application->endNow();
    EXPECT_EQ(m_ended, 3);
    EXPECT_EQ(m_dialogs.alerts().size(), asked);
    EXPECT_EQ(m_escaped.running(), programs);
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
    const EndRequests endRequests(*qGuiApp, *m_application);
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
    const auto told = [this](const QString& sentence) {
        return test::waitFor([&] { return m_application->workspace().toast() == sentence; });
    };
    EXPECT_TRUE(told(QStringLiteral("Interface preview exported.")));
    EXPECT_EQ(QImage(path).size(), m_application->window()->centralWidget()->size());

    m_dialogs.chooseFile(FilePath::fromString(m_folder.filePath(QStringLiteral("missing/preview.png"))));
    m_application->exportPreview();
    EXPECT_TRUE(told(QStringLiteral("Could not export the preview.")));
}

}  // namespace
}  // namespace orvo
