#include "orvoctl/OrvoctlTestCase.h"

#include "support/WaitFor.h"

#include <QDir>
#include <QElapsedTimer>

#include <unistd.h>

#include <csignal>

namespace orvo {
namespace {

class Run : public test::OrvoctlTestCase {
protected:
    static QStringList shared(const QStringList& rest) { return words("run --shared --json") + rest; }
    QJsonArray history() const { return orvoctl(words("history --json")).json().array(); }
    static bool alive(qint64 pid) { return kill(static_cast<pid_t>(pid), 0) == 0; }
};

TEST_F(Run, EveryReadySelectedAssistantRunsAloneAndIsRecorded) {
    install("claude");
    install("codex");
    const QString task = QStringLiteral("say \"it's\"\n$(touch hacked)");
    const Outcome outcome = orvoctl(shared({task}), "n\nn\n");
    EXPECT_EQ(outcome.status, 0) << outcome.error.constData();

    const QJsonObject result = outcome.json().object();
    EXPECT_EQ(result.keys().join(u' '), QStringLiteral("copies message project run"));
    EXPECT_EQ(result[u"run"], QJsonValue(QJsonValue::Null));
    EXPECT_EQ(result[u"project"], QDir(path("project")).canonicalPath());
    EXPECT_EQ(result[u"message"], QString());
    const QJsonArray copies = result[u"copies"].toArray();
    ASSERT_EQ(copies.size(), 2);
    for (int i = 0; i < 2; ++i) {
        const QJsonObject copy = copies[i].toObject();
        EXPECT_EQ(copy.keys().join(u' '),
                  QStringLiteral("changes directory exitCode provider session state"));
        EXPECT_EQ(copy[u"provider"], i == 0 ? QStringLiteral("claude") : QStringLiteral("codex"));
        EXPECT_EQ(copy[u"exitCode"], 0);
        EXPECT_EQ(copy[u"state"], QStringLiteral("Finished"));
        EXPECT_EQ(copy[u"directory"], result[u"project"]);
        EXPECT_FALSE(QUuid::fromString(copy[u"session"].toString()).isNull());
    }
    EXPECT_TRUE(QDir(path("project")).isEmpty());

    const QJsonArray entries = history();
    ASSERT_EQ(entries.size(), 2);
    for (const QJsonValue entry : entries) {
        EXPECT_TRUE(entry[u"output"].toString().contains(QStringLiteral("works alone on: ") + task));
        EXPECT_EQ(entry[u"title"], task);
    }
    EXPECT_TRUE(outcome.error.contains("Claude Code  Finished\n")) << outcome.error.constData();
}

TEST_F(Run, OneFailedAssistantFailsTheRun) {
    install("claude");
    install("codex");
    environment.insert(QStringLiteral("FAKE_CODEX_EXIT"), QStringLiteral("3"));
    const Outcome outcome = orvoctl(shared(words("task")));
    EXPECT_EQ(outcome.status, 1);
    const QJsonArray copies = outcome.json()[u"copies"].toArray();
    ASSERT_EQ(copies.size(), 2);
    EXPECT_EQ(copies[0][u"exitCode"], 0);
    EXPECT_EQ(copies[1][u"exitCode"], 3);
    EXPECT_EQ(copies[1][u"state"], QStringLiteral("Needs attention · exit 3"));
}

TEST_F(Run, ConnectorsOfTheRunAreUsedInsteadOfTheSelection) {
    install("claude");
    const Outcome outcome = orvoctl(shared(words(R"(--connector "one=/bin/echo first {prompt}" --connector
                                "two=/bin/echo second {prompt}" -- -task)")));
    EXPECT_EQ(outcome.status, 0) << outcome.error.constData();
    QStringList outputs;
    for (const QJsonValue entry : history())
        outputs.append(entry[u"output"].toString());
    outputs.sort();
    EXPECT_EQ(outputs, (QStringList{QStringLiteral("first -task"), QStringLiteral("second -task")}));
}

TEST_F(Run, TheTaskMayComeFromStandardInput) {
    install("claude");
    const Outcome outcome = orvoctl(shared(words("--assistant claude -")), "  from a pipe\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(history()[0][u"title"], QStringLiteral("from a pipe"));
}

TEST_F(Run, WhatCannotRunIsRefusedBeforeAnythingStarts) {
    install("claude");
    const struct {
        QStringList arguments;
        const char* message;
    } cases[] = {
        {words("--project missing t"), "is not available."},
        {words("--assistant codex t"), "Codex is not ready: Not installed."},
        {words("--connector x=/bin/echo t"), "Add {prompt} to x’s launch command to receive tasks."},
        {words(R"(--connector "x=/bin/echo '{prompt}'" t)"), "Place {prompt} outside quotes"},
        {words(R"(--connector "x=no-such-program {prompt}" t)"), "x is not ready: Not installed."},
        {words("-"), "too long"},
    };
    for (const auto& c : cases) {
        const Outcome outcome = orvoctl(shared(c.arguments), QByteArray(40'000, '\''));
        EXPECT_EQ(outcome.status, 1) << c.message;
        EXPECT_TRUE(outcome.json()[u"message"].toString().contains(QString::fromUtf8(c.message)))
            << outcome.output.constData();
    }
    EXPECT_TRUE(history().isEmpty());
    QFile::remove(path("home/.local/bin/claude"));
    EXPECT_EQ(orvoctl(shared(words("t"))).json()[u"message"],
              QStringLiteral("Select at least one installed assistant."));
}

TEST_F(Run, TheTimeLimitStopsWhatStillRuns) {
    install("claude");
    install("wait-forever");
    // Long enough for the one that ends by itself, also on a busy machine.
    QElapsedTimer timer;
    timer.start();
    const Outcome outcome =
        orvoctl(shared(words(R"(--timeout 6 --connector "slow=wait-forever {prompt}" --assistant claude
                                --assistant slow t)")));
    // Timers of this length may be a twentieth early.
    EXPECT_GE(timer.elapsed(), 5'700);
    EXPECT_LT(timer.elapsed(), 30'000);
    EXPECT_EQ(outcome.status, 1);
    const QJsonArray copies = outcome.json()[u"copies"].toArray();
    EXPECT_EQ(copies[0][u"exitCode"], 0);
    EXPECT_EQ(copies[1][u"exitCode"], 143);
    EXPECT_EQ(outcome.json()[u"message"], QStringLiteral("The time limit has passed."));
    EXPECT_EQ(history().size(), 2);
}

TEST_F(Run, AnInterruptStopsTheChildrenAndKeepsWhatWasRecorded) {
    const QString pidFile = path("project/pid");
    const QByteArray script =
        "#!/bin/sh\ntrap '' TERM HUP\necho $$ > pid.new; mv pid.new pid\nwhile :; do sleep 1; done\n";
    write("home/.local/bin/deaf", script);
    QFile::setPermissions(path("home/.local/bin/deaf"), QFile::ReadOwner | QFile::ExeOwner);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        QFile::remove(pidFile);
        const auto process = start(shared(words(R"(--connector "deaf=deaf {prompt}" t)")));
        ASSERT_TRUE(test::waitFor([&] { return QFile::exists(pidFile); }));
        const qint64 child = read("project/pid").trimmed().toLongLong();
        ASSERT_GT(child, 1);
        kill(static_cast<pid_t>(process->processId()), signal);
        const Outcome outcome = finish(*process);
        EXPECT_EQ(outcome.status, 130);
        EXPECT_EQ(outcome.json()[u"message"], QStringLiteral("Interrupted."));
        EXPECT_FALSE(alive(child));
    }
    EXPECT_EQ(history().size(), 3);
    EXPECT_EQ(history()[0][u"exitCode"], 137);
}

TEST_F(Run, AProjectPathThatIsNotUTF8IsKeptByteForByte) {
    const QByteArray folder = path("b").toUtf8() + "\xFF";
    ASSERT_EQ(QProcess::execute(QStringLiteral("/bin/sh"),
                                {QStringLiteral("-c"), QStringLiteral("mkdir \"$(printf '%s\\377' \"$1\")\""),
                                 QStringLiteral("sh"), path("b")}),
              0);
    QProcess shell;
    shell.setProcessEnvironment(environment);
    shell.start(
        QStringLiteral("/bin/sh"),
        {QStringLiteral("-c"),
         QStringLiteral("exec \"$1\" run --shared --json --connector 'w=/bin/sh -c \"touch here\" {prompt}' "
                        "--project \"$(printf '%s\\377' \"$2\")\" t"),
         QStringLiteral("sh"), QStringLiteral(ORVOCTL_PROGRAM), path("b")});
    const Outcome outcome = finish(shell);
    EXPECT_EQ(outcome.status, 0) << outcome.error.constData();
    EXPECT_EQ(QByteArray::fromBase64(outcome.json()[u"projectBytes"].toString().toLatin1()), folder);
    EXPECT_EQ(access((folder + "/here").constData(), F_OK), 0);
    // QTemporaryDir cannot remove such a name.
    EXPECT_EQ(unlink((folder + "/here").constData()), 0);
    EXPECT_EQ(rmdir(folder.constData()), 0);
}

TEST_F(Run, NothingOfThePersonsSettingsIsWritten) {
    install("claude");
    ASSERT_EQ(orvoctl(shared(words("t"))).status, 0);
    ASSERT_EQ(orvoctl(words("providers")).status, 0);
    const QStringList files = QDir(path("config/orvo-ai")).entryList(QDir::Files | QDir::Hidden);
    EXPECT_EQ(files, words("history.pending"));
}

}  // namespace
}  // namespace orvo
