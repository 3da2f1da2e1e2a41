#include "history/HistoryInbox.h"
#include "history/HistoryStore.h"
#include "history/sampleEntry.h"
#include "platform/fake/FakeClock.h"
#include "platform/linux/FilePreferences.h"
#include "platform/listFolder.h"
#include "support/QtTestMain.h"
#include "support/WaitFor.h"
#include "team_runs/Apply.h"
#include "team_runs/ApplyJournal.h"
#include "team_runs/Changes.h"
#include "team_runs/FakeTeamRunHost.h"
#include "team_runs/RunStore.h"
#include "team_runs/SmallDisk.h"
#include "team_runs/TeamRuns.h"
#include "team_runs/Tree.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <cerrno>
#include <optional>
#include <ostream>

namespace orvo {
namespace {

using test::connector;
using test::FakeTeamRunHost;
using test::SmallDisk;
using test::Tree;
using test::waitFor;
using Drawing = QMap<QByteArray, QByteArray>;

const QString full = QStringLiteral(": No space left on device");
const QString task = QStringLiteral("task");

QString& whyNoDisk() {
    static QString sentence;
    return sentence;
}

/// A full file system at "disk", an ordinary one beside it.
class FullDisk : public testing::Test {
protected:
    void SetUp() override {
        if (!whyNoDisk().isEmpty()) GTEST_SKIP() << qPrintable(whyNoDisk());
        insertDisk();
    }
    void insertDisk(int inodes = 1000) {
        m_disk.reset();
        m_tree.makeFolder("disk");
        m_disk.emplace(m_tree.path("disk"), inodes);
    }
    bool holdsTemporary(const QByteArray& root) const {
        const QList<QByteArray> names = m_tree.drawing(root).keys();
        return std::ranges::any_of(names, [](const QByteArray& name) { return name.contains(".orvo-"); });
    }

    Tree m_tree;
    std::optional<SmallDisk> m_disk;
};

// Team runs

/// Runs are kept on the full disk, the project is elsewhere.
class FullDiskRuns : public FullDisk {
protected:
    void SetUp() override {
        FullDisk::SetUp();
        if (IsSkipped()) return;
        m_tree.write("project/big", QByteArray(400'000, 'b'));
        m_tree.write("project/sub/small", "s", 0755);
        m_project = m_tree.drawing("project");
        m_host.engine = &m_engine;
        m_host.prompt = task;
    }
    void TearDown() override { m_host.engine = nullptr; }

    bool prepare(const QList<Provider>& providers) {
        m_host.notices.clear();
        m_engine.startTeamRun(task, providers, m_tree.path("project"));
        return waitFor([this] { return !m_engine.preparingRun(); });
    }
    bool sessionsEnd() {
        return waitFor([this] { return m_host.finished == static_cast<int>(m_host.sessions.size()); });
    }
    void expectRefusedWithoutTrace() {
        ASSERT_EQ(m_host.notices.size(), 1);
        EXPECT_TRUE(m_host.notices[0].endsWith(full)) << qPrintable(m_host.notices[0]);
        EXPECT_TRUE(m_engine.teamRuns().isEmpty());
        EXPECT_FALSE(m_engine.selectedRunID());
        EXPECT_TRUE(m_host.sessions.empty());
        EXPECT_EQ(m_host.prompt, task);
        EXPECT_TRUE(waitFor(
            [this] { return listFolder(m_tree.path("disk/Runs")).value_or(QList<QByteArray>()).isEmpty(); }));
        EXPECT_EQ(m_tree.drawing("project"), m_project);
    }

    Drawing m_project;
    FakeClock m_clock;
    FakeTeamRunHost m_host;
    TeamRuns m_engine{m_host, m_clock, m_tree.path("disk/Runs")};
};

TEST_F(FullDiskRuns, APreparationSaysSoLeavesNothingAndASmallerOneSucceeds) {
    const Provider first = connector("a", "exit 0");
    const Provider second = connector("b", "exit 0");
    // A baseline and two copies of 400 KB, where a baseline and one copy have room.
    ASSERT_TRUE(prepare({first, second}));
    expectRefusedWithoutTrace();
    EXPECT_TRUE(m_host.notices[0].contains(QStringLiteral("big")));
    ASSERT_TRUE(prepare({first}));
    ASSERT_EQ(m_engine.teamRuns().size(), 1);
    ASSERT_TRUE(sessionsEnd());
    EXPECT_EQ(m_engine.copyState(m_engine.teamRuns()[0].copies[0]), CopyState::Finished);
}

TEST_F(FullDiskRuns, WithoutRoomForAFileOrFolderAPreparationSaysWhich) {
    const Provider provider = connector("a", "exit 0");
    int refusals = 0;
    for (int inodes = 1; m_engine.teamRuns().isEmpty(); ++inodes) {
        SCOPED_TRACE(inodes);
        ASSERT_LT(inodes, 30);
        insertDisk(inodes);
        ASSERT_TRUE(prepare({provider}));
        if (!m_engine.teamRuns().isEmpty()) break;
        expectRefusedWithoutTrace();
        ++refusals;
        if (HasFailure()) return;
    }
    // The runs folder, the run, its mark, two copies of a folder with two files.
    EXPECT_GE(refusals, 10);
    ASSERT_TRUE(sessionsEnd());
}

TEST_F(FullDiskRuns, ARunGoesOnWhenNothingOfItsEndCanBeWritten) {
    ASSERT_TRUE(prepare({connector("a", "read -r l; echo answered; exit 5")}));
    ASSERT_EQ(m_engine.teamRuns().size(), 1);
    const TeamRun recorded = m_engine.teamRuns()[0];
    m_host.notices.clear();
    m_disk->fill();
    m_host.sessions[0]->send(QStringLiteral("\n"));
    ASSERT_TRUE(sessionsEnd());
    ASSERT_EQ(m_host.notices.size(), 1);
    EXPECT_EQ(m_host.notices[0], QStringLiteral("Could not save the run record: run.json") + full);

    const TeamRun run = m_engine.teamRuns()[0];
    EXPECT_EQ(run.copies[0].exitCode, 5);
    EXPECT_TRUE(m_engine.runOutput(run.copies[0], run).contains(QStringLiteral("answered")));
    EXPECT_EQ(RunStore::loadRun(run.root), recorded) << "the last one that could be written";
    EXPECT_FALSE(holdsTemporary("disk/Runs"));

    // The next record that has room brings it up to date.
    m_disk->clear();
    m_tree.remove("project/big");
    ASSERT_TRUE(prepare({connector("a", "exit 0")}));
    ASSERT_EQ(m_engine.teamRuns().size(), 2);
    EXPECT_EQ(RunStore::loadRun(run.root), run);
    ASSERT_TRUE(sessionsEnd());
}

// Apply

struct Places {
    const char* name;
    QByteArray project;
    QByteArray runs;

    friend void PrintTo(const Places& places, std::ostream* stream) { *stream << places.name; }
};

class FullDiskApply : public FullDisk, public testing::WithParamInterface<Places> {};

TEST_P(FullDiskApply, EveryFileStaysUntilThereIsRoomForAll) {
    const Places& at = GetParam();
    const QByteArray baseline = at.runs + "/R/baseline";
    const QByteArray copy = at.runs + "/R/copy";
    // Of several pages each, so that the disk is full in the middle of one and before any.
    for (const QByteArray& root : {baseline, at.project}) {
        m_tree.write(root + "/edit", QByteArray(10'000, 'o'));
        m_tree.write(root + "/sub/drop", QByteArray(6'000, 'd'));
        m_tree.write(root + "/thing", "file");
    }
    m_tree.write(copy + "/edit", QByteArray(20'000, 'n'));
    m_tree.write(copy + "/thing/inner", "inner");
    m_tree.write(copy + "/fresh/file", QByteArray(9'000, 'a'), 0600);
    const auto changes = RunFiles::changes(m_tree.path(baseline), m_tree.path(copy));
    ASSERT_TRUE(changes);
    ASSERT_EQ(changes->size(), 5);
    const Drawing before = m_tree.drawing(at.project);

    int refusals = 0;
    for (int pages = 0;; ++pages) {
        SCOPED_TRACE(pages);
        ASSERT_LT(pages, 60);
        m_disk->fill(pages);
        const QByteArray backup = at.runs + "/R/backup-" + QByteArray::number(pages);
        const auto applied =
            RunFiles::apply(*changes, m_tree.path(at.project), m_tree.path(copy), m_tree.path(backup));
        m_disk->clear();
        EXPECT_TRUE(RunFiles::takeUnfinishedApplies(m_tree.path(at.runs)).isEmpty());
        EXPECT_FALSE(holdsTemporary(at.project));
        if (applied) {
            EXPECT_EQ(m_tree.read(backup + "/edit"), QByteArray(10'000, 'o'));
            EXPECT_EQ(m_tree.read(backup + "/sub/drop"), QByteArray(6'000, 'd'));
            EXPECT_EQ(m_tree.read(backup + "/thing"), "file");
            break;
        }
        EXPECT_TRUE(applied.error().message.endsWith(full)) << qPrintable(applied.error().message);
        EXPECT_EQ(m_tree.drawing(at.project), before);
        if (HasFailure()) return;
        ++refusals;
        // What is backed up stays, but this sweep wants the disk as it was.
        m_tree.remove(backup);
    }
    EXPECT_GE(refusals, 5);
    Drawing after = m_tree.drawing(at.project);
    after.remove("sub");
    EXPECT_EQ(after, m_tree.drawing(copy));
}

INSTANTIATE_TEST_SUITE_P(FullDisk, FullDiskApply,
                         testing::Values(Places{"OfTheProject", "disk/project", "Runs"},
                                         Places{"OfTheRuns", "project", "disk/Runs"},
                                         Places{"OfBoth", "disk/project", "disk/Runs"}),
                         [](const auto& place) { return std::string(place.param.name); });

// Preferences and history

using FullDiskPreferences = FullDisk;

/// Records, and waits for what is left to another thread: another data value comes after it.
void recordNow(HistoryStore& history, FilePreferences& preferences, const HistoryEntry& entry) {
    history.record(entry);
    EXPECT_TRUE(preferences.remove(preference::petImage));
}

TEST_F(FullDiskPreferences, WhatIsStoredStaysWhatIsNewIsKeptAndStoredWithTheNextRoom) {
    const FilePath folder = m_tree.path("disk/orvo-ai");
    FilePreferences preferences(folder, FilePreferences::Access::ReadWrite);
    HistoryStore history(&preferences);
    ASSERT_TRUE(preferences.setValue(preference::preset, QStringLiteral("before")));
    recordNow(history, preferences, test::sampleEntry(QStringLiteral("one")));
    const Drawing stored = m_tree.drawing("disk/orvo-ai");

    // The large value fails in its middle, the small one at once.
    m_disk->fill(2);
    recordNow(history, preferences, test::sampleEntry(QStringLiteral("two"), QString(50'000, u'o')));
    m_disk->clear();
    m_disk->fill();
    const auto written = preferences.setValue(preference::preset, QStringLiteral("meanwhile"));
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().message, QStringLiteral("preferences.json") + full);
    EXPECT_EQ(m_tree.drawing("disk/orvo-ai"), stored);
    EXPECT_EQ(preferences.value(preference::preset), QStringLiteral("meanwhile"));
    EXPECT_EQ(test::titlesOf(history.entries()), QStringLiteral("two one"));

    m_disk->clear();
    recordNow(history, preferences, test::sampleEntry(QStringLiteral("three")));
    ASSERT_TRUE(preferences.setValue(preference::keepAwake, true));
    FilePreferences next(folder, FilePreferences::Access::ReadOnly);
    EXPECT_EQ(next.value(preference::preset), QStringLiteral("meanwhile"));
    EXPECT_EQ(HistoryStore(&next).entries(), history.entries());
    EXPECT_EQ(history.entries().size(), 3);
}

TEST_F(FullDiskPreferences, AnEntryForTheWindowIsLeftWholeOrNotAtAll) {
    const HistoryInbox inbox(m_tree.path("disk/orvo-ai/history.pending"));
    ASSERT_TRUE(inbox.append(test::sampleEntry(QStringLiteral("one"))));
    const Drawing before = m_tree.drawing("disk/orvo-ai");
    const HistoryEntry large = test::sampleEntry(QStringLiteral("two"), QString(50'000, u'o'));
    for (const int pages : {0, 1, 5}) {
        m_disk->fill(pages);
        const auto added = inbox.append(large);
        m_disk->clear();
        ASSERT_FALSE(added);
        EXPECT_EQ(added.error().code, ENOSPC);
        EXPECT_EQ(m_tree.drawing("disk/orvo-ai"), before);
    }
    ASSERT_TRUE(inbox.append(large));
    EXPECT_EQ(test::titlesOf(inbox.entries()), QStringLiteral("one two"));

    // A window that cannot store the list leaves the inbox as it is.
    FilePreferences preferences(m_tree.path("disk/orvo-ai"), FilePreferences::Access::ReadWrite);
    m_disk->fill();
    {
        HistoryStore window(&preferences);
        window.attachInbox(inbox, HistoryStore::InboxRole::Merge);
        EXPECT_EQ(test::titlesOf(window.entries()), QStringLiteral("two one"));
    }
    EXPECT_EQ(inbox.entries().size(), 2);
}

}  // namespace
}  // namespace orvo

int main(int argc, char** argv) {
    orvo::test::isolateEnvironment();
    orvo::whyNoDisk() = orvo::test::SmallDisk::prepare();
    const QCoreApplication application(argc, argv);
    return orvo::test::runAllTests(argc, argv);
}
