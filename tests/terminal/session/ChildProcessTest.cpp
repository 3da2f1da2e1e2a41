#include "terminal/ChildProcess.h"

#include "DescriptorLimit.h"
#include "support/WaitFor.h"
#include "support/sanitized.h"
#include "terminal/core/launch.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <atomic>

namespace orvo {
namespace {

using namespace std::chrono_literals;
using test::DescriptorLimit;
using test::waitFor;

/// A child on a terminal that nobody reads.
struct Launched {
    explicit Launched(const char* command) : pid(pelk_spawn(command, "/", 24, 80, &master)) {}
    ~Launched() { ::close(master); }
    bool prints() const {
        char text[64];
        return waitFor([&] { return ::read(master, text, sizeof text) > 0; });
    }
    int master = -1;
    pid_t pid;
};

TEST(ChildProcess, ItIsReapedAlsoWhereNoDescriptorIsLeftToWatchItWith) {
    if (test::isSanitized) GTEST_SKIP() << "a sanitizer takes descriptors to look at memory";
    const Launched launched("sleep 0.2; exit 5");
    const auto queue = SerialQueue::create("orvo.pty");
    std::atomic<int> status = -2;
    {
        const DescriptorLimit none(0);
        ChildProcess::watch(queue, launched.pid, [&](int code) { status = code; });
        queue->sync([] {});
    }
    EXPECT_TRUE(waitFor([&] { return status == 5; })) << status;
}

TEST(ChildProcess, AReapedIdIsNotSignalled) {
    const Launched launched("exit 0");
    const auto queue = SerialQueue::create("orvo.pty");
    std::atomic<bool> ended = false;
    const auto child = ChildProcess::watch(queue, launched.pid, [&](int) { ended = true; });
    ASSERT_TRUE(waitFor([&] { return ended.load(); }));

    // Stands in for whoever gets the id next: a group that must not notice.
    const Launched other("print ready; sleep 1000");
    ASSERT_TRUE(other.prints());
    queue->sync([&] { child->terminate(other.pid); });
    // Nothing is left to wait for either.
    EXPECT_TRUE(ChildProcess::waitForTerminated(0ms));
    EXPECT_EQ(::waitpid(other.pid, nullptr, WNOHANG), 0);
    ::kill(-other.pid, SIGKILL);
    EXPECT_EQ(pelk_wait(other.pid), 137);
}

TEST(ChildProcess, WaitingKillsAtTheLimitThatIsGiven) {
    // Well before the kill that comes by itself. A busy machine may take longer now and then, but not always.
    bool early = false;
    for (int attempt = 0; attempt < 10 && !early; ++attempt) {
        const Launched launched("trap '' TERM HUP; print ready; while true; do sleep 1000; done");
        ASSERT_TRUE(launched.prints());
        const auto queue = SerialQueue::create("orvo.pty");
        std::atomic<int> status = -2;
        const auto child = ChildProcess::watch(queue, launched.pid, [&](int code) { status = code; });
        const auto start = std::chrono::steady_clock::now();
        queue->sync([&] { child->terminate(-1); });
        const bool gone = ChildProcess::waitForTerminated(100ms);
        early = gone && std::chrono::steady_clock::now() - start < ChildProcess::patience;
        ASSERT_TRUE(waitFor([&] { return status == 137; })) << status;
    }
    EXPECT_TRUE(early);
}

}  // namespace
}  // namespace orvo
