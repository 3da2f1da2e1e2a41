#include "platform/fake/FakeDialogs.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(FakeDialogs, aQuestionWithoutAScriptedAnswerFailsTheTest) {
    FakeDialogs dialogs;
    const Alert alert{QStringLiteral("Stop?"), {}, {QStringLiteral("Stop"), QStringLiteral("Cancel")}};
    int chosen = 0;
    EXPECT_NONFATAL_FAILURE(chosen = dialogs.alert(alert), "Unexpected alert: Stop?");
    EXPECT_EQ(chosen, 1);
    dialogs.answer(QStringLiteral("Quit"));
    EXPECT_NONFATAL_FAILURE(dialogs.alert(alert), "no button");
    EXPECT_NONFATAL_FAILURE(dialogs.openFolder(QStringLiteral("Where?")), "Unexpected folder panel");
    EXPECT_NONFATAL_FAILURE(dialogs.saveFile(QStringLiteral("a.txt"), std::nullopt), "Unexpected save panel");

    dialogs.answer(QStringLiteral("Stop"));
    EXPECT_FALSE(dialogs.everyAnswerUsed());
    EXPECT_EQ(dialogs.alert(alert), 0);
    EXPECT_TRUE(dialogs.everyAnswerUsed());
}

}  // namespace
}  // namespace orvo
