// Writes pictures of the main window's screens in every palette and size: orvo_screenshots FOLDER [SCALE]
// A third argument is the beginning of the only states to write.
//
// The models are real, the assistants are not: sessions print a fixed text and wait. SCALE is 1 or 2; without
// it both are made, each in a process of its own, because Qt takes the scale once.

#include "app/MainWindow.h"
#include "app/Menu.h"
#include "app/OrvoApplication.h"
#include "appearance/controls/AlertSheet.h"
#include "companion/ui/CompanionController.h"
#include "platform/fake/FakeClock.h"
#include "platform/fake/FakeDesktopControl.h"
#include "platform/fake/FakeDesktopNotifications.h"
#include "platform/fake/FakeDialogs.h"
#include "platform/fake/FakeEscapedPrograms.h"
#include "platform/fake/FakeLauncher.h"
#include "platform/fake/FakePreferences.h"
#include "platform/fake/FakeSleepInhibitor.h"
#include "platform/fake/FakeSpeech.h"
#include "platform/images/QtImageDecoder.h"
#include "support/QtTestMain.h"
#include "support/WaitFor.h"
#include "workspace_ui/roughTexts.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QProcess>
#include <QScrollArea>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>

using namespace orvo;

namespace {

constexpr std::array sizes = {QSize(1180, 740), QSize(1440, 900), QSize(2560, 1440)};
constexpr std::array installedTools = {"claude", "codex", "kimi"};

struct Transcript {
    const char* provider;
    const char* title;
    const char* output;
};

constexpr std::array transcripts = {
    Transcript{
        "claude", "Claude Code session",
        "\\033[1mI will start with how notes are stored.\\033[0m\\n\\n\\033[32m*\\033[0m "
        "\\033[1mRead\\033[0m "
        "src/store/notes.ts \\033[90m214 lines\\033[0m\\n\\033[32m*\\033[0m \\033[1mEdit\\033[0m "
        "src/store/search.ts \\033[32m+48\\033[0m \\033[31m-3\\033[0m\\n\\n\\033[35mWiring the list to the "
        "index\\033[0m \\033[90m38s\\033[0m\\n"},
    Transcript{
        "codex", "Add offline search to the notes list. Keep the cu",
        "\\033[1;34mplan\\033[0m\\n \\033[32mv\\033[0m Inspect the store and its tests\\n \\033[32mv\\033[0m "
        "Build an inverted index on load\\n \\033[34m>\\033[0m \\033[1mUpdate the index on each "
        "edit\\033[0m\\n\\n\\033[1;34mexec\\033[0m npm test -- search\\n \\033[32mPASS\\033[0m "
        "tests/search.test.ts \\033[90m(14)\\033[0m\\n \\033[31mFAIL\\033[0m tests/edit.test.ts\\n"},
    Transcript{
        "kimi", "Add offline search to the notes list. Keep the cu",
        "\\033[1;35mKimi\\033[0m \\033[90mthinking for 21s\\033[0m\\nThe list already debounces input.\\n\\n"
        "\\033[32mdone\\033[0m  src/lib/index.ts\\n\\033[32mdone\\033[0m  tests/index.test.ts\\n"},
    Transcript{"shell", "Terminal session",
               "\\033[90m%%\\033[0m git status --short\\n\\033[32mA\\033[0m  src/store/search.ts\\n "
               "\\033[31mM\\033[0m "
               "src/ui/NoteList.tsx\\n"},
};

constexpr const char* sampleCode =
    "import { openStore } from \"./db\";\nimport type { Note } from \"../types\";\n\nexport async function "
    "loadNotes(): Promise<Note[]> {\n  const store = await openStore(\"notes\");\n  return "
    "store.all();\n}\n\n"
    "export function findNotes(notes: Note[], text: string) {\n  const needle = text.trim().toLowerCase();\n "
    " if "
    "(!needle) return notes;\n  return notes.filter((note) =>\n    "
    "note.title.toLowerCase().includes(needle)\n  );\n}\n";

constexpr const char* planningCodex = R"sh(#!/bin/sh
while [ $# -gt 0 ]; do [ "$1" = --output-last-message ] && out=$2; shift; done
[ "$out" ] && cat > "$out" <<'END'
{"explanation":"Opens the text editor, starts a document, types one line with the tide time and saves it. You will choose the file name yourself.","steps":[
{"id":1,"title":"Open the text editor","action":"open_app","app":"org.gnome.TextEditor","value":""},
{"id":2,"title":"Start a new document","action":"key","app":"org.gnome.TextEditor","value":"command+n"},
{"id":3,"title":"Type the greeting","action":"type_text","app":"org.gnome.TextEditor","value":"Good morning! The tide turns at 10:42 today."},
{"id":4,"title":"Save the document","action":"key","app":"org.gnome.TextEditor","value":"command+s"}]}
END
)sh";

constexpr const char* sampleScript = R"py(# Reads the tide tables and prints the next high water.
import csv
from datetime import datetime, timedelta

HARBOR = "North Quay"
OFFSET_MINUTES = 18


def load(path):
    with open(path, newline="") as handle:
        rows = csv.DictReader(handle)
        return [(datetime.fromisoformat(r["time"]), float(r["height"])) for r in rows]


def next_high(table, now):
    later = [entry for entry in table if entry[0] > now]
    if len(later) < 3:
        return None
    for before, here, after in zip(later, later[1:], later[2:]):
        if before[1] < here[1] > after[1]:
            return here
    return None


if __name__ == "__main__":
    found = next_high(load("data/tides.csv"), datetime.now())
    print(HARBOR, found)
)py";

class Studio {
public:
    Studio(const QDir& out, const ThemePreset& preset, QByteArray only)
        : m_out(out), m_preset(preset), m_only(std::move(only)) {
        QDir home(m_folder.path());
        // The shells of sessions look for programs below HOME too.
        qputenv("HOME", QFile::encodeName(home.path()));
        // Each palette begins without the runs of the one before.
        for (const char* const name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME"})
            qputenv(name, QFile::encodeName(home.filePath(QLatin1String(name))));
        home.mkpath(QStringLiteral(".local/bin"));
        for (const char* name : installedTools) {
            QFile program(home.filePath(QStringLiteral(".local/bin/") + QLatin1String(name)));
            if (program.open(QIODevice::WriteOnly)) {
                program.write(
                    "#!/bin/sh\ncase \"$1\" in auth) echo '{\"loggedIn\": true}'; exit;; login) echo Logged "
                    "in; "
                    "exit;; esac\n"
                    "case ${0##*/} in\n"
                    "claude) echo Reading the store; exec sleep 600;;\n"
                    "codex) echo 'export class SearchIndex {}' > src/store/search.ts; mkdir -p tests\n"
                    "  sed -i 's/store.all()/await store.all()/' src/store/notes.ts src/ui/NoteList.tsx\n"
                    "  echo 'test(\"finds notes\")' > tests/search.test.ts; rm src/ui/legacy/Filter.tsx\n"
                    "  echo 'Added an index. Run npm test.';;\n"
                    "kimi) echo 'No model is configured.'; exit 2;;\nesac\n");
            }
            program.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
        QStringList recent;
        for (const char* name : {"harbor-notes", "tide-tables", "lumen-site", "paperboat", "driftwood"}) {
            home.mkpath(QLatin1String(name));
            recent.append(home.filePath(QLatin1String(name)));
        }
        m_preferences.preset(preference::recentFolders.name, recent);
        m_preferences.preset(preference::workspace.name, recent.first());
        m_preferences.preset(preference::pelkAccentApplied.name, true);
        m_preferences.preset(preference::preset.name, preset.id);
        m_preferences.preset(preference::background.name, preset.background);
        m_preferences.preset(preference::accent.name, preset.accent);
        m_application = std::make_unique<OrvoApplication>(
            WorkspaceServices{.preferences = &m_preferences,
                              .clock = m_clock,
                              .dialogs = m_dialogs,
                              .launcher = m_launcher,
                              .sleepInhibitor = m_sleepInhibitor,
                              .tools = {.home = FilePath::fromString(m_folder.path()), .systemFolders = {}}},
            Options{}, AppPlaces{AppFolders::fromProcess(), {}},
            DesktopServices{m_desktop, m_images, m_microphone, m_recognition, m_synthesizer,
                            m_escapedPrograms, m_notifications});
        m_application->launch();
        // The companion, whose windows this platform would make the active ones.
        m_clock.advance(std::chrono::milliseconds(1));
        m_application->window()->activateWindow();
        (void)test::waitFor([this] { return !workspace().assistants().checkingConnections(); });
    }
    ~Studio() { stopSessionsAndWait(workspace().sessions()); }

    void takeAll() {
        take("welcome");
        workspace().notify(QStringLiteral("Workspace opened: harbor-notes"));
        take("welcome-notice");
        m_clock.advance(std::chrono::seconds(4));
        workspace().editConnector(workspace().assistants().provider(QStringLiteral("antigravity")));
        take("connector-sheet");
        workspace().dismissConnector();
        for (const Destination page : allDestinations) {
            if (page == Destination::Workspace) continue;
            workspace().setDestination(page);
            take(textOf(page)
                     .toLower()
                     .replace(QStringLiteral(" & "), QStringLiteral("-"))
                     .replace(u' ', u'-')
                     .toUtf8());
        }
        if (wants("files-runner-")) takeFiles();
        if (wants("team-runs") || wants("history-")) takeTeamRuns();
        if (wants("history-")) {
            workspace().setDestination(Destination::History);
            take("history-filled");
        }
        if (wants("preparing")) takePreparing();
        if (wants("mac-actions")) takeMacActions();
        if (wants("desktop")) takeDesktop();
        if (wants("deck")) takeDecks();
        if (wants("history-filled")) takeHistory();
        if (wants("alert")) takeAlert();
        if (wants("rough")) takeRough();
    }

private:
    /// Whether a state whose name begins like this may be asked for; saves making what nobody looks at.
    bool wants(const QByteArray& beginning) const {
        return m_only.startsWith(beginning) || beginning.startsWith(m_only);
    }

    void takeHistory() {
        m_dialogs.answer(QStringLiteral("Clear"));
        workspace().clearHistory();
        const QDateTime monday(QDate(2026, 11, 23), QTime(9, 41));
        int day = 0;
        for (const Transcript& session : transcripts) {
            record(QString::fromLatin1(session.provider), QString::fromLatin1(session.title),
                   monday.addDays(-day), day == 2 ? 1 : 0,
                   QString::fromLatin1(sampleScript) + QString::fromLatin1(sampleCode));
            ++day;
        }
        m_clock.advance(std::chrono::seconds(4));
        workspace().setDestination(Destination::History);
        take("history-filled");
    }

    void record(const QString& provider, const QString& title, const QDateTime& started, int exitCode,
                const QString& output) {
        workspace().history().record({.id = QUuid::createUuid(),
                                      .provider = provider,
                                      .title = title,
                                      .directory = *workspace().folder(),
                                      .started = started,
                                      .exitCode = exitCode,
                                      .output = output});
    }

    void takeAlert() {
        workspace().setDestination(Destination::Settings);
        AlertSheet alert(m_application->window(),
                         {.message = QStringLiteral("Apply 2 reviewed files?"),
                          .informativeText = QStringLiteral(
                              "Project: ~/harbor-notes\nChanged: README.md\nAdded: tides.txt\n\n"
                              "Original files are backed up inside this run. Conflicting changes "
                              "are blocked."),
                          .buttons = {QStringLiteral("Apply changes"), QStringLiteral("Cancel")},
                          .defaultButton = Alert::Default::FirstButton});
        alert.open(nullptr);
        take("alert");
    }

    // Texts that nobody planned for, where they are many.
    void takeRough() {
        closeAllSessions();
        int number = 0;
        for (const QString& rough : test::roughTexts() + QStringList{QString()}) {
            Provider provider;
            provider.id = QStringLiteral("rough%1").arg(number++);
            provider.name = rough;
            provider.subtitle = rough;
            provider.executable = rough;
            provider.template_ = QStringLiteral("sh");
            workspace().assistants().addTemporary(provider);
            record(provider.id, rough, QDateTime(QDate(2026, 11, 23), QTime(9, 41)), 70'000,
                   rough.repeated(40));
        }
        workspace().setDestination(Destination::History);
        take("rough-history");
        workspace().setDestination(Destination::Agents);
        take("rough-assistants");
        workspace().setDestination(Destination::Workspace);
        take("rough-welcome");
        number = 0;
        for (const QString& rough : test::roughTexts()) {
            workspace().startSession(QStringLiteral("rough%1").arg(number++), rough,
                                     QStringLiteral("sleep 600"), *workspace().folder());
        }
        workspace().setFocusMode(false);
        workspace().notify(test::roughTexts().join(u' '));
        take("rough-deck");
    }

    void takeDecks() {
        workspace().setDestination(Destination::Workspace);
        workspace().setFocusMode(false);
        for (const std::size_t count : {1u, 2u, 4u, 12u}) {
            while (workspace().sessions().size() < count)
                startSession(workspace().sessions().size());
            take("deck-" + QByteArray::number(count));
        }
        workspace().setFocusMode(true);
        workspace().setPrompt(
            QStringLiteral("Add offline search to the notes list. Keep the current layout, cover it with "
                           "tests,\nand tell me how to try it."));
        take("deck-focus");
    }

    // Stopped first: what still runs would be asked about.
    void closeAllSessions() {
        workspace().stopAll();
        (void)test::waitFor([this] { return !workspace().anySessionRunning(); });
        const auto sessions = workspace().sessions();
        for (const auto& session : sessions)
            workspace().closeSession(session);
    }

    Workspace& workspace() { return m_application->workspace(); }

    QWidget* named(const char* name) {
        for (QWidget* const widget : m_application->window()->findChildren<QWidget*>()) {
            const auto* const interface = QAccessible::queryAccessibleInterface(widget);
            if (widget->isVisible() && interface &&
                interface->text(QAccessible::Name) == QString::fromUtf8(name))
                return widget;
        }
        std::fprintf(stderr, "nothing is named \"%s\"\n", name);
        return nullptr;
    }
    void press(const char* name) {
        if (auto* const button = qobject_cast<QAbstractButton*>(named(name))) button->click();
    }

    /// As a press of the key would reach a widget of the active window, shortcuts first.
    static void pressKey(QWidget& widget, Qt::Key key, Qt::KeyboardModifiers modifiers) {
        // The companion's windows may have come to the front since.
        widget.window()->activateWindow();
        (void)QTest::qWaitForWindowActive(widget.window());
        QTest::keyClick(&widget, key, modifiers);
    }

    void takeFiles() {
        const QDir project(QFile::decodeName(workspace().folder()->bytes()));
        for (const char* folder : {"data", "docs", "src", "tests"})
            project.mkpath(QLatin1String(folder));
        for (const char* name :
             {"Makefile", "next_tide.py", "package.json", "README.md", "requirements.txt"}) {
            QFile file(project.filePath(QLatin1String(name)));
            if (file.open(QIODevice::WriteOnly)) file.write(sampleScript);
        }
        workspace().files().refreshFiles();
        workspace().setDestination(Destination::Files);
        take("files-runner-chosen");
        workspace().files().openFile({workspace().folder()->child("next_tide.py"), false});
        take("files-runner-open");
        workspace().files().setEditorText(workspace().files().editorText() + QStringLiteral("# more\n"));
        take("files-runner-edited");
        if (auto* const editor = qobject_cast<QPlainTextEdit*>(named("Code editor"))) {
            editor->setFocus();
            QTextCursor cursor = editor->textCursor();
            cursor.setPosition(120);
            cursor.setPosition(330, QTextCursor::KeepAnchor);
            editor->setTextCursor(cursor);
            take("files-runner-selected");
            cursor.setPosition(0);
            editor->setTextCursor(cursor);
            pressKey(*editor, Qt::Key_F, Qt::ControlModifier);
            if (auto* const field = qobject_cast<QLineEdit*>(named("Find in file…"))) {
                field->setText(QStringLiteral("table"));
                pressKey(*field, Qt::Key_Return, Qt::NoModifier);
            }
        }
        QFile onDisk(project.filePath(QStringLiteral("next_tide.py")));
        if (onDisk.open(QIODevice::WriteOnly)) onDisk.write("pass\n");
        onDisk.close();
        (void)test::waitFor([this] { return workspace().files().onDisk() == ProjectFiles::OnDisk::Changed; });
        take("files-runner-changed-find");
        m_dialogs.answer(QStringLiteral("Discard"));
        workspace().files().openFile({workspace().folder()->child("Makefile"), false});
        press("Close search");
    }

    // A run in which one assistant still works, one has finished and one has failed.
    void takeTeamRuns() {
        const QDir project(QFile::decodeName(workspace().folder()->bytes()));
        for (const char* name : {"src/store/notes.ts", "src/ui/NoteList.tsx", "src/ui/legacy/Filter.tsx"}) {
            project.mkpath(QFileInfo(QLatin1String(name)).path());
            QFile file(project.filePath(QLatin1String(name)));
            if (file.open(QIODevice::WriteOnly)) file.write(sampleCode);
        }
        workspace().setPrompt(QStringLiteral(
            "Add offline search to the notes list. Keep the current layout, cover it with tests."));
        workspace().setSelectedProviders(
            {QStringLiteral("claude"), QStringLiteral("codex"), QStringLiteral("kimi")});
        workspace().dispatchPrompt();
        (void)test::waitFor([this] { return !workspace().preparingRun(); });
        (void)test::waitFor([this] {
            return std::ranges::count_if(workspace().sessions(),
                                         [](const auto& session) { return session->running(); }) == 1;
        });
        workspace().setDestination(Destination::Runs);
        take("team-runs-cards");
        // The second card's, whose assistant has finished.
        QList<QAbstractButton*> reviews;
        for (auto* const button : m_application->window()->findChildren<QAbstractButton*>()) {
            const auto* const interface = QAccessible::queryAccessibleInterface(button);
            if (button->isVisible() && interface->text(QAccessible::Name) == QStringLiteral("Review files"))
                reviews.append(button);
        }
        if (reviews.size() > 1) reviews[1]->click();
        settle();
        press("Select all");
        // The notice of the start is over.
        m_clock.advance(std::chrono::seconds(4));
        take("team-runs-review");
        press("Output");
        workspace().setDestination(Destination::Runs);
        closeAllSessions();
        press("Output");
        take("team-runs-output");
        press("Done");
        workspace().setPrompt(QString());
    }

    // A run of a project whose copies take a while.
    void takePreparing() {
        QDir project(QFile::decodeName(workspace().folder()->bytes()));
        project.mkpath(QStringLiteral("pictures"));
        const QByteArray picture(28'000, 'x');
        for (int number = 0; number < 4900; ++number) {
            QFile file(project.filePath(QStringLiteral("pictures/%1.raw").arg(number)));
            if (file.open(QIODevice::WriteOnly)) file.write(picture);
        }
        workspace().setDestination(Destination::Workspace);
        workspace().setSelectedProviders(
            {QStringLiteral("claude"), QStringLiteral("codex"), QStringLiteral("kimi")});
        workspace().setPrompt(QStringLiteral("Sort the pictures by place and write an index of them."));
        take("preparing", [this] {
            workspace().cancelPreparation();
            m_clock.advance(std::chrono::seconds(4));
            settle();
            workspace().dispatchPrompt();
            // "Copying 1842 of 4900 files, …"
            const auto files = [this] {
                return workspace().preparationStatus().section(u' ', 1, 1).toInt();
            };
            if (!test::waitFor([&] { return files() > 1500 || !workspace().preparingRun(); }))
                std::fputs("a preparation did not get on\n", stderr);
        });
        workspace().cancelPreparation();
        m_clock.advance(std::chrono::seconds(4));
        workspace().setPrompt(QString());
        project.cd(QStringLiteral("pictures"));
        project.removeRecursively();
    }

    // A plan of which one step has been carried out, and the tools for working by hand.
    void takeMacActions() {
        QFile codex(m_folder.filePath(QStringLiteral(".local/bin/codex")));
        if (codex.open(QIODevice::WriteOnly | QIODevice::Truncate)) codex.write(planningCodex);
        codex.close();
        m_desktop.installed.insert(QStringLiteral("org.gnome.TextEditor"),
                                   {QStringLiteral("org.gnome.TextEditor"), QStringLiteral("Text Editor")});
        workspace().setDestination(Destination::Mac);
        if (auto* const task = qobject_cast<QPlainTextEdit*>(named("Mac task to plan")))
            task->setPlainText(QStringLiteral("Start a new note with today’s tide time and save it."));
        press("Make a plan");
        (void)test::waitFor([this] { return named("Run next step")->isEnabled(); });
        m_dialogs.answer(QStringLiteral("Run this step"));
        press("Run next step");
        if (m_desktop.opened)
            m_desktop.opened(std::optional(RunningApplication{1, m_desktop.installed.first()}));
        m_clock.advance(std::chrono::seconds(1));
        take("mac-actions-plan");
        press("Manual Mac tools");
        for (auto* const area : m_application->window()->findChildren<QScrollArea*>()) {
            settle();
            if (area->isVisible()) area->verticalScrollBar()->setValue(area->verticalScrollBar()->maximum());
        }
        take("mac-actions-tools");
        press("Manual Mac tools");
    }

    // The pet with the quick draft beside it, as they stand on a desktop, idle and listening.
    void takeDesktop() {
        m_clock.advance(std::chrono::milliseconds(1));
        CompanionController& controller = *m_application->companionController();
        CompanionModel& companion = m_application->companion();
        companion.setAnimate(false);
        controller.quickDraft();
        takeDesktopPicture("desktop-quick-draft");
        companion.setDraft(
            QStringLiteral("Plan the release notes for the search feature and keep them short"));
        companion.toggleMicrophone();
        m_microphone.access(true);
        QCoreApplication::sendPostedEvents();
        m_recognition.authorization(true);
        QCoreApplication::sendPostedEvents();
        m_microphone.started({});
        takeDesktopPicture("desktop-listening");
        companion.stopMicrophone();
        companion.setScale(CompanionModel::smallestScale);
        takeDesktopPicture("desktop-small-pet");
        companion.setScale(1);
        controller.dismissControls();
    }

    void takeDesktopPicture(const QByteArray& state) {
        settle();
        QRect area;
        QList<QWidget*> panels;
        for (QWidget* const window : QApplication::topLevelWidgets()) {
            if (!window->isVisible() || !window->inherits("orvo::CompanionPanel")) continue;
            panels.append(window);
            area |= window->geometry();
        }
        if (panels.isEmpty()) return;
        const double ratio = panels.first()->devicePixelRatioF();
        QPixmap desktop((QSizeF(area.size()) * ratio).toSize());
        desktop.setDevicePixelRatio(ratio);
        desktop.fill(QColor(60, 61, 56));
        QPainter painter(&desktop);
        for (QWidget* const panel : panels)
            panel->render(&painter, panel->pos() - area.topLeft(), QRegion(),
                          QWidget::DrawWindowBackground | QWidget::DrawChildren);
        painter.end();
        m_out.mkpath(m_preset.id);
        const QString file =
            QStringLiteral("%1/%2@%3.png").arg(m_preset.id, QString::fromUtf8(state)).arg(ratio);
        if (!desktop.save(m_out.filePath(file)))
            std::fprintf(stderr, "cannot write below %s\n", qUtf8Printable(m_out.path()));
    }

    void startSession(std::size_t index) {
        const Transcript& text = transcripts.at(index % transcripts.size());
        const auto session = workspace().startSession(
            QString::fromLatin1(text.provider), QString::fromLatin1(text.title),
            QStringLiteral("printf '%1'; exec sleep 600").arg(QString::fromLatin1(text.output)),
            *workspace().folder());
        if (!test::waitFor([&] { return session->revision() > 0; }))
            std::fputs("a session printed nothing\n", stderr);
    }

    /// `arrange` brings about, at each size anew, what would be over by the next.
    void take(const QByteArray& state, const std::function<void()>& arrange = {}) {
        if (!state.startsWith(m_only)) return;
        for (const QSize size : sizes) {
            MainWindow& window = *m_application->window();
            window.resize(size);
            settle();
            if (arrange) arrange();
            const QString folder = QStringLiteral("%1/%2x%3@%4")
                                       .arg(m_preset.id)
                                       .arg(size.width())
                                       .arg(size.height())
                                       .arg(window.devicePixelRatio());
            m_out.mkpath(folder);
            if (!window.grab().save(
                    m_out.filePath(folder + u'/' + QString::fromUtf8(state) + QStringLiteral(".png")))) {
                std::fprintf(stderr, "cannot write below %s\n", qUtf8Printable(m_out.path()));
            }
        }
    }

    /// Lets animations, layouts and the frames of terminals come to rest.
    static void settle() {
        const QDeadlineTimer rest(400);
        while (!rest.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }

    const QDir m_out;
    const ThemePreset m_preset;
    const QByteArray m_only;
    QTemporaryDir m_folder;
    FakePreferences m_preferences;
    FakeClock m_clock;
    FakeDialogs m_dialogs;
    FakeLauncher m_launcher;
    FakeSleepInhibitor m_sleepInhibitor;
    FakeDesktopControl m_desktop;
    QtImageDecoder m_images;
    FakeMicrophone m_microphone;
    FakeSpeechRecognition m_recognition;
    FakeSpeechSynthesizer m_synthesizer;
    FakeEscapedPrograms m_escapedPrograms;
    FakeDesktopNotifications m_notifications;
    std::unique_ptr<OrvoApplication> m_application;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs("usage: orvo_screenshots FOLDER [SCALE]\n", stderr);
        return 2;
    }
    test::isolateEnvironment();
    if (argc == 2) {
        QCoreApplication application(argc, argv);
        int failures = 0;
        for (const char* scale : {"1", "2"}) {
            const QStringList arguments = {QString::fromLocal8Bit(argv[1]), QLatin1String(scale)};
            if (QProcess::execute(QCoreApplication::applicationFilePath(), arguments) != 0) ++failures;
        }
        return failures;
    }
    qputenv("QT_SCALE_FACTOR", argv[2]);
    QApplication application(argc, argv);
    for (const ThemePreset& preset : ThemePreset::all())
        Studio(QDir(QString::fromLocal8Bit(argv[1])), preset, argc > 3 ? argv[3] : "").takeAll();
    return 0;
}
