#include "orvoctl/OrvoctlTestCase.h"

namespace orvo {
namespace {

class Template : public test::OrvoctlTestCase {};

TEST_F(Template, CheckNamesTheErrorAndSaysWhetherTasksAreReceived) {
    const struct {
        QStringList arguments;
        const char* error;
        bool receivesTasks;
    } cases[] = {
        {words(R"("claude {prompt}")"), nullptr, true},
        {words("claude"), nullptr, false},
        {{QString()}, nullptr, false},
        {words("kimi"), nullptr, false},
        {words("kimi --id kimi"), nullptr, true},
        {words(R"(-- "-x {prompt}")"), nullptr, true},
        {{QStringLiteral("claude \"{prompt}\"")},
         "Place {prompt} outside quotes and without a backslash. Orvo supplies the quotes.",
         false},
        {{QStringLiteral("claude '")}, "Close the quotation mark in this command.", false},
    };
    for (const auto& c : cases) {
        const QStringList call = words("template check --json") + c.arguments;
        const Outcome outcome = orvoctl(call);
        const QJsonObject expected{{QStringLiteral("error"), c.error ? QJsonValue(QString::fromUtf8(c.error))
                                                                     : QJsonValue(QJsonValue::Null)},
                                   {QStringLiteral("receivesTasks"), c.receivesTasks}};
        EXPECT_EQ(outcome.json().object(), expected) << qPrintable(call.join(u' '));
        EXPECT_EQ(outcome.status, c.error ? 1 : 0) << qPrintable(call.join(u' '));
    }
}

TEST_F(Template, CommandQuotesThePromptOfTheFile) {
    write("prompt", "it's\n$(x) \n");
    const struct {
        QStringList arguments;
        const char* command;
    } cases[] = {
        {words(R"("my {prompt}")"), "my 'it'\\''s\n$(x) \n'"},
        {words(R"("claude {prompt}" --id claude --batch)"), "claude --print 'it'\\''s\n$(x) \n'"},
        {words(R"("claude {prompt}" --batch)"), "claude 'it'\\''s\n$(x) \n'"},
        {words("agy --id antigravity"), "agy --prompt-interactive 'it'\\''s\n$(x) \n'"},
    };
    for (const auto& c : cases) {
        const QStringList call = words("template command --json --prompt-file ../prompt") + c.arguments;
        EXPECT_EQ(orvoctl(call).json().object(),
                  (QJsonObject{{QStringLiteral("command"), QString::fromUtf8(c.command)}}))
            << qPrintable(call.join(u' '));
    }
}

TEST_F(Template, ThePromptMayComeFromStandardInput) {
    const Outcome outcome =
        orvoctl(words(R"(template command "my {prompt}" --prompt-file -)"), "from a pipe");
    EXPECT_EQ(outcome.output, "my 'from a pipe'\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(Template, AFileThatCannotBeReadAndABadTemplateAreFailures) {
    const Outcome missing = orvoctl(words(R"(template command "my {prompt}" --prompt-file missing --json)"));
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.json()[u"ok"], false);
    write("prompt", "x");
    const Outcome bad = orvoctl(words(R"(template command "my '{prompt}'" --prompt-file ../prompt)"));
    EXPECT_EQ(bad.status, 1);
    EXPECT_TRUE(bad.error.startsWith("orvoctl: Place {prompt} outside quotes")) << bad.error.constData();
}

}  // namespace
}  // namespace orvo
