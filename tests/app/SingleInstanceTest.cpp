#include "app/SingleInstance.h"

#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <QThread>

#include <atomic>
#include <csignal>

#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvo {
namespace {

using namespace std::chrono_literals;

/// A start that waits in a thread of its own, as another process would.
class LaterStart {
public:
    LaterStart(const FilePath& folder, const StartRequest& request)
        : m_thread(QThread::create([this, folder, request] {
              const auto claim = SingleInstance::claim(folder, request, 20s);
              m_handedOver = claim && std::holds_alternative<SingleInstance::HandedOver>(*claim);
          })) {
        m_thread->start();
    }
    ~LaterStart() { m_thread->wait(); }

    bool ends() const {
        return test::waitFor([this] { return m_thread->isFinished(); });
    }
    bool handedOver() const { return m_handedOver; }

private:
    std::atomic<bool> m_handedOver = false;
    std::unique_ptr<QThread> m_thread;
};

class SingleInstanceTest : public testing::Test {
protected:
    static std::unique_ptr<SingleInstance> instanceOf(Result<SingleInstance::Claim> claim) {
        if (!claim) return nullptr;
        auto* const instance = std::get_if<std::unique_ptr<SingleInstance>>(&*claim);
        return instance ? std::move(*instance) : nullptr;
    }
    QTemporaryDir m_temporary;
    FilePath m_folder = FilePath::fromString(m_temporary.path()).child("run");
};

TEST_F(SingleInstanceTest, aLaterStartHandsOverWhatItWasAskedFor) {
    const auto first = instanceOf(SingleInstance::claim(m_folder, {}));
    ASSERT_TRUE(first);
    QList<StartRequest> requests;
    QObject::connect(first.get(), &SingleInstance::requested,
                     [&requests](const StartRequest& request) { requests.append(request); });

    const QList<StartRequest> asked = {
        {},
        {.workspace = FilePath("/srv/caf\xe9 notes"), .errand = Options::Errand::QuickDraft},
        {.errand = Options::Errand::NewTerminal, .activationToken = "token-1"}};
    for (const StartRequest& request : asked) {
        const LaterStart later(m_folder, request);
        ASSERT_TRUE(later.ends());
        EXPECT_TRUE(later.handedOver());
    }
    EXPECT_EQ(requests, asked);
}

TEST_F(SingleInstanceTest, aStartWaitsForAnInstanceThatIsStillStarting) {
    // Its place is taken, but it has no socket yet.
    ASSERT_TRUE(QDir().mkpath(m_folder.display()));
    QFile place(m_folder.child("orvo-ai.lock").display());
    ASSERT_TRUE(place.open(QIODevice::ReadWrite));
    ASSERT_EQ(flock(place.handle(), LOCK_EX), 0);
    const LaterStart later(m_folder, {});
    QLocalServer::removeServer(m_folder.child("orvo-ai.socket").display());
    QLocalServer starting;
    ASSERT_TRUE(starting.listen(m_folder.child("orvo-ai.socket").display()));
    ASSERT_TRUE(test::waitFor([&] { return starting.hasPendingConnections(); }));
    // It ends without an answer, so that its place is free for the start that waits.
    starting.nextPendingConnection()->abort();
    starting.close();
    place.close();
    ASSERT_TRUE(later.ends());
    EXPECT_FALSE(later.handedOver()) << "it takes the place itself";
}

TEST_F(SingleInstanceTest, aKilledInstanceLeavesNothingThatBlocksTheNext) {
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t killed = fork();
    if (killed == 0) {
        const auto instance = instanceOf(SingleInstance::claim(m_folder, {}));
        const char answer = instance ? 'y' : 'n';
        if (write(ready[1], &answer, 1) == 1) pause();
        _exit(0);
    }
    char answer = 0;
    ASSERT_EQ(read(ready[0], &answer, 1), 1);
    ASSERT_EQ(answer, 'y');
    ASSERT_TRUE(QFile::exists(m_folder.child("orvo-ai.socket").display()));
    kill(killed, SIGKILL);
    ASSERT_EQ(waitpid(killed, nullptr, 0), killed);

    EXPECT_TRUE(instanceOf(SingleInstance::claim(m_folder, {}, 0ms)));
    close(ready[0]);
    close(ready[1]);
}

TEST_F(SingleInstanceTest, anInstanceThatDoesNotAnswerIsReportedAfterAWhile) {
    const auto first = instanceOf(SingleInstance::claim(m_folder, {}));
    ASSERT_TRUE(first);
    // Its event loop does not run.
    const auto later = SingleInstance::claim(m_folder, {}, 200ms);
    ASSERT_FALSE(later);
    EXPECT_EQ(later.error().message, QStringLiteral("Orvo AI is running already, but does not answer."));
}

TEST_F(SingleInstanceTest, aStrangerCannotMakeTheInstanceKeepItsBytes) {
    const auto first = instanceOf(SingleInstance::claim(m_folder, {}));
    ASSERT_TRUE(first);
    QLocalSocket stranger;
    stranger.connectToServer(m_folder.child("orvo-ai.socket").display());
    ASSERT_TRUE(stranger.waitForConnected());
    // Says that a path of two billion bytes follows.
    stranger.write(QByteArray("\x7f\xff\xff\xff", 4) + QByteArray(1 << 20, 'x'));
    EXPECT_TRUE(test::waitFor([&] { return stranger.state() == QLocalSocket::UnconnectedState; }));
}

}  // namespace
}  // namespace orvo
