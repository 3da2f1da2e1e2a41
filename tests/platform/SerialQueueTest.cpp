#include "platform/SerialQueue.h"

#include "support/WaitFor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>
#include <array>
#include <atomic>
#include <string>
#include <vector>

namespace orvo {
namespace {

using namespace std::chrono_literals;
using test::waitFor;

struct Pipe {
    Pipe() { EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK), 0); }
    int readEnd() const { return ends[0]; }
    int writeEnd() const { return ends[1]; }
    std::array<int, 2> ends{-1, -1};
};

TEST(SerialQueue, WorkRunsInTheOrderPostedOnOneNamedThread) {
    const auto queue = SerialQueue::create("orvo.a-long-label");
    std::vector<int> order;
    std::string name(16, '\0');
    for (int i = 0; i < 1'000; ++i) {
        queue->async([&order, i] { order.push_back(i); });
    }
    bool current = false;
    queue->sync([&] {
        pthread_getname_np(pthread_self(), name.data(), name.size());
        // Already on the queue: runs at once instead of waiting for itself.
        queue->sync([&] { current = queue->isCurrent(); });
    });

    ASSERT_EQ(order.size(), 1'000U);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_STREQ(name.c_str(), "orvo.a-long-lab");
    EXPECT_TRUE(current);
    EXPECT_FALSE(queue->isCurrent());
}

TEST(SerialQueue, ReleasingItRunsWhatWasPostedAndDropsItsTimers) {
    int ran = 0;
    auto queue = SerialQueue::create("orvo.test");
    queue->after(1h, [&ran] { ran += 1'000; });
    for (int i = 0; i < 100; ++i)
        queue->async([&ran] { ++ran; });
    queue.reset();
    EXPECT_EQ(ran, 100);
}

TEST(SerialQueue, ReleasingItWhileItWakesUpForItsLastWorkEndsItsThread) {
    // One wake-up may stand for the work and the release: the thread must not go to sleep after the work.
    std::atomic<int> ran = 0;
    for (int i = 0; i < 3'000; ++i) {
        auto queue = SerialQueue::create("orvo.test");
        queue->sync([] {});
        queue->async([&ran] { ++ran; });
    }
    EXPECT_EQ(ran, 3'000);
}

TEST(SerialQueue, ItsOwnWorkMayReleaseTheLastReference) {
    const auto released = std::make_shared<std::atomic<bool>>(false);
    auto queue = SerialQueue::create("orvo.test");
    SerialQueue* const plain = queue.get();
    plain->async([queue = std::move(queue), released] { queue->async([released] { *released = true; }); });
    EXPECT_TRUE(waitFor([&] { return released->load(); }));
}

TEST(SerialQueue, TimersFireInTheOrderTheyAreDueAndNotBefore) {
    const auto queue = SerialQueue::create("orvo.test");
    const auto start = std::chrono::steady_clock::now();
    std::vector<int> order;
    std::chrono::nanoseconds first{};
    std::atomic<bool> done = false;
    queue->after(60ms, [&] {
        order.push_back(60);
        done = true;
    });
    queue->after(30ms, [&] {
        first = std::chrono::steady_clock::now() - start;
        order.push_back(30);
    });
    ASSERT_TRUE(waitFor([&] { return done.load(); }));
    EXPECT_EQ(order, (std::vector{30, 60}));
    EXPECT_GE(first, 30ms);
}

TEST(SerialQueue, ASuspendedSourceIsSilentAndACancelledOneSaysWhenItsDescriptorMayBeClosed) {
    const auto queue = SerialQueue::create("orvo.test");
    const Pipe pipe;
    std::shared_ptr<SerialQueue::Source> source;
    int bytes = 0;
    int cancelled = 0;
    const auto count = [&](const int& value) {
        int now = 0;
        queue->sync([&] { now = value; });
        return now;
    };
    queue->sync([&] {
        source = queue->watch(
            pipe.readEnd(), SerialQueue::Interest::Readable,
            [&] {
                char byte = 0;
                while (::read(pipe.readEnd(), &byte, 1) == 1)
                    ++bytes;
                if (bytes == 2) source->suspend();
                if (bytes == 3) source->cancel();
            },
            [&] {
                ++cancelled;
                ::close(pipe.readEnd());
            });
    });
    ASSERT_EQ(::write(pipe.writeEnd(), "a", 1), 1);
    EXPECT_EQ(count(bytes), 0);
    queue->sync([&] { source->resume(); });
    ASSERT_TRUE(waitFor([&] { return count(bytes) == 1; }));

    ASSERT_EQ(::write(pipe.writeEnd(), "b", 1), 1);
    ASSERT_TRUE(waitFor([&] { return count(bytes) == 2; }));
    ASSERT_EQ(::write(pipe.writeEnd(), "c", 1), 1);
    EXPECT_EQ(count(bytes), 2);
    EXPECT_EQ(count(cancelled), 0);

    queue->sync([&] { source->resume(); });
    ASSERT_TRUE(waitFor([&] { return count(cancelled) == 1; }));
    EXPECT_EQ(count(bytes), 3);
    queue->sync([&] { source->cancel(); });
    EXPECT_EQ(count(cancelled), 1);
    ::close(pipe.writeEnd());
}

TEST(SerialQueue, AHangUpCountsAsReadableAndAFullPipeAsNotWritable) {
    const auto queue = SerialQueue::create("orvo.test");
    const Pipe closed;
    const Pipe full;
    const std::string block(4'096, 'x');
    while (::write(full.writeEnd(), block.data(), block.size()) > 0) {
    }
    ::close(closed.writeEnd());

    std::atomic<int> hangUps = 0;
    std::atomic<int> writable = 0;
    std::shared_ptr<SerialQueue::Source> reader;
    std::shared_ptr<SerialQueue::Source> writer;
    queue->sync([&] {
        reader = queue->watch(
            closed.readEnd(), SerialQueue::Interest::Readable,
            [&] {
                ++hangUps;
                reader->cancel();
            },
            [] {});
        writer = queue->watch(
            full.writeEnd(), SerialQueue::Interest::Writable,
            [&] {
                ++writable;
                writer->cancel();
            },
            [] {});
        reader->resume();
        writer->resume();
    });
    ASSERT_TRUE(waitFor([&] { return hangUps == 1; }));
    EXPECT_EQ(writable, 0);
    std::string drained(1 << 20, '\0');
    ASSERT_GT(::read(full.readEnd(), drained.data(), drained.size()), 0);
    EXPECT_TRUE(waitFor([&] { return writable == 1; }));
    for (const int descriptor : {closed.readEnd(), full.readEnd(), full.writeEnd()})
        ::close(descriptor);
}

TEST(SerialQueue, WithoutADescriptorLeftThereIsNoQueueAndTheReasonIsTold) {
    rlimit previous{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &previous), 0);
    const rlimit none{0, previous.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    const auto queue = SerialQueue::create("orvo.test");
    const int error = errno;
    ::setrlimit(RLIMIT_NOFILE, &previous);
    EXPECT_EQ(queue, nullptr);
    EXPECT_EQ(error, EMFILE);
}

}  // namespace
}  // namespace orvo
