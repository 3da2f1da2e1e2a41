#include "platform/fake/FakeClock.h"
#include "platform/fake/FakeDialogs.h"
#include "platform/fake/FakePreferences.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace orvo {
namespace {

using namespace std::chrono_literals;

TEST(FakeClock, runsDueWorkInOrderOfTimeAndThenOfAsking) {
    FakeClock clock;
    const QDateTime start = clock.now();
    QObject context;
    auto gone = std::make_unique<QObject>();
    QStringList order;
    const auto note = [&](const char* name) {
        return [&order, &clock, start, name] {
            order.append(QStringLiteral("%1@%2").arg(QLatin1String(name)).arg(start.msecsTo(clock.now())));
        };
    };
    clock.after(30ms, &context, note("late"));
    clock.after(10ms, &context, [&] {
        note("first")();
        clock.after(10ms, &context, note("chained"));
    });
    clock.after(10ms, &context, note("second"));
    clock.after(15ms, gone.get(), note("dropped"));
    gone.reset();

    clock.advance(9ms);
    EXPECT_TRUE(order.isEmpty());
    clock.advance(20ms);
    EXPECT_EQ(order.join(u' '), QStringLiteral("first@10 second@10 chained@20"));
    EXPECT_EQ(clock.waiting(), 1);
    clock.advance(1ms);
    EXPECT_EQ(order.last(), QStringLiteral("late@30"));
}

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

TEST(FakePreferences, aValueOfAnotherTypeCountsAsAbsentUntilOverwritten) {
    FakePreferences preferences;
    preferences.preset("terminalFont", PreferenceValue(QStringLiteral("large")));
    EXPECT_FALSE(preferences.value(preference::terminalFont));
    EXPECT_TRUE(preferences.stored("terminalFont"));
    ASSERT_TRUE(preferences.setValue(preference::terminalFont, 13.5));
    EXPECT_EQ(preferences.value(preference::terminalFont), 13.5);
    ASSERT_TRUE(preferences.remove(preference::terminalFont));
    EXPECT_FALSE(preferences.stored("terminalFont"));
}

}  // namespace
}  // namespace orvo
