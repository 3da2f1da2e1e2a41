#include "orvoctl/OrvoctlTestCase.h"

#include <QRegularExpression>
#include <QSet>

namespace orvo {
namespace {

class Usage : public test::OrvoctlTestCase {
protected:
    /// The commands that the help names.
    QStringList commands() const {
        QStringList names;
        const QString help = QString::fromUtf8(orvoctl({QStringLiteral("--help")}).output);
        const QString list =
            help.section(QStringLiteral("Commands:\n"), 1).section(QStringLiteral("\n\n"), 0, 0);
        for (const QString& line : list.split(u'\n'))
            names.append(line.trimmed().section(QStringLiteral("  "), 0, 0));
        return names;
    }
};

TEST_F(Usage, WrongUsageIsASentenceAndStatusTwo) {
    const QStringList calls[] = {
        {},
        {QStringLiteral("no-such-command")},
        {QStringLiteral("--no-such-option")},
        {QStringLiteral("template")},
        {QStringLiteral("template"), QStringLiteral("no-such-word")},
        {QStringLiteral("run")},
        {QStringLiteral("run"), QStringLiteral("--shared"), QStringLiteral("a"), QStringLiteral("b")},
        {QStringLiteral("run"), QStringLiteral("--shared"), QStringLiteral("  ")},
        {QStringLiteral("run"), QStringLiteral("--timeout"), QStringLiteral("soon"), QStringLiteral("task")},
        {QStringLiteral("run"), QStringLiteral("--timeout"), QStringLiteral("0"), QStringLiteral("task")},
        {QStringLiteral("run"), QStringLiteral("--connector"), QStringLiteral("name"),
         QStringLiteral("task")},
        {QStringLiteral("run"), QStringLiteral("--shared"), QStringLiteral("--assistant"),
         QStringLiteral("nobody"), QStringLiteral("task")},
        {QStringLiteral("run"), QStringLiteral("--no-such-option"), QStringLiteral("task")},
        {QStringLiteral("run"), QStringLiteral("--project")},
        {QStringLiteral("providers"), QStringLiteral("x")},
        {QStringLiteral("history"), QStringLiteral("a"), QStringLiteral("b")},
        {QStringLiteral("screen"), QStringLiteral("--rows"), QStringLiteral("0")},
        {QStringLiteral("screen"), QStringLiteral("--columns"), QStringLiteral("x")},
        {QStringLiteral("screen"), QStringLiteral("--chunk"), QStringLiteral("0")},
        {QStringLiteral("screen"), QStringLiteral("--resize"), QStringLiteral("24")},
        {QStringLiteral("template"), QStringLiteral("check")},
        {QStringLiteral("template"), QStringLiteral("command"), QStringLiteral("x")},
    };
    for (const QStringList& call : calls) {
        for (const bool json : {false, true}) {
            const Outcome outcome =
                orvoctl(json && !call.isEmpty() ? call + QStringList(QStringLiteral("--json")) : call);
            const QByteArray what = call.join(u' ').toUtf8();
            EXPECT_EQ(outcome.status, 2) << what.constData();
            EXPECT_EQ(outcome.output, "") << what.constData();
            EXPECT_TRUE(outcome.error.startsWith("orvoctl: ") && outcome.error.contains("--help"))
                << outcome.error.constData();
        }
    }
}

TEST_F(Usage, HelpAndVersionAreOnStandardOutput) {
    const Outcome version = orvoctl({QStringLiteral("--version")});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output, "orvoctl " ORVO_VERSION "\n");
    ASSERT_GE(commands().size(), 6);
    for (const QString& command : commands()) {
        const Outcome help = orvoctl(command.split(u' ') + QStringList(QStringLiteral("--help")));
        EXPECT_EQ(help.status, 0) << qPrintable(command);
        EXPECT_TRUE(help.output.startsWith("Usage: orvoctl " + command.toUtf8())) << help.output.constData();
        EXPECT_EQ(help.error, "") << qPrintable(command);
    }
}

TEST_F(Usage, AForeignLocaleAddsNothingToTheOutput) {
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    const Outcome outcome = orvoctl({QStringLiteral("--version")});
    EXPECT_EQ(outcome.error, "");
}

TEST_F(Usage, ManPageAndCompletionsKnowEveryCommandAndOption) {
    QHash<QString, QString> texts;
    for (const char* const name : {"orvoctl.1", "completions/orvoctl.bash", "completions/_orvoctl"}) {
        QFile file(QStringLiteral(ORVO_PACKAGING "/") + QString::fromUtf8(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        texts[QString::fromUtf8(name)] =
            QString::fromUtf8(file.readAll()).replace(QStringLiteral("\\-"), QStringLiteral("-"));
    }
    static const QRegularExpression option(QStringLiteral("^  (--[a-z-]+)"),
                                           QRegularExpression::MultilineOption);
    for (const QString& command : commands()) {
        QSet<QString> words;
        for (const QString& word : command.split(u' '))
            words.insert(word);
        const QString help =
            QString::fromUtf8(orvoctl(command.split(u' ') + QStringList(QStringLiteral("--help"))).output);
        auto match = option.globalMatch(help);
        ASSERT_TRUE(match.hasNext());
        while (match.hasNext())
            words.insert(match.next().captured(1));
        for (auto text = texts.cbegin(); text != texts.cend(); ++text) {
            for (const QString& word : words) {
                EXPECT_TRUE(text->contains(word)) << qPrintable(text.key()) << " lacks " << qPrintable(word);
            }
        }
    }
}

}  // namespace
}  // namespace orvo
