#include "orvoctl/OrvoctlTestCase.h"
#include "support/WaitFor.h"

#include <QDir>
#include <QDirIterator>
#include <QMap>
#include <QRegularExpression>

#include <unistd.h>

#include <sys/stat.h>
#include <csignal>
#include <fstream>
#include <sstream>

namespace orvo {
namespace {

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

// Everything below a folder: names, kinds, permissions, times and contents.
QMap<QString, QByteArray> treeOf(const QString& folder) {
    QMap<QString, QByteArray> tree;
    QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = entries.next();
        struct stat status{};
        EXPECT_EQ(lstat(QFile::encodeName(path).constData(), &status), 0);
        QByteArray value = QByteArray::number(status.st_mode, 8) + ' ' +
                           QByteArray::number(static_cast<qint64>(status.st_mtim.tv_sec)) + '.' +
                           QByteArray::number(static_cast<qint64>(status.st_mtim.tv_nsec)) + ' ';
        if (S_ISDIR(status.st_mode)) value = QByteArray::number(status.st_mode, 8);
        if (S_ISREG(status.st_mode)) {
            QFile file(path);
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            value += file.readAll();
        }
        tree[path] = value;
    }
    return tree;
}

class TeamRunVerbs : public test::OrvoctlTestCase {
protected:
    TeamRunVerbs() {
        write("project/a.txt", "one\ntwo\n");
        write("project/sub/b.txt", "bee\n");
        write("project/gone.txt", "soon\n");
    }
    // Runs shell commands as assistants, each in its copy; the JSON answer of the run.
    QJsonObject run(const QStringList& scripts, int status = 0) {
        QStringList arguments = words("run --json");
        for (qsizetype i = 0; i < scripts.size(); ++i) {
            const QByteArray name = "script" + QByteArray::number(i);
            write(("home/" + name).constData(), scripts[i].toUtf8());
            arguments << text("--connector")
                      << QStringLiteral("c%1=/bin/sh %2 {prompt}")
                             .arg(i + 1)
                             .arg(path(("home/" + name).constData()));
        }
        const Outcome outcome = orvoctl(arguments << text("the task"));
        EXPECT_EQ(outcome.status, status) << outcome.error.constData();
        return outcome.json().object();
    }
    QJsonObject apply(const QStringList& rest) {
        return orvoctl(words("apply --json --yes") + rest).json().object();
    }
};

TEST_F(TeamRunVerbs, GiveEachAssistantItsOwnCopyAndLeaveTheProjectAsItWas) {
    const QString link = path("project/link");
    ASSERT_EQ(symlink("/etc/hostname", link.toUtf8().constData()), 0);
    ASSERT_EQ(mkfifo(path("project/pipe").toUtf8().constData(), 0600), 0);
    const auto before = treeOf(path("project"));
    const QJsonObject result =
        run({text("echo more >> a.txt; rm gone.txt; mkdir new; echo x > new/file; chmod 755 sub/b.txt"),
             text("rm -rf ./*; echo fresh > a.txt; exit 3")},
            1);
    EXPECT_EQ(treeOf(path("project")), before);
    EXPECT_EQ(result[u"message"], text("Not every assistant succeeded."));
    const QJsonArray copies = result[u"copies"].toArray();
    ASSERT_EQ(copies.size(), 2);
    EXPECT_EQ(copies[0][u"changes"],
              (QJsonObject{{text("added"), 1}, {text("changed"), 2}, {text("removed"), 1}}));
    EXPECT_EQ(copies[1][u"changes"],
              (QJsonObject{{text("added"), 0}, {text("changed"), 1}, {text("removed"), 2}}));
    EXPECT_EQ(copies[1][u"state"], text("Needs attention · exit 3"));

    const QJsonArray runs = orvoctl(words("runs --json")).json().array();
    ASSERT_EQ(runs.size(), 1);
    EXPECT_EQ(runs[0][u"id"], result[u"run"]);
    EXPECT_EQ(runs[0][u"prompt"], text("the task"));
    EXPECT_EQ(runs[0][u"copies"][1][u"state"], text("Needs attention · exit 3"));
    EXPECT_EQ(orvoctl(words("history --json")).json().array().size(), 2);
}

TEST_F(TeamRunVerbs, ReviewAndApplyOnlyWhatIsNamed) {
    run({text("echo more >> a.txt; rm gone.txt; printf 'x\\033[31my\\n' > new.txt")});
    const QJsonArray changes = orvoctl(words("review latest c1 --json --diff")).json().array();
    ASSERT_EQ(changes.size(), 3);
    EXPECT_EQ(changes[0][u"path"], text("a.txt"));
    EXPECT_EQ(changes[0][u"kind"], text("Changed"));
    EXPECT_TRUE(changes[0][u"diff"].toString().contains(text("\n+more\n")));
    EXPECT_EQ(changes[1][u"after"], QJsonValue(QJsonValue::Null));

    EXPECT_EQ(apply(words("latest 1 --only nothing.txt"))[u"ok"], false);
    const QJsonObject applied = apply(words("latest 1 --only a.txt --only gone.txt"));
    EXPECT_EQ(applied[u"ok"], true) << QJsonDocument(applied).toJson().constData();
    EXPECT_EQ(applied[u"applied"], (QJsonArray{text("a.txt"), text("gone.txt")}));
    EXPECT_EQ(read("project/a.txt"), "one\ntwo\nmore\n");
    EXPECT_FALSE(QFile::exists(path("project/gone.txt")));
    EXPECT_FALSE(QFile::exists(path("project/new.txt")));
    QFile original(applied[u"backup"].toString() + text("/a.txt"));
    ASSERT_TRUE(original.open(QIODevice::ReadOnly));
    EXPECT_EQ(original.readAll(), "one\ntwo\n");
    // What has been applied differs from the baseline now.
    const QJsonObject again = apply(words("latest 1 --only a.txt"));
    EXPECT_EQ(again[u"ok"], false);
    EXPECT_TRUE(again[u"message"].toString().contains(text("a.txt changed in your project")));
}

TEST_F(TeamRunVerbs, AskBeforeApplyingAndTakeOnlyAClearYes) {
    run({text("echo more >> a.txt")});
    for (const char* const answer : {"", "\n", "n\n", "yep\n"}) {
        const Outcome outcome = orvoctl(words("apply latest c1"), answer);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_TRUE(outcome.error.contains("Apply 1 reviewed files?")) << outcome.error.constData();
    }
    EXPECT_EQ(read("project/a.txt"), "one\ntwo\n");
    EXPECT_EQ(orvoctl(words("apply latest c1"), "Yes\n").status, 0);
    EXPECT_EQ(read("project/a.txt"), "one\ntwo\nmore\n");
}

TEST_F(TeamRunVerbs, WorkPieceByPieceOnFoldersThatAreGiven) {
    const QString base = path("base");
    EXPECT_EQ(orvoctl(words("snapshot --json") << path("project") << base).json()[u"files"], 3);
    const QJsonObject made =
        orvoctl(words("copies --json") << base << text("2") << path("copies")).json().object();
    const QString copy = made[u"copies"][1].toString();
    ASSERT_TRUE(QFile::exists(copy + text("/sub/b.txt")));
    QFile file(copy + text("/sub/b.txt"));
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("more\n");
    file.close();
    write("changes", orvoctl(words("changes --json") << base << copy).output);
    const QStringList applying = words("apply --json --project")
                                 << path("project") << text("--result") << copy << text("--changes")
                                 << path("changes") << text("--backup") << path("originals");
    EXPECT_EQ(orvoctl(applying).json()[u"ok"], true);
    EXPECT_EQ(read("project/sub/b.txt"), "bee\nmore\n");
    EXPECT_EQ(read("originals/sub/b.txt"), "bee\n");

    write("changes", "{}");
    EXPECT_EQ(orvoctl(applying).status, 1);
    EXPECT_EQ(orvoctl(applying.mid(0, 6)).status, 2);
    const Outcome missing = orvoctl(words("changes --json") << path("nowhere") << copy);
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.json()[u"ok"], false);
}

TEST_F(TeamRunVerbs, KeepNamesThatAreNotUtf8) {
    const QByteArray name = "caf\xe9 \n--x";
    const std::string whole = path("project/").toStdString() + name.toStdString();
    ASSERT_TRUE(std::ofstream(whole));
    run({text("for f in caf*; do echo changed > \"$f\"; done; echo u > 'caf\xef\xbf\xbd 2'")});
    const QJsonArray changes = orvoctl(words("review latest c1 --json")).json().array();
    ASSERT_EQ(changes.size(), 2);
    EXPECT_EQ(QByteArray::fromBase64(changes[0][u"pathBytes"].toString().toLatin1()), name);

    // As a shell passes it: bytes that Qt's own argument list would lose.
    write("apply.sh",
          "exec \"$ORVOCTL\" apply latest c1 --yes --json --only \"$(printf 'caf\\351 \\n--x')\"\n");
    environment.insert(text("ORVOCTL"), text(ORVOCTL_PROGRAM));
    QProcess shell;
    shell.setProcessEnvironment(environment);
    shell.start(text("/bin/sh"), {path("apply.sh")});
    const Outcome outcome = finish(shell);
    EXPECT_EQ(outcome.status, 0) << outcome.output.constData() << outcome.error.constData();
    std::stringstream content;
    content << std::ifstream(whole).rdbuf();
    EXPECT_EQ(content.str(), "changed\n");
}

TEST_F(TeamRunVerbs, StopTheirAssistantsWhenInterruptedAndKeepTheRecord) {
    write("home/deaf",
          "trap '' TERM HUP; echo $$ > '" + path("pid").toUtf8() + "'; while :; do sleep 1; done\n");
    const auto process = start(words("run --json --connector")
                               << text("deaf=/bin/sh ") + path("home/deaf") + text(" {prompt}") << text("x"));
    process->closeWriteChannel();
    ASSERT_TRUE(test::waitFor([&] { return read("pid").endsWith('\n'); }));
    kill(static_cast<pid_t>(process->processId()), SIGINT);
    const Outcome outcome = finish(*process);
    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.json()[u"copies"][0][u"exitCode"], 137);
    const QJsonArray runs = orvoctl(words("runs --json")).json().array();
    ASSERT_EQ(runs.size(), 1);
    EXPECT_EQ(runs[0][u"copies"][0][u"exitCode"], 137);
    EXPECT_NE(kill(read("pid").trimmed().toInt(), 0), 0);
}

TEST_F(TeamRunVerbs, SurviveAssistantsThatMisbehave) {
    install("leave-child");
    install("write-outside");
    const QString outside = path("outside.txt");
    const Outcome outcome =
        orvoctl(words("run --json --connector")
                << text("child=leave-child {prompt}") << text("--connector")
                << text("outside=write-outside ") + outside + text(" {prompt}") << text("x"));
    const QJsonObject result = outcome.json().object();
    EXPECT_EQ(result[u"copies"][0][u"exitCode"], 0);
    // The copy is gone: nothing can be said about its changes, and nothing of it can be applied.
    EXPECT_EQ(result[u"copies"][1][u"changes"], QJsonValue(QJsonValue::Null));
    EXPECT_EQ(apply(words("latest outside"))[u"ok"], false);
    EXPECT_EQ(read("project/a.txt"), "one\ntwo\n");
    const QString child = orvoctl(words("output latest child --json")).json()[u"output"].toString();
    EXPECT_TRUE(test::waitFor([&] { return kill(child.trimmed().toInt(), 0) != 0; }));
}

TEST_F(TeamRunVerbs, SayWhatIsWrongAndLeaveNoRun) {
    write("file", "");
    const struct {
        const char* project;
        const char* message;
    } cases[] = {{"missing", "is not available"}, {"file", "is not available"}};
    for (const auto& c : cases) {
        const QJsonObject answer =
            orvoctl(words("run --json --project")
                    << path(c.project) << text("--connector") << text("x=true {prompt}") << text("t"))
                .json()
                .object();
        EXPECT_TRUE(answer[u"message"].toString().contains(text(c.message)));
        EXPECT_EQ(answer[u"run"], QJsonValue(QJsonValue::Null));
    }
    for (int i = 0; i < 4'998; ++i)
        write(("project/many/" + QByteArray::number(i)).constData(), "x");
    const QJsonObject tooMany =
        orvoctl(words("run --json --connector") << text("x=true {prompt}") << text("t")).json().object();
    EXPECT_FALSE(tooMany[u"message"].toString().isEmpty());
    EXPECT_EQ(tooMany[u"copies"], QJsonArray());

    EXPECT_EQ(orvoctl(words("runs --json")).json().array(), QJsonArray());
    EXPECT_EQ(orvoctl(words("review latest")).status, 1);
    EXPECT_EQ(orvoctl(words("review")).status, 2);
    EXPECT_EQ(orvoctl(words("runs --root") << path("missing")).status, 1);
    EXPECT_EQ(orvoctl(words("copies a 9 b")).status, 2);
}

TEST_F(TeamRunVerbs, CompareThroughCodex) {
    run({text("echo first result"), text("echo second result")});
    const Outcome missing = orvoctl(words("compare latest"));
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(missing.error.contains("Connect Codex to compare the results with AI."));
    install("codex");
    const Outcome streamed = orvoctl(words("compare latest"));
    EXPECT_EQ(streamed.status, 0) << streamed.error.constData();
    EXPECT_TRUE(streamed.output.contains("first result")) << streamed.output.constData();
    const QJsonObject answer = orvoctl(words("compare latest --json")).json().object();
    EXPECT_EQ(answer[u"exitCode"], 0);
    EXPECT_TRUE(answer[u"output"].toString().contains(text("second result")));
}

TEST_F(TeamRunVerbs, CheckActionPlans) {
    write("good.json", R"({"explanation":"","steps":[]})");
    write("bad.json",
          R"({"explanation":"","steps":[{"id":1,"title":"T","action":"shell","app":"a.b","value":""}]})");
    EXPECT_EQ(orvoctl(words("plan check --json") << path("good.json")).json().object(),
              (QJsonObject{{text("ok"), true}, {text("message"), QString()}}));
    const Outcome bad = orvoctl(words("plan check --json") << path("bad.json"));
    EXPECT_EQ(bad.status, 1);
    EXPECT_EQ(bad.json()[u"message"], text("The plan requested an unsupported action."));
}

// The README's transcript is what a person sees who types its commands.
TEST_F(TeamRunVerbs, DoWhatTheReadmeShows) {
    QFile readme(text(ORVO_README));
    ASSERT_TRUE(readme.open(QIODevice::ReadOnly));
    const QString all = QString::fromUtf8(readme.readAll());
    static const QRegularExpression block(text("<!-- transcript -->\n```\n(.*?)```"),
                                          QRegularExpression::DotMatchesEverythingOption);
    const QString transcript = block.match(all).captured(1);
    ASSERT_FALSE(transcript.isEmpty());

    QString script = text(
                         "set -e; cp -R '%1' tides; git -C tides init -q; git -C tides add -A\n"
                         "git -C tides -c user.name=x -c user.email=x@y commit -qm start\n"
                         "echo '7:15 uncommitted' >> tides/notes.txt; set +e\n")
                         .arg(text(ORVO_EXAMPLE_PROJECT));
    for (const QString& line : transcript.split(u'\n')) {
        if (!line.startsWith(text("$ "))) continue;
        script += text("cat <<'LINE'\n%1\nLINE\n%2 2>/dev/null\n").arg(line, line.mid(2));
    }
    write("transcript.sh", script.toUtf8());
    environment.insert(text("PATH"), QFileInfo(text(ORVOCTL_PROGRAM)).path() + text(":/usr/bin:/bin"));
    QProcess shell;
    shell.setProcessEnvironment(environment);
    shell.setWorkingDirectory(root.path());
    shell.start(text("/bin/sh"), {path("transcript.sh")});
    const Outcome outcome = finish(shell);

    static const QRegularExpression id(text("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}"));
    QString shown = QString::fromUtf8(outcome.output);
    shown.replace(path("data"), text("~/.local/share")).replace(id, text("ID"));
    EXPECT_EQ(shown.toStdString(), QString(transcript).replace(id, text("ID")).toStdString())
        << outcome.error.constData();
}

}  // namespace
}  // namespace orvo
