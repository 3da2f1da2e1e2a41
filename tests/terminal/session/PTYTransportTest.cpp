#include "terminal/PTYTransport.h"

#include "support/WaitFor.h"
#include "terminal/ChildProcess.h"
#include "terminal/core/launch.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <signal.h>
#include <vector>

namespace orvo {
namespace {

using namespace std::chrono_literals;
using test::waitFor;

/// A command on a pseudo-terminal, and what its transport hands over.
class Command {
public:
    enum class Consume { AtOnce, WhenTold };

    explicit Command(const QByteArray& command, Consume consume = Consume::AtOnce) {
        const auto queue = SerialQueue::create("orvo.pty");
        int master = -1;
        const pid_t pid = pelk_spawn(command.constData(), "/", 24, 80, &master);
        EXPECT_GT(pid, 0);
        transport = PTYTransport::open(
            queue, master, &receiver,
            [this, consume](const QByteArray& batch) {
                EXPECT_TRUE(statuses.empty()) << "output after the completion";
                output += batch;
                unconsumed.push_back(batch.size());
                if (consume == Consume::AtOnce) consumeAll();
            },
            [this](int status) { statuses.push_back(status); });
        child = ChildProcess::watch(queue, pid, [to = transport](int status) { to->childExited(status); });
    }
    ~Command() {
        transport->stop(*child);
        transport->close();
        EXPECT_TRUE(ChildProcess::waitForTerminated(10s));
    }

    bool prints(const char* text) {
        return waitFor([&] { return output.contains(text); });
    }
    bool ends() {
        return waitFor([&] { return !statuses.empty(); });
    }

    void consumeAll() {
        for (const qsizetype size : unconsumed)
            transport->consumed(size);
        unconsumed.clear();
    }

    QObject receiver;
    std::shared_ptr<PTYTransport> transport;
    std::shared_ptr<ChildProcess> child;
    QByteArray output;
    std::vector<qsizetype> unconsumed;
    std::vector<int> statuses;
};

TEST(PTYTransport, ALongPasteArrivesCompleteAndUnchanged) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("received"));
    const QByteArray paste = QByteArray("abc123").repeated(50'000);
    Command command("stty raw -echo; echo ready; head -c 300000 > '" + path.toUtf8() + "'; exit 7");
    ASSERT_TRUE(command.prints("ready"));

    command.transport->send({});
    command.transport->send(paste);
    ASSERT_TRUE(command.ends());

    QFile received(path);
    ASSERT_TRUE(received.open(QIODevice::ReadOnly));
    EXPECT_TRUE(received.readAll() == paste);
    EXPECT_EQ(command.statuses, std::vector{7});
}

TEST(PTYTransport, TheCompletionComesOnceAndAfterTheLastLine) {
    Command command("for i in {1..6000}; do print line; done; print -n the-end");
    ASSERT_TRUE(command.ends());
    EXPECT_EQ(command.output.count("line\r\n"), 6'000);
    EXPECT_TRUE(command.output.endsWith("the-end"));

    command.transport->send("too late");
    command.transport->resize(30, 100);
    command.transport->childExited(3);
    QCoreApplication::processEvents();
    EXPECT_EQ(command.statuses, std::vector{0});
}

TEST(PTYTransport, EndOfOutputAloneIsNotTheEnd) {
    Command command("exec 0<&- 1>&- 2>&-; read -t 0.4 line < <(sleep 0.3); exit 5");
    // The terminal closes first: what is typed then is dropped, and the child's status is still awaited.
    for (int i = 0; i < 50; ++i)
        command.transport->send("dropped");
    EXPECT_TRUE(command.statuses.empty());
    ASSERT_TRUE(command.ends());
    EXPECT_EQ(command.statuses, std::vector{5});
}

TEST(PTYTransport, AKeyPressedAfterTheChildsEndDoesNotCostItsLastLine) {
    Command command(
        "stty raw -echo; print -n ready; while read -k 1 key && [[ $key == k ]]; do print -n y; done; "
        "print -n the-end",
        Command::Consume::WhenTold);
    ASSERT_TRUE(command.prints("ready"));
    // A letter for a key is a batch, until no more are handed over and the last words wait in the kernel.
    while (command.unconsumed.size() < PTYTransport::maximumUnreadBatches) {
        const std::size_t before = command.unconsumed.size();
        command.transport->send("k");
        ASSERT_TRUE(waitFor([&] { return command.unconsumed.size() > before; }));
    }
    command.transport->send("e");
    ASSERT_TRUE(waitFor([&] { return ::kill(command.child->pid(), 0) != 0; }));
    EXPECT_FALSE(command.output.contains("the-end"));

    // Nobody has the other side open any more.
    command.transport->send("x");
    ASSERT_TRUE(waitFor([&] {
        command.consumeAll();
        return !command.statuses.empty();
    }));
    EXPECT_TRUE(command.output.endsWith("ythe-end")) << command.output.constData();
}

TEST(PTYTransport, ReadingPausesAtTheLimitAndNothingIsLost) {
    Command command("head -c 6000000 /dev/zero | tr '\\0' x; print -n the-end", Command::Consume::WhenTold);
    ASSERT_TRUE(waitFor([&] {
        return command.output.size() == PTYTransport::maximumUnread ||
               command.unconsumed.size() == PTYTransport::maximumUnreadBatches;
    }));
    const qsizetype held = command.output.size();
    // The child had every chance to write on meanwhile, and the transport to read on.
    EXPECT_FALSE(waitFor([&] { return command.output.size() > held; }, 300ms));
    EXPECT_LE(held, PTYTransport::maximumUnread);
    EXPECT_TRUE(command.statuses.empty());

    ASSERT_TRUE(waitFor([&] {
        command.consumeAll();
        return !command.statuses.empty();
    }));
    EXPECT_EQ(command.output.count('x'), 6'000'000);
    EXPECT_TRUE(command.output.endsWith("the-end"));
}

TEST(PTYTransport, RepliesCountAsUnreadUntilTheyAreWrittenAndInputIsNeverDropped) {
    const QTemporaryDir folder;
    const QString go = folder.filePath(QStringLiteral("go"));
    Command command("stty raw -echo; echo ready; until [[ -e '" + go.toUtf8() +
                    "' ]]; do sleep 0.02; done; head -c 301000 | wc -c");
    ASSERT_TRUE(command.prints("ready"));
    // More than the kernel takes for a child that does not read.
    command.transport->send(QByteArray(200'000, 'k'));
    command.transport->sendReplies(QByteArray(1'000, 'r'));
    command.transport->send(QByteArray(100'000, 'k'));
    EXPECT_FALSE(waitFor([&] { return command.transport->unreadReplies() != 1'000; }, 100ms));

    ASSERT_TRUE(QFile(go).open(QIODevice::WriteOnly));
    ASSERT_TRUE(command.ends());
    EXPECT_TRUE(command.output.contains("301000")) << command.output.constData();
    EXPECT_EQ(command.transport->unreadReplies(), 0);

    command.transport->sendReplies("after the end");
    EXPECT_TRUE(waitFor([&] { return command.transport->unreadReplies() == 0; }));
}

TEST(PTYTransport, StopReachesTheForegroundJobOfAnInteractiveShellToo) {
    Command command("exec zsh -f -i");
    // The job has a group of its own. Its words are put together only when printed, unlike in the echo.
    command.transport->send("sh -c 'echo job-\"\"runs; exec sleep 1000'; print job-''ended-$?; sleep 1000\n");
    ASSERT_TRUE(command.prints("job-runs"));
    command.transport->stop(*command.child);
    ASSERT_TRUE(command.prints("job-ended-143"));
    ASSERT_TRUE(command.ends());
    // The shell itself ignores the signal at its prompt, and is killed a second later.
    EXPECT_EQ(command.statuses, std::vector{137});
}

TEST(PTYTransport, NothingIsDeliveredAfterCloseAndTheChildIsStillReaped) {
    pid_t pid = -1;
    {
        Command command("while true; do print flood; done");
        pid = command.child->pid();
        ASSERT_TRUE(command.prints("flood"));
        command.transport->close();
        QCoreApplication::processEvents();
        const qsizetype size = command.output.size();
        EXPECT_FALSE(waitFor([&] { return command.output.size() != size; }, 50ms));
    }
    EXPECT_EQ(::kill(pid, 0), -1);
}

}  // namespace
}  // namespace orvo
