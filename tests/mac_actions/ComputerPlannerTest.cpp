#include "mac_actions/PlannerFixture.h"

#include <sys/stat.h>

namespace orvo::test {
namespace {

class PlanningTest : public PlannerTest {
protected:
    // The planner's message after the assistant has ended.
    QString messageAfter(const QByteArray& script) {
        installCodex(script);
        planner.setTask(QStringLiteral("Open the calculator"));
        planner.prepare();
        EXPECT_TRUE(waitFor([&] { return !planner.planning(); }));
        return planner.message();
    }
    static mode_t modeOf(const FilePath& path) {
        struct stat status{};
        EXPECT_EQ(stat(path.bytes().constData(), &status), 0);
        return status.st_mode & 0777;
    }
};

TEST_F(PlanningTest, GivesTheAssistantTheSchemaTheAnswerFileAndTheRequestUnchanged) {
    installCodex("for argument in \"$@\"; do printf '%s\\n--\\n' \"$argument\"; done > \"$answer.args\"\n");
    const QString task = QStringLiteral("Type 'it''s \"$(date)\" \\ %1'\n");
    planner.setTask(task);
    planner.prepare();
    EXPECT_EQ(planner.message(),
              QStringLiteral("Codex is drafting steps. No computer actions run during planning."));
    EXPECT_EQ(host.shown, 1);
    ASSERT_TRUE(waitFor([&] { return !planner.planning(); }));

    const FilePath run = host.sessions.front()->directory();
    EXPECT_EQ(run.parent(), plans);
    EXPECT_EQ(modeOf(run), 0700);
    EXPECT_EQ(modeOf(run.child("schema.json")), 0600);
    QFile schema(run.child("schema.json").display());
    ASSERT_TRUE(schema.open(QIODevice::ReadOnly));
    EXPECT_EQ(schema.readAll(), ComputerPlan::schema());
    QFile arguments(run.child("plan.json.args").display());
    ASSERT_TRUE(arguments.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(arguments.readAll());
    EXPECT_TRUE(text.startsWith(
        QStringLiteral("exec\n--\n--ignore-user-config\n--\n--ephemeral\n--\n--skip-git-repo-check\n--\n"
                       "--sandbox\n--\nread-only\n--\n--output-schema\n--\n")))
        << text.toStdString();
    EXPECT_TRUE(text.endsWith(QStringLiteral("explain any manual positioning needed. Request: ") + task +
                              QStringLiteral("\n--\n")))
        << text.toStdString();
}

TEST_F(PlanningTest, DoesNothingForAnEmptyRequestOrWhileItIsBusy) {
    installCodex("sleep 60\n");
    planner.setTask(QStringLiteral(" \n\t"));
    planner.prepare();
    EXPECT_TRUE(host.sessions.empty());
    EXPECT_EQ(planner.message(), QString());

    planner.setTask(QStringLiteral("x"));
    planner.prepare();
    planner.prepare();
    EXPECT_EQ(host.sessions.size(), 1U);
    planner.showPlannerOutput();
    EXPECT_EQ(host.focused, host.sessions.front()->id());
    planner.stopPlanning();
    ASSERT_TRUE(waitFor([&] { return !planner.planning(); }));
    EXPECT_EQ(
        planner.message(),
        QStringLiteral("Planning stopped or failed. Open the planner output to see the provider’s message."));
}

TEST_F(PlanningTest, SaysWhenItCannotBegin) {
    planner.setTask(QStringLiteral("x"));
    planner.prepare();
    EXPECT_EQ(planner.message(),
              QStringLiteral("Install and sign in to Codex in Assistants to create a plan."));

    installCodex("exit 0\n");
    QFile obstacle(folder.filePath(QStringLiteral("Orvo AI")));
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
    planner.prepare();
    EXPECT_FALSE(planner.planning());
    EXPECT_TRUE(host.sessions.empty());
    EXPECT_TRUE(planner.message().contains(QStringLiteral("Orvo AI"))) << planner.message().toStdString();
}

TEST_F(PlanningTest, PublishesOnlyAnAnswerThatIsAValidPlan) {
    const QString failed =
        QStringLiteral("Planning stopped or failed. Open the planner output to see the provider’s message.");
    const QString unusable = QStringLiteral("Could not use this plan: ");
    EXPECT_EQ(messageAfter("exit 3\n"), failed);
    EXPECT_TRUE(messageAfter("exit 0\n").startsWith(unusable));
    EXPECT_TRUE(messageAfter("ln -s /etc/hostname \"$answer\"\n").startsWith(unusable));
    EXPECT_TRUE(messageAfter("echo nonsense > \"$answer\"\n").startsWith(unusable));
    EXPECT_EQ(messageAfter("head -c 60001 /dev/zero > \"$answer\"\n"),
              unusable + QStringLiteral("The plan response was too large."));
    EXPECT_EQ(messageAfter("echo '{\"explanation\":\"\",\"steps\":[{\"id\":1,\"title\":\"T\",\"action\":"
                           "\"shell\",\"app\":\"a.b\",\"value\":\"\"}]}' > \"$answer\"\n"),
              unusable + QStringLiteral("The plan requested an unsupported action."));
    EXPECT_FALSE(planner.plan());

    EXPECT_EQ(messageAfter("echo '{\"explanation\":\"Which file?\",\"steps\":[]}' > \"$answer\"\n"),
              QStringLiteral("This request needs more information or manual steps."));
    ASSERT_TRUE(planner.plan());
    EXPECT_EQ(planner.plan()->explanation, QStringLiteral("Which file?"));
    // A later failure leaves no old plan to be run by mistake.
    EXPECT_EQ(messageAfter("exit 1\n"), failed);
    EXPECT_FALSE(planner.plan());
}

}  // namespace
}  // namespace orvo::test
