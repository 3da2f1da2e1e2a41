#include "history/HistoryInbox.h"

#include "history/sampleEntry.h"
#include "platform/TemporaryFolder.h"
#include "support/FileSizeLimit.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QProcess>

#include <cerrno>
#include <map>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvo {
namespace {

using test::readFile;
using test::sampleEntry;
using test::titlesOf;
using test::writeFile;

class HistoryInboxTest : public testing::Test {
protected:
    QList<HistoryEntry> takeAll() {
        QList<HistoryEntry> taken;
        EXPECT_TRUE(m_inbox.take([&](const QList<HistoryEntry>& entries) {
            taken = entries;
            return true;
        }));
        return taken;
    }

    test::TemporaryFolder m_folder;
    HistoryInbox m_inbox{m_folder.child("new").child("history.pending")};
};

TEST_F(HistoryInboxTest, givesBackInOrderWhatWasAddedAndOnlyOnce) {
    EXPECT_TRUE(takeAll().isEmpty());
    EXPECT_TRUE(m_inbox.entries().isEmpty());
    const HistoryEntry first = sampleEntry(QStringLiteral("first"), QStringLiteral("line\nline\n"));
    const HistoryEntry second = sampleEntry(QStringLiteral("second"));
    ASSERT_TRUE(m_inbox.append(first));
    ASSERT_TRUE(m_inbox.append(second));
    EXPECT_EQ(test::modeOf(m_inbox.file()), 0600U);
    EXPECT_EQ(m_inbox.entries(), (QList<HistoryEntry>{first, second}));
    EXPECT_EQ(takeAll(), (QList<HistoryEntry>{first, second}));
    EXPECT_TRUE(takeAll().isEmpty());
    ASSERT_TRUE(m_inbox.append(first));
    EXPECT_EQ(takeAll(), QList<HistoryEntry>{first});
}

TEST_F(HistoryInboxTest, keepsEverythingUntilItIsStoredElsewhere) {
    ASSERT_TRUE(m_inbox.append(sampleEntry(QStringLiteral("a"))));
    EXPECT_TRUE(m_inbox.take([](const QList<HistoryEntry>&) { return false; }));
    EXPECT_EQ(takeAll().size(), 1);
}

TEST_F(HistoryInboxTest, aLineCutOffByAKillSpoilsNoOther) {
    ASSERT_TRUE(m_inbox.append(sampleEntry(QStringLiteral("a"))));
    const QByteArray torn = readFile(m_inbox.file()) + R"({"directory":"/x","exi)";
    writeFile(m_inbox.file(), torn);
    ASSERT_TRUE(m_inbox.append(sampleEntry(QStringLiteral("b"))));
    EXPECT_EQ(titlesOf(m_inbox.entries()), QStringLiteral("a b"));
    EXPECT_EQ(titlesOf(takeAll()), QStringLiteral("a b"));
    EXPECT_TRUE(readFile(FilePath(m_inbox.file().bytes() + ".damaged")).startsWith(torn));
}

TEST_F(HistoryInboxTest, anEntryThatDoesNotFitIsNotAddedInPart) {
    ASSERT_TRUE(m_inbox.append(sampleEntry(QStringLiteral("a"))));
    const QByteArray before = readFile(m_inbox.file());
    const auto added = [&] {
        const test::FileSizeLimit limit(static_cast<rlim_t>(before.size()) + 100);
        return m_inbox.append(sampleEntry(QStringLiteral("b")));
    }();
    ASSERT_FALSE(added);
    EXPECT_EQ(added.error().code, EFBIG);
    EXPECT_EQ(readFile(m_inbox.file()), before);
}

TEST_F(HistoryInboxTest, whoTakesDoesNotWaitForALock) {
    ASSERT_TRUE(m_inbox.append(sampleEntry(QStringLiteral("a"))));
    const int other = open(m_inbox.file().bytes().constData(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    const Result<void> taken = m_inbox.take([](const QList<HistoryEntry>&) { return true; });
    close(other);
    ASSERT_FALSE(taken);
    EXPECT_EQ(taken.error().code, EWOULDBLOCK);
    EXPECT_EQ(takeAll().size(), 1);
}

TEST_F(HistoryInboxTest, whatIsNoFileIsLeftAlone) {
    const FilePath pipe = m_folder.child("pipe");
    ASSERT_EQ(mkfifo(pipe.bytes().constData(), 0600), 0);
    const HistoryInbox inbox(pipe);
    EXPECT_FALSE(inbox.append(sampleEntry(QStringLiteral("a"))));
    EXPECT_TRUE(inbox.entries().isEmpty());
    EXPECT_FALSE(inbox.take([](const QList<HistoryEntry>&) { return true; }));
}

TEST_F(HistoryInboxTest, processesThatAddAtOnceLoseNothingWhileTheWindowTakes) {
    constexpr int processes = 4;
    constexpr int each = 60;
    std::map<QString, int> seen;
    const auto count = [&] {
        for (const HistoryEntry& entry : takeAll()) {
            EXPECT_EQ(entry.output.size(), 5000);
            ++seen[entry.title];
        }
    };
    ASSERT_TRUE(m_inbox.append(sampleEntry(QStringLiteral("zero"), QString(5000, u'o'))));
    std::vector<std::unique_ptr<QProcess>> running;
    for (int i = 0; i < processes; ++i) {
        running.push_back(std::make_unique<QProcess>());
        running.back()->start(
            QCoreApplication::applicationDirPath() + QStringLiteral("/append_history"),
            {m_inbox.file().display(), QString::number(i), QString::number(each), QStringLiteral("5000")});
    }
    bool busy = true;
    while (busy) {
        busy = false;
        for (const auto& process : running) {
            busy |= process->state() != QProcess::NotRunning && !process->waitForFinished(3);
        }
        const Result<void> taken = m_inbox.take([&](const QList<HistoryEntry>& entries) {
            for (const HistoryEntry& entry : entries)
                ++seen[entry.title];
            return true;
        });
        EXPECT_TRUE(taken || taken.error().code == EWOULDBLOCK);
    }
    for (const auto& process : running)
        EXPECT_EQ(process->exitCode(), 0);
    count();
    EXPECT_EQ(seen.size(), processes * each + 1U);
    for (const auto& [title, times] : seen)
        EXPECT_EQ(times, 1) << qPrintable(title);
}

TEST_F(HistoryInboxTest, aFullOneKeepsTheNewest) {
    const HistoryInbox inbox(m_inbox.file(), 100'000);
    const QString large(50'000, u'x');
    ASSERT_TRUE(inbox.append(sampleEntry(QStringLiteral("a"), large)));
    for (int i = 0; i < 60; ++i)
        ASSERT_TRUE(inbox.append(sampleEntry(QString::number(i))));
    EXPECT_EQ(inbox.entries().size(), 61);
    ASSERT_TRUE(inbox.append(sampleEntry(QStringLiteral("b"), large)));
    const QList<HistoryEntry> entries = takeAll();
    ASSERT_EQ(entries.size(), 50);
    EXPECT_EQ(entries.first().title, QStringLiteral("11"));
    EXPECT_EQ(entries.last().title, QStringLiteral("b"));
}

}  // namespace
}  // namespace orvo
