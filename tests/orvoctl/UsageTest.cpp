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
        const QString help = QString::fromUtf8(orvoctl(words("--help")).output);
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
        words("no-such-command"),
        words("--no-such-option"),
        words("template"),
        words("template no-such-word"),
        words("run"),
        words("run --shared a b"),
        words(R"(run --shared "  ")"),
        words("run --timeout soon task"),
        words("run --timeout 0 task"),
        words("run --connector name task"),
        words("run --shared --assistant nobody task"),
        words("run --no-such-option task"),
        words("run --project"),
        words("providers x"),
        words("history a b"),
        words("screen --rows 0"),
        words("screen --columns x"),
        words("screen --chunk 0"),
        words("screen --resize 24"),
        words("template check"),
        words("template command x"),
    };
    for (const QStringList& call : calls) {
        for (const bool json : {false, true}) {
            const Outcome outcome = orvoctl(json && !call.isEmpty() ? call + words("--json") : call);
            const QByteArray what = call.join(u' ').toUtf8();
            EXPECT_EQ(outcome.status, 2) << what.constData();
            EXPECT_EQ(outcome.output, "") << what.constData();
            EXPECT_TRUE(outcome.error.startsWith("orvoctl: ") && outcome.error.contains("--help"))
                << outcome.error.constData();
        }
    }
}

TEST_F(Usage, HelpAndVersionAreOnStandardOutput) {
    const Outcome version = orvoctl(words("--version"));
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output, "orvoctl " ORVO_VERSION "\n");
    ASSERT_GE(commands().size(), 6);
    for (const QString& command : commands()) {
        const Outcome help = orvoctl(command.split(u' ') + words("--help"));
        EXPECT_EQ(help.status, 0) << qPrintable(command);
        EXPECT_TRUE(help.output.startsWith("Usage: orvoctl " + command.toUtf8())) << help.output.constData();
        EXPECT_EQ(help.error, "") << qPrintable(command);
    }
}

TEST_F(Usage, AForeignLocaleAddsNothingToTheOutput) {
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    const Outcome outcome = orvoctl(words("--version"));
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
        const QStringList names = command.split(u' ');
        QSet<QString> expected(names.begin(), names.end());
        const QString help = QString::fromUtf8(orvoctl(names + words("--help")).output);
        auto match = option.globalMatch(help);
        ASSERT_TRUE(match.hasNext());
        while (match.hasNext())
            expected.insert(match.next().captured(1));
        for (auto text = texts.cbegin(); text != texts.cend(); ++text) {
            for (const QString& word : expected) {
                EXPECT_TRUE(text->contains(word)) << qPrintable(text.key()) << " lacks " << qPrintable(word);
            }
        }
    }
}

}  // namespace
}  // namespace orvo
