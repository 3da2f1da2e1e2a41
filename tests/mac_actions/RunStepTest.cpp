#include "mac_actions/PlannerFixture.h"

#include <QRegularExpression>

#include <random>

namespace orvo::test {
namespace {

const QString runIt = QStringLiteral("Run this step");
const QString cancel = QStringLiteral("Cancel");
const QString sent = QStringLiteral("Step sent. Check the target app before continuing.");

ComputerStep makeStep(qint64 id, const char* action, const char* value) {
    return {id, QStringLiteral("Step %1").arg(id), QLatin1String(action),
            QStringLiteral("com.example.Editor"), QString::fromUtf8(value)};
}

class RunStepTest : public PlannerTest {
protected:
    RunStepTest() {
        desktop.installed[QStringLiteral("com.example.Editor")] = {QStringLiteral("editor.desktop"),
                                                                   QStringLiteral("Editor")};
    }
    // The application has come up, and the time it gets for its window has passed.
    void appOpens() {
        desktop.opened(RunningApplication{42, {QStringLiteral("editor.desktop"), QStringLiteral("Editor")}});
        clock.advance(std::chrono::milliseconds(600));
    }
    static tl::unexpected<Error> planFailure() {
        return failure(QStringLiteral("Test"), QStringLiteral("No such thing"));
    }
    bool inputWasSent() const {
        return desktop.log.indexOf(QRegularExpression(QStringLiteral("^(type|press) "))) >= 0;
    }
};

TEST_F(RunStepTest, AsksOpensWaitsChecksAndThenSendsInThatOrder) {
    plan({makeStep(1, "type_text", "Hello"), makeStep(2, "key", "command+s")});
    dialogs.answer(runIt);
    planner.runNext();
    EXPECT_TRUE(planner.executing());
    planner.runNext();  // A second press asks nothing.
    desktop.opened(RunningApplication{42, {QStringLiteral("editor.desktop"), {}}});
    clock.advance(std::chrono::milliseconds(599));
    EXPECT_FALSE(inputWasSent());
    clock.advance(std::chrono::milliseconds(1));
    EXPECT_EQ(
        desktop.log.join(u'|'),
        QStringLiteral("application com.example.Editor|typeable?|trusted?|open editor.desktop|"
                       "terminated?|frontmost? editor.desktop|trusted?|type Hello into editor.desktop"));
    desktop.progress(3);
    EXPECT_EQ(planner.typed(), 3);
    EXPECT_EQ(planner.completed(), 0);
    desktop.inputDone({});
    EXPECT_EQ(planner.completed(), 1);
    EXPECT_EQ(planner.typed(), 0);
    EXPECT_EQ(planner.message(), sent);

    dialogs.answer(runIt);
    planner.runNext();
    appOpens();
    EXPECT_EQ(desktop.log.last(), QStringLiteral("press 100000+1 in editor.desktop"));
    desktop.inputDone({});
    EXPECT_EQ(planner.completed(), 2);
    planner.runNext();  // Nothing is left, so nothing is asked.
    EXPECT_EQ(dialogs.alerts().size(), 2);
}

TEST_F(RunStepTest, ShowsExactlyWhatWillBeSent) {
    plan({makeStep(1, "type_text", "pay\u202Etxt.exe"), makeStep(2, "open_app", "")});
    dialogs.answer(cancel);
    planner.runNext();
    const Alert& typing = dialogs.alerts().front();
    EXPECT_EQ(typing.message, QStringLiteral("Step 1?"));
    EXPECT_EQ(typing.buttons, QStringList({runIt, cancel}));
    EXPECT_EQ(typing.defaultButton, Alert::Default::FirstButton);
    EXPECT_EQ(typing.informativeText,
              QStringLiteral("App: com.example.Editor\nAction: type_text\n\npay⟨U+202E⟩txt.exe\n\nTyping and "
                             "keys go to this app’s focused control. Confirm the intended document or field "
                             "before proceeding."));
    EXPECT_FALSE(planner.executing());
    EXPECT_EQ(planner.completed(), 0);
    EXPECT_FALSE(desktop.log.contains(QStringLiteral("open editor.desktop")));
}

TEST_F(RunStepTest, OpensAddressesAndAppsWithoutPermissionForTyping) {
    desktop.trusted = false;
    plan({makeStep(1, "open_url", "https://example.com/?a=%20"), makeStep(2, "open_app", "")});
    dialogs.answer(runIt);
    planner.runNext();
    EXPECT_EQ(desktop.log.last(), QStringLiteral("open https://example.com/?a=%20 in editor.desktop"));
    desktop.addressOpened(planFailure());
    EXPECT_EQ(planner.message(), QStringLiteral("No such thing"));
    EXPECT_EQ(planner.completed(), 0);
    dialogs.answer(runIt);
    planner.runNext();
    desktop.addressOpened({});
    EXPECT_EQ(planner.completed(), 1);
    dialogs.answer(runIt);
    planner.runNext();
    appOpens();
    EXPECT_EQ(planner.completed(), 2);
    EXPECT_FALSE(inputWasSent());
}

TEST_F(RunStepTest, RefusesBeforeAskingWhatCannotWork) {
    plan({makeStep(1, "type_text", "Hello")});
    desktop.typeable = planFailure();
    planner.runNext();
    EXPECT_EQ(planner.message(), QStringLiteral("No such thing"));
    desktop.typeable = {};
    desktop.installed.clear();
    planner.runNext();
    EXPECT_EQ(planner.message(), QStringLiteral("The app com.example.Editor is not installed. Adjust your "
                                                "request and make a new plan."));
    EXPECT_TRUE(dialogs.alerts().isEmpty());
}

TEST_F(RunStepTest, LeavesTheStepWhenTheTargetIsNotReady) {
    plan({makeStep(1, "key", "return")});
    const auto attempt = [&](auto opened) {
        dialogs.answer(runIt);
        planner.runNext();
        if (desktop.opened) desktop.opened(std::move(opened));
        desktop.opened = {};
        clock.advance(std::chrono::milliseconds(600));
        EXPECT_FALSE(planner.executing());
        EXPECT_EQ(planner.completed(), 0);
        EXPECT_FALSE(inputWasSent());
        return planner.message().toStdString();
    };
    using Opened = Result<std::optional<RunningApplication>>;
    const Opened running = RunningApplication{42, {}};
    EXPECT_EQ(attempt(Opened(planFailure())), "No such thing");
    EXPECT_EQ(attempt(Opened(std::nullopt)), "The app could not be opened.");
    desktop.terminated = true;
    EXPECT_EQ(attempt(running), "The app could not be opened.");
    desktop.terminated = false;
    desktop.frontmost = false;
    EXPECT_EQ(attempt(running),
              "The target app is no longer active. Nothing was typed. Try this step again.");
    desktop.frontmost = true;
    desktop.trusted = false;
    EXPECT_EQ(attempt(running), "Allow Orvo AI in macOS Accessibility settings, then try this step again.");
}

TEST_F(RunStepTest, SendsNothingWhenPermissionIsLostMeanwhile) {
    plan({makeStep(1, "key", "return")});
    dialogs.answer(runIt);
    planner.runNext();
    desktop.trusted = false;
    appOpens();
    EXPECT_EQ(planner.message(), QStringLiteral("Accessibility permission is needed."));
    EXPECT_FALSE(inputWasSent());
    EXPECT_FALSE(planner.executing());
}

// Whatever happens in whatever order, input is preceded by the checks for that very step.
TEST_F(RunStepTest, SendsInputOnlyAfterConfirmationPermissionAndFrontCheckWhateverHappens) {
    std::mt19937 random(20261123);
    const auto chance = [&](int percent) {
        return static_cast<int>(random() % 100) < percent;
    };
    for (int round = 0; round < 30; ++round) {
        plan({makeStep(1, "type_text", "one"), makeStep(2, "key", "tab"), makeStep(3, "open_app", ""),
              makeStep(4, "type_text", "two")});
        int confirmed = 0;
        int inputs = 0;
        for (int event = 0; event < 40; ++event) {
            desktop.trusted = chance(80);
            desktop.frontmost = chance(70);
            desktop.terminated = chance(10);
            if (!planner.executing() && planner.completed() < 4) {
                const bool needsInput = planner.completed() != 2;
                const bool agrees = chance(70);
                dialogs.answer(agrees ? runIt : cancel);
                desktop.log.clear();
                planner.runNext();
                confirmed += agrees && needsInput ? 1 : 0;
            }
            if (desktop.opened && chance(80)) std::exchange(desktop.opened, {})(RunningApplication{7, {}});
            if (chance(70)) clock.advance(std::chrono::milliseconds(600));
            if (desktop.inputDone) {
                ++inputs;
                const QString order = desktop.log.join(u'|');
                EXPECT_TRUE(order.contains(QRegularExpression(
                    QStringLiteral("trusted\\?\\|open editor.desktop\\|terminated\\?\\|frontmost\\? "
                                   "\\|trusted\\?\\|(type|press) "))))
                    << order.toStdString();
                EXPECT_TRUE(desktop.frontmost && desktop.trusted && !desktop.terminated);
                std::exchange(desktop.inputDone, {})({});
            }
        }
        EXPECT_LE(inputs, confirmed);
        if (desktop.opened) std::exchange(desktop.opened, {})(std::nullopt);
        clock.advance(std::chrono::milliseconds(600));
        ASSERT_FALSE(planner.executing());
    }
}

TEST_F(RunStepTest, PassesSettingsOnAndSaysWhenTheyCannotBeOpened) {
    desktop.settings = planFailure();
    planner.openAccessibility();
    planner.openScreenPermission();
    EXPECT_EQ(host.notices, QStringList({QStringLiteral("No such thing"), QStringLiteral("No such thing")}));
    desktop.trusted = false;
    planner.refreshPermissions();
    EXPECT_FALSE(planner.accessibility());
}

}  // namespace
}  // namespace orvo::test
