#include "assistants/Provider.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace orvo {
namespace {

constexpr auto placeMessage =
    "Place {prompt} outside quotes and without a backslash. Orvo supplies the quotes.";
constexpr auto closeMessage = "Close the quotation mark in this command.";

Provider withTemplate(const QString& launchCommand, const QString& id = QStringLiteral("custom")) {
    Provider provider;
    provider.id = id;
    provider.template_ = launchCommand;
    return provider;
}

Provider builtIn(const char* id) {
    for (const Provider& provider : Provider::defaults()) {
        if (provider.id == QLatin1String(id)) return provider;
    }
    ADD_FAILURE() << "no built-in " << id;
    return {};
}

TEST(LaunchCommand, TemplateErrorNamesTheFirstProblem) {
    const struct {
        const char* launchCommand;
        const char* error;
        bool receivesTasks;
    } cases[] = {
        {"", nullptr, false},
        {"claude", nullptr, false},
        {"claude {prompt}", nullptr, true},
        {"claude {prompt}{prompt}", nullptr, true},
        {"{prompt}", nullptr, true},
        {"claude {Prompt}", nullptr, false},
        {"claude --settings /path/to/zai-settings.json {prompt}", nullptr, true},
        {"claude --say 'it' \"is\" {prompt} 'so'", nullptr, true},
        {"claude \"{prompt}\"", placeMessage, false},
        {"claude '{prompt}'", placeMessage, false},
        {"claude \\{prompt}", placeMessage, false},
        {"claude \"a {prompt}", placeMessage, false},
        {"claude {prompt}'{prompt}'", placeMessage, false},
        {"claude '\"{prompt}", placeMessage, false},
        {"claude \\\\{prompt}", nullptr, true},
        {"claude \\'{prompt}", nullptr, true},
        {"claude '\\' {prompt}", nullptr, true},
        {"claude \"\\\"\" {prompt}", nullptr, true},
        {"claude \"\\\" {prompt}", placeMessage, false},
        {"claude 'open", closeMessage, false},
        {"claude {prompt} \"open", closeMessage, false},
        {"claude \"a\\\"", closeMessage, false},
        {"claude \"'\" '\"'", nullptr, false},
        {"claude \\", nullptr, false},
        {"claude {prompt}\\", nullptr, true},
    };
    for (const auto& c : cases) {
        const Provider provider = withTemplate(QString::fromUtf8(c.launchCommand));
        EXPECT_EQ(provider.templateError().value_or(QString()), QString::fromUtf8(c.error))
            << c.launchCommand;
        EXPECT_EQ(provider.receivesTasks(), c.receivesTasks) << c.launchCommand;
    }
}

TEST(LaunchCommand, CommandsOfTheCatalog) {
    const struct {
        const char* id;
        const char* prompt;
        const char* interactive;
        const char* batch;
    } cases[] = {
        {"claude", "a'b; $(touch hacked)", R"(claude 'a'\''b; $(touch hacked)')",
         R"(claude --print 'a'\''b; $(touch hacked)')"},
        {"claude", "", "claude", "claude --print ''"},
        {"codex", "hello", "codex --sandbox workspace-write 'hello'",
         "codex exec --skip-git-repo-check --sandbox workspace-write 'hello'"},
        {"kimi", "hello", "kimi --prompt 'hello'", "kimi --prompt 'hello'"},
        {"kimi", "", "kimi", "kimi --prompt ''"},
        {"antigravity", "hello", "agy --prompt-interactive 'hello'", "agy --print 'hello'"},
        {"antigravity", "", "agy", "agy --print ''"},
        {"zai", "hello", "", ""},
        {"shell", "hello", "/bin/zsh -l", "/bin/zsh -l"},
    };
    for (const auto& c : cases) {
        const Provider provider = builtIn(c.id);
        const QString prompt = QString::fromUtf8(c.prompt);
        EXPECT_EQ(provider.command(prompt), QString::fromUtf8(c.interactive)) << c.id;
        EXPECT_EQ(provider.batchCommand(prompt), QString::fromUtf8(c.batch)) << c.id;
    }
}

TEST(LaunchCommand, AnEditedTemplateRunsAlikeAloneAndInteractively) {
    for (Provider provider : Provider::defaults()) {
        provider.template_ += QStringLiteral(" --model x {prompt}");
        EXPECT_EQ(provider.batchCommand(QStringLiteral("t")), provider.command(QStringLiteral("t")));
        EXPECT_TRUE(provider.command(QStringLiteral("t")).endsWith(QStringLiteral("--model x 't'")));
    }
    // The special case belongs to the id and the template together.
    EXPECT_FALSE(withTemplate(QStringLiteral("kimi")).receivesTasks());
    EXPECT_TRUE(withTemplate(QStringLiteral("kimi"), QStringLiteral("kimi")).receivesTasks());
    EXPECT_FALSE(withTemplate(QStringLiteral("kimi "), QStringLiteral("kimi")).receivesTasks());
}

TEST(LaunchCommand, OnlySpacesAndTabsAreCutFromTheEnds) {
    EXPECT_EQ(withTemplate(QStringLiteral(" \t run {prompt}\t ")).command(QString()), QStringLiteral("run"));
    EXPECT_EQ(withTemplate(QStringLiteral("run {prompt}\n")).command(QStringLiteral("a ")),
              QStringLiteral("run 'a '\n"));
}

TEST(LaunchCommand, APromptThatHoldsThePlaceholderIsNotExpandedAgain) {
    EXPECT_EQ(withTemplate(QStringLiteral("run {prompt}{prompt}")).command(QStringLiteral("{prompt}")),
              QStringLiteral("run '{prompt}''{prompt}'"));
}

TEST(LaunchCommand, TheShellReadsAHostilePromptAsOneWordOfData) {
    const char* const prompts[] = {
        "text ' ; $(touch SHOULD_NOT_EXIST)",
        "`touch SHOULD_NOT_EXIST`",
        "';touch SHOULD_NOT_EXIST;'",
        "'\\'';touch SHOULD_NOT_EXIST;'\\''",
        "\\'; touch SHOULD_NOT_EXIST #",
        "line one\nline two\n; touch SHOULD_NOT_EXIST\n",
        "$HOME ${PATH} ~ * ? [a-z] !! !x =ls <(touch SHOULD_NOT_EXIST)",
        "-n --help \"double\" \\ \t tab",
        "''''",
        "é 🛰 漢字 \r\a\033[31m",
    };
    const QTemporaryDir folder;
    const Provider provider = withTemplate(QStringLiteral("/usr/bin/printf '%s' {prompt}"));
    for (const char* const text : prompts) {
        const QString prompt = QString::fromUtf8(text);
        QProcess shell;
        shell.setWorkingDirectory(folder.path());
        shell.start(QStringLiteral("/bin/zsh"),
                    {QStringLiteral("-l"), QStringLiteral("-c"), provider.command(prompt)});
        ASSERT_TRUE(shell.waitForFinished()) << text;
        EXPECT_EQ(QString::fromUtf8(shell.readAllStandardOutput()), prompt) << text;
        EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList())
            << text;
    }
}

}  // namespace
}  // namespace orvo
