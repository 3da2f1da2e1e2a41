#include "platform/runInBackground.h"

#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <QSemaphore>
#include <QThread>

#include <atomic>

namespace orvo {
namespace {

TEST(RunInBackground, worksElsewhereAndDeliversOnTheMainThread) {
    QObject context;
    QThread* deliveredOn = nullptr;
    QThread* workedOn = nullptr;
    runInBackground(
        &context, [] { return QThread::currentThread(); },
        [&](QThread* thread) {
            workedOn = thread;
            deliveredOn = QThread::currentThread();
        });
    ASSERT_TRUE(test::waitFor([&] { return deliveredOn != nullptr; }));
    EXPECT_EQ(deliveredOn, QThread::currentThread());
    EXPECT_NE(workedOn, QThread::currentThread());
}

TEST(RunInBackground, dropsTheResultWhenTheContextWentMeanwhile) {
    auto context = std::make_unique<QObject>();
    QSemaphore contextIsGone;
    bool delivered = false;
    bool laterDelivered = false;
    runInBackground(
        context.get(),
        [&contextIsGone] {
            contextIsGone.acquire();
            return 1;
        },
        [&](int) { delivered = true; });
    context.reset();
    contextIsGone.release();
    QThreadPool::globalInstance()->waitForDone();
    // Posted after the first result, so once this one arrived the first was handled.
    QObject other;
    runInBackground(&other, [] { return 2; }, [&](int) { laterDelivered = true; });
    ASSERT_TRUE(test::waitFor([&] { return laterDelivered; }));
    EXPECT_FALSE(delivered);
}

TEST(RunInBackground, neverDeliversForAContextThatIsGone) {
    std::atomic<int> worked = 0;
    int delivered = 0;
    int deliveredTooLate = 0;
    constexpr int rounds = 2000;
    for (int round = 0; round < rounds; ++round) {
        auto context = std::make_unique<QObject>();
        const auto alive = std::make_shared<bool>(true);
        runInBackground(
            context.get(), [&worked] { return ++worked; },
            [&, alive](int) {
                ++delivered;
                if (!*alive) ++deliveredTooLate;
            });
        // Some contexts live to see their result, the others go before, during or after the work.
        if (round % 3 == 0) QThreadPool::globalInstance()->waitForDone();
        if (round % 2 == 0) QCoreApplication::processEvents();
        context.reset();
        *alive = false;
    }
    ASSERT_TRUE(test::waitFor([&] { return worked == rounds; }));
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
    EXPECT_EQ(deliveredTooLate, 0);
    EXPECT_GE(delivered, rounds / 6);
    EXPECT_LT(delivered, rounds);
}

}  // namespace
}  // namespace orvo
