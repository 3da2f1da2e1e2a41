#include "assistants/Assistants.h"

#include "assistants/ToolFolder.h"
#include "support/WaitFor.h"

#include <QThreadPool>

#include <gtest/gtest.h>

namespace orvo {
namespace {

using test::ToolFolder;
using test::waitFor;

Provider custom(const QString& id, const QString& executable) {
    Provider provider;
    provider.id = id;
    provider.name = id;
    provider.executable = executable;
    provider.template_ = executable + QStringLiteral(" {prompt}");
    return provider;
}

TEST(Assistants, FindsProgramsInHomeFoldersBeforeTheInheritedPath) {
    const ToolFolder tools;
    const Assistants assistants(nullptr, tools.environment());
    const auto find = [&](const char* name) {
        return assistants.executablePath(QString::fromUtf8(name));
    };

    EXPECT_FALSE(find("orvo-tool"));
    const FilePath inherited = tools.script(tools.inheritedPath() + QStringLiteral("/orvo-tool"));
    EXPECT_EQ(find("orvo-tool"), inherited);
    const FilePath cargo = tools.script(tools.home() + QStringLiteral("/.cargo/bin/orvo-tool"));
    EXPECT_EQ(find("orvo-tool"), cargo);
    const FilePath kimi = tools.script(tools.home() + QStringLiteral("/.kimi-code/bin/orvo-tool"));
    EXPECT_EQ(find("orvo-tool"), kimi);
    const FilePath local = tools.script(tools.home() + QStringLiteral("/.local/bin/orvo-tool"));
    EXPECT_EQ(find("orvo-tool"), local);
    EXPECT_FALSE(find("sh"));
    EXPECT_EQ(Assistants(nullptr, {.home = tools.environment().home}).executablePath(QStringLiteral("sh")),
              FilePath("/usr/bin/sh"));
}

TEST(Assistants, OnlyExecutableFilesCount) {
    const ToolFolder tools;
    const Assistants assistants(nullptr, tools.environment());
    const auto find = [&](const QString& name) {
        return assistants.executablePath(name);
    };

    tools.script(tools.home() + QStringLiteral("/.local/bin/plain"), {}, QFile::ReadOwner);
    QDir().mkpath(tools.home() + QStringLiteral("/.local/bin/folder"));
    const FilePath tool = tools.script(tools.home() + QStringLiteral("/own tools/tool"));

    EXPECT_FALSE(find(QStringLiteral("plain")));
    EXPECT_FALSE(find(QStringLiteral("folder")));
    EXPECT_FALSE(find(QStringLiteral("~/.local/bin/plain")));
    EXPECT_FALSE(find(tools.home()));
    EXPECT_FALSE(find(QString()));
    EXPECT_FALSE(find(QStringLiteral("~")));
    EXPECT_FALSE(find(QStringLiteral("~root/tool")));
    EXPECT_EQ(find(QStringLiteral("~/own tools/tool")), tool);
    EXPECT_EQ(find(tool.display()), tool);
    EXPECT_FALSE(find(tool.display() + QStringLiteral("x")));
}

TEST(Assistants, RefreshFollowsWhatIsInstalledAndToldOnlyOnChange) {
    const ToolFolder tools;
    Assistants assistants(nullptr, tools.environment());
    int changes = 0;
    QObject::connect(&assistants, &Assistants::availableChanged, &assistants, [&changes] { ++changes; });

    tools.script(tools.home() + QStringLiteral("/.local/bin/claude"));
    assistants.refreshProviders();
    assistants.refreshProviders();
    EXPECT_EQ(assistants.available().keys().join(u' '), QStringLiteral("claude shell zai"));
    EXPECT_EQ(changes, 1);

    tools.script(tools.home() + QStringLiteral("/.kimi-code/bin/kimi"));
    QFile::remove(tools.home() + QStringLiteral("/.local/bin/claude"));
    assistants.refreshProviders();
    EXPECT_EQ(assistants.available().keys().join(u' '), QStringLiteral("kimi shell"));
    EXPECT_EQ(changes, 2);
}

TEST(Assistants, ReadyMeansInstalledWithALaunchCommand) {
    const ToolFolder tools;
    tools.script(tools.home() + QStringLiteral("/.local/bin/claude"));
    Assistants assistants(nullptr, tools.environment());
    assistants.refreshProviders();
    const auto label = [&](const char* id) {
        return assistants.connectionLabel(assistants.provider(QString::fromUtf8(id)));
    };

    EXPECT_EQ(assistants.readyCount(), 1);
    EXPECT_EQ(label("claude"), QStringLiteral("Installed · login unchecked"));
    EXPECT_EQ(label("codex"), QStringLiteral("Not installed"));
    EXPECT_EQ(label("zai"), QStringLiteral("Profile needed"));
    EXPECT_EQ(label("shell"), QStringLiteral("Ready"));

    Provider zai = assistants.provider(QStringLiteral("zai"));
    zai.template_ = QStringLiteral(" \t\n");
    assistants.saveProvider(zai);
    EXPECT_EQ(label("zai"), QStringLiteral("Profile needed"));
    zai.template_ = QStringLiteral("claude --settings z.json {prompt}");
    assistants.saveProvider(zai);
    EXPECT_EQ(label("zai"), QStringLiteral("Installed · login unchecked"));
    EXPECT_EQ(assistants.readyCount(), 2);
}

TEST(Assistants, AMissingIdIsTheTerminal) {
    const ToolFolder tools;
    const Assistants assistants(nullptr, tools.environment());
    EXPECT_EQ(assistants.provider(QStringLiteral("missing")), Provider::defaults().last());
}

TEST(Assistants, ANewConnectorGoesBeforeTheTerminalAndKeepsItsPlaceWhenSavedAgain) {
    const ToolFolder tools;
    Assistants assistants(nullptr, tools.environment());
    const FilePath tool = tools.script(tools.home() + QStringLiteral("/tool"));

    assistants.saveProvider(custom(QStringLiteral("mine"), QStringLiteral("tool-that-is-missing")));
    ASSERT_EQ(assistants.providers().size(), 7);
    EXPECT_EQ(assistants.providers().at(5).id, QStringLiteral("mine"));
    EXPECT_EQ(assistants.providers().at(6).id, QStringLiteral("shell"));
    EXPECT_FALSE(assistants.available().contains(QStringLiteral("mine")));

    assistants.saveProvider(custom(QStringLiteral("mine"), QStringLiteral("~/tool")));
    ASSERT_EQ(assistants.providers().size(), 7);
    EXPECT_EQ(assistants.providers().at(5).executable, QStringLiteral("~/tool"));
    EXPECT_EQ(assistants.available().value(QStringLiteral("mine")), tool);
}

TEST(Assistants, ChecksOnlyWhatIsInstalledAndForgetsOlderLabels) {
    const ToolFolder tools;
    const QString bin = tools.home() + QStringLiteral("/.local/bin/");
    const FilePath log = FilePath::fromString(tools.home() + QStringLiteral("/calls"));
    const QByteArray record = "echo \"$0 $*\" >> '" + log.bytes() + "'\n";
    tools.script(bin + QStringLiteral("codex"), record + "echo 'Logged in using ChatGPT'\n");
    tools.script(bin + QStringLiteral("claude"), record + "echo '{\"loggedIn\": false}'; exit 1\n");
    tools.script(bin + QStringLiteral("kimi"), record);
    Assistants assistants(nullptr, tools.environment());
    assistants.refreshProviders();

    assistants.checkConnections();
    EXPECT_TRUE(assistants.checkingConnections());
    assistants.checkConnections();
    ASSERT_TRUE(waitFor([&] { return !assistants.checkingConnections(); }));

    QFile calls(log.display());
    ASSERT_TRUE(calls.open(QIODevice::ReadOnly));
    EXPECT_EQ(calls.readAll(), bin.toUtf8() + "codex login status\n" + bin.toUtf8() + "claude auth status\n");
    const QMap<QString, QString> expected = {{QStringLiteral("codex"), QStringLiteral("Signed in")},
                                             {QStringLiteral("claude"), QStringLiteral("Sign in needed")}};
    EXPECT_EQ(assistants.connectionStatus(), expected);
    EXPECT_EQ(assistants.connectionLabel(assistants.provider(QStringLiteral("codex"))),
              QStringLiteral("Signed in"));

    QFile::remove(bin + QStringLiteral("codex"));
    assistants.refreshProviders();
    assistants.checkConnections();
    ASSERT_TRUE(waitFor([&] { return !assistants.checkingConnections(); }));
    EXPECT_EQ(assistants.connectionStatus().keys(), QStringList(QStringLiteral("claude")));
}

TEST(Assistants, AnExecutableThatVanishedSinceDiscoveryIsNotSignedIn) {
    const ToolFolder tools;
    const QString codex = tools.home() + QStringLiteral("/.local/bin/codex");
    tools.script(codex, "echo Logged in\n");
    Assistants assistants(nullptr, tools.environment());
    assistants.refreshProviders();
    QFile::remove(codex);
    assistants.checkConnections();
    ASSERT_TRUE(waitFor([&] { return !assistants.checkingConnections(); }));
    EXPECT_EQ(assistants.connectionStatus().value(QStringLiteral("codex")), QStringLiteral("Sign in needed"));
}

TEST(Assistants, ARunningCheckEndsWithItsModel) {
    const ToolFolder tools;
    const QString pidFile = tools.home() + QStringLiteral("/pid");
    tools.script(tools.home() + QStringLiteral("/.local/bin/codex"),
                 "echo $$ > '" + pidFile.toUtf8() + ".new'; mv '" + pidFile.toUtf8() + ".new' '" +
                     pidFile.toUtf8() + "'; exec sleep 1000\n");
    auto assistants = std::make_unique<Assistants>(nullptr, tools.environment());
    assistants->refreshProviders();
    assistants->checkConnections();
    ASSERT_TRUE(waitFor([&] { return QFile::exists(pidFile); }));
    assistants.reset();

    QFile file(pidFile);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString process = QStringLiteral("/proc/") + QString::fromLatin1(file.readAll().trimmed());
    EXPECT_TRUE(waitFor([&] { return !QFile::exists(process); }));
    QThreadPool::globalInstance()->waitForDone();
}

}  // namespace
}  // namespace orvo
