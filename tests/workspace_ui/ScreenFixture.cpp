#include "workspace_ui/ScreenFixture.h"

#include "appearance/controls/OrvoStyle.h"
#include "companion/ui/builtInPet.h"

#include <QAccessible>
#include <QDir>
#include <QFile>

namespace orvo::test {
namespace {

QWidget* visibleNamed(const QWidget& root, const QString& name, const char* className) {
    for (QWidget* const widget : root.findChildren<QWidget*>()) {
        if (widget->isVisible() && widget->inherits(className) && nameOf(*widget) == name) return widget;
    }
    return nullptr;
}

}  // namespace

QString nameOf(const QWidget& widget) {
    // The interface wants a mutable object, but only reads it here.
    QAccessibleInterface* const interface =
        QAccessible::queryAccessibleInterface(const_cast<QWidget*>(&widget));
    return interface ? interface->text(QAccessible::Name) : QString();
}

QWidget* findNamed(const QWidget& root, const QString& name, const char* className) {
    QWidget* const found = visibleNamed(root, name, className);
    if (!found) ADD_FAILURE() << "no visible " << className << " named \"" << qPrintable(name) << '"';
    return found;
}

bool shows(const QWidget& root, const QString& text) {
    return visibleNamed(root, text, "QWidget") != nullptr;
}

ScreenFixture::ScreenFixture() {
    const QString home = m_folder.filePath(QStringLiteral("home"));
    QDir().mkpath(home + QStringLiteral("/.local/bin"));
    // The shells that sessions start look for programs below HOME too.
    qputenv("HOME", QFile::encodeName(home));
    applyTheme(m_theme);
}

ScreenFixture::~ScreenFixture() {
    if (m_workspace) stopSessionsAndWait(m_workspace->sessions());
}

void ScreenFixture::install(const QString& program, const QByteArray& script) {
    QFile file(m_folder.filePath(QStringLiteral("home/.local/bin/") + program));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\n" + script);
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void ScreenFixture::installPlanner(const QByteArray& plan, const QByteArray& before) {
    install(text("codex"),
            "[ \"$1\" = login ] && exit 0\n" + before +
                "\nwhile [ $# -gt 0 ]; do [ \"$1\" = --output-last-message ] && out=$2; shift; done\n"
                "cat > \"$out\" <<'END'\n" +
                plan + "\nEND\n");
    workspace().assistants().refreshProviders();
}

FilePath ScreenFixture::makeProject(const QString& name) {
    QDir(m_folder.path()).mkpath(name);
    return FilePath::fromString(m_folder.filePath(name));
}

WorkspaceServices ScreenFixture::services() {
    return {.preferences = &m_preferences,
            .clock = m_clock,
            .dialogs = m_dialogs,
            .launcher = m_launcher,
            .sleepInhibitor = m_sleepInhibitor,
            // The assistants of the machine that runs the test stay out of it.
            .tools = {.home = FilePath::fromString(m_folder.filePath(QStringLiteral("home"))),
                      .systemFolders = {}}};
}

Workspace& ScreenFixture::workspace() {
    if (!m_workspace) m_workspace = std::make_unique<Workspace>(services());
    return *m_workspace;
}

TeamRuns& ScreenFixture::teamRuns() {
    if (!m_teamRuns) {
        m_teamRuns = std::make_unique<WorkspaceTeamRuns>(
            workspace(), m_clock, FilePath::fromString(m_folder.filePath(QStringLiteral("Runs"))));
    }
    return m_teamRuns->engine();
}

WorkspaceMacActions& ScreenFixture::macActions() {
    if (!m_macActions) {
        m_macActions = std::make_unique<WorkspaceMacActions>(
            workspace(), m_desktop, m_clock,
            FilePath::fromString(m_folder.filePath(QStringLiteral("Plans"))));
    }
    return *m_macActions;
}

CompanionModel& ScreenFixture::companion() {
    if (!m_companion) {
        m_companion = std::make_unique<CompanionModel>(CompanionServices{.preferences = &m_preferences,
                                                                         .clock = m_clock,
                                                                         .dialogs = m_dialogs,
                                                                         .images = m_images,
                                                                         .microphone = m_microphone,
                                                                         .recognition = m_recognition,
                                                                         .synthesizer = m_synthesizer,
                                                                         .builtInPet = builtInPet,
                                                                         .locale = QStringLiteral("en_GB")});
    }
    return *m_companion;
}

OrvoRoot& ScreenFixture::screen(QSize size) {
    if (!m_screen) {
        const Engines engines{.teamRuns = m_teamRuns ? &m_teamRuns->engine() : nullptr,
                              .macActions = m_macActions.get(),
                              .companion = m_companion.get()};
        m_screen = std::make_unique<OrvoRoot>(workspace(), m_theme, m_launcher, engines);
        m_screen->resize(size);
        m_screen->show();
    }
    return *m_screen;
}

void ScreenFixture::startTerminal() {
    if (!workspace().folder()) workspace().openFolderForThisRun(makeProject(QStringLiteral("notes")));
    workspace().launch(workspace().assistants().provider(QStringLiteral("shell")), QString());
}

void ScreenFixture::press(const QString& name) {
    if (auto* const button = find<QAbstractButton>(screen(), name)) button->click();
}

}  // namespace orvo::test
