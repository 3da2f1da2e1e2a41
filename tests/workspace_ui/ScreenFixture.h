#pragma once

#include "appearance/Theme.h"
#include "companion/CompanionModel.h"
#include "platform/fake/FakeClock.h"
#include "platform/fake/FakeDesktopControl.h"
#include "platform/fake/FakeDialogs.h"
#include "platform/fake/FakeLauncher.h"
#include "platform/fake/FakePreferences.h"
#include "platform/fake/FakeSleepInhibitor.h"
#include "platform/fake/FakeSpeech.h"
#include "platform/images/QtImageDecoder.h"
#include "workspace/Workspace.h"
#include "workspace/WorkspaceMacActions.h"
#include "workspace/WorkspaceTeamRuns.h"
#include "workspace/ui/OrvoRoot.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QTemporaryDir>

#include <memory>

namespace orvo::test {

inline QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

/// The name by which assistive technology finds a control.
QString nameOf(const QWidget& widget);
/// The visible control of this type and name below `root`; fails the test and gives null when there is none.
QWidget* findNamed(const QWidget& root, const QString& name, const char* className = "QWidget");

template <class T>
T* find(const QWidget& root, const QString& name) {
    return qobject_cast<T*>(findNamed(root, name, T::staticMetaObject.className()));
}

/// True when some visible control below `root` shows or is named exactly `text`.
bool shows(const QWidget& root, const QString& text);

/// A home folder with installed programs, a project, and the services that a workspace needs.
class ScreenFixture : public testing::Test {
protected:
    ScreenFixture();
    ~ScreenFixture() override;

    /// Installs a program of this name: a shell script, which otherwise prints its arguments and waits for a
    /// line.
    void install(const QString& program,
                 const QByteArray& script = "printf 'asked: %s\\n' \"$*\"\nread -r line\n");
    /// Installs a codex that is signed in and answers every request with this plan, once `before` has run.
    void installPlanner(const QByteArray& plan, const QByteArray& before = {});
    FilePath makeProject(const QString& name);
    /// Made at the first call, so that a test can install programs and preset preferences before.
    Workspace& workspace();
    WorkspaceServices services();
    /// The team-run engine, joined to the workspace at the first call; the screen has its page when that came
    /// before the screen.
    TeamRuns& teamRuns();
    /// Mac actions on a recording desktop, joined to the workspace at the first call; the screen has their
    /// page when that came before the screen.
    WorkspaceMacActions& macActions();
    /// The companion with the pet that comes with the application; the screen has its page when that came
    /// before the screen.
    CompanionModel& companion();
    /// The root screen over the workspace, shown; made at the first call.
    OrvoRoot& screen(QSize size = QSize(1440, 872));
    /// A shell session in the project, which is opened first if there is none.
    void startTerminal();
    /// Presses the button of this name on the screen.
    void press(const QString& name);

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
    Theme m_theme{nullptr};

private:
    std::unique_ptr<Workspace> m_workspace;
    std::unique_ptr<WorkspaceTeamRuns> m_teamRuns;
    std::unique_ptr<WorkspaceMacActions> m_macActions;
    std::unique_ptr<CompanionModel> m_companion;
    std::unique_ptr<OrvoRoot> m_screen;
};

}  // namespace orvo::test
