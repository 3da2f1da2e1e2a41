#include "history/HistoryStore.h"

#include "history/HistoryInbox.h"
#include "history/sampleEntry.h"
#include "platform/TemporaryFolder.h"
#include "platform/fake/FakePreferences.h"
#include "platform/linux/FilePreferences.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

using test::sampleEntry;
using test::titlesOf;
using Access = FilePreferences::Access;
using Role = HistoryStore::InboxRole;

TEST(HistoryStore, keepsTheNewestFiftyAlsoOnTheDisk) {
    FakePreferences preferences;
    HistoryStore history(&preferences);
    int changes = 0;
    QObject::connect(&history, &HistoryStore::entriesChanged, [&] { ++changes; });
    for (int i = 1; i <= 51; ++i)
        history.record(sampleEntry(QString::number(i)));
    EXPECT_EQ(changes, 51);
    ASSERT_EQ(history.entries().size(), 50);
    EXPECT_EQ(history.entries().first().title, QStringLiteral("51"));
    EXPECT_EQ(history.entries().last().title, QStringLiteral("2"));
    EXPECT_EQ(HistoryStore(&preferences).entries(), history.entries());
}

TEST(HistoryStore, cutsLongOutput) {
    HistoryStore history(nullptr);
    history.record(sampleEntry(QStringLiteral("long"), QString(40'000, u'a') + QString(60'000, u'b')));
    EXPECT_EQ(history.entries()[0].output, QString(60'000, u'b'));
}

TEST(HistoryStore, aStoredValueThatIsNoListIsEmptyAndKeptAside) {
    const QByteArray stored = R"([{"id":"x"}])";
    FakePreferences preferences;
    preferences.preset("history", stored);
    HistoryStore history(&preferences);
    EXPECT_TRUE(history.entries().isEmpty());
    EXPECT_EQ(preferences.value(preference::history), stored);
    history.record(sampleEntry(QStringLiteral("a")));
    EXPECT_EQ(preferences.setAside().value("history"), PreferenceValue(stored));
    EXPECT_EQ(HistoryStore(&preferences).entries().size(), 1);
}

TEST(HistoryStore, clearingStoresAnEmptyList) {
    FakePreferences preferences;
    HistoryStore history(&preferences);
    history.record(sampleEntry(QStringLiteral("a")));
    int changes = 0;
    QObject::connect(&history, &HistoryStore::entriesChanged, [&] { ++changes; });
    history.clear();
    history.clear();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(preferences.value(preference::history), QByteArray("[]"));
}

TEST(HistoryStore, whatCannotBeStoredStaysForThisRun) {
    FakePreferences preferences;
    preferences.refuseWrites(Error{QStringLiteral("POSIX"), 28, QStringLiteral("No space left on device")});
    HistoryStore history(&preferences);
    history.record(sampleEntry(QStringLiteral("a")));
    EXPECT_EQ(history.entries().size(), 1);
}

/// A folder with preferences and inbox, as window and command line share it.
class SharedHistoryTest : public testing::Test {
protected:
    test::TemporaryFolder m_temporary;
    FilePath m_folder = m_temporary.child("orvo-ai");
    HistoryInbox m_inbox{m_folder.child("history.pending")};
};

TEST_F(SharedHistoryTest, aCommandLineRunReachesTheOpenWindow) {
    FilePreferences windowPreferences(m_folder, Access::ReadWrite);
    HistoryStore window(&windowPreferences);
    window.record(sampleEntry(QStringLiteral("window")));
    window.attachInbox(m_inbox, Role::Merge);
    // It is stored on another thread.
    ASSERT_TRUE(test::waitFor(
        [&] { return FilePreferences(m_folder, Access::ReadOnly).value(preference::history).has_value(); }));

    FilePreferences linePreferences(m_folder, Access::ReadOnly);
    HistoryStore line(&linePreferences);
    line.attachInbox(m_inbox, Role::Append);
    for (const char* title : {"one", "two", "three"}) {
        line.record(sampleEntry(QLatin1String(title), QString(70'000, u'o')));
        ASSERT_TRUE(test::waitFor([&] { return window.entries().first().title == QLatin1String(title); }));
    }
    EXPECT_EQ(titlesOf(line.entries()), QStringLiteral("three two one window"));
    EXPECT_EQ(window.entries(), line.entries());
    EXPECT_EQ(window.entries().first().output.size(), 60'000);
    EXPECT_TRUE(m_inbox.entries().isEmpty());
    const FilePreferences stored(m_folder, Access::ReadOnly);
    EXPECT_EQ(decodeHistory(stored.value(preference::history).value_or("")), window.entries());
}

TEST_F(SharedHistoryTest, withoutAWindowRunsAreShownFromTheInboxAndTakenAtTheNextStart) {
    for (const char* title : {"one", "two"}) {
        FilePreferences preferences(m_folder, Access::ReadOnly);
        HistoryStore line(&preferences);
        line.attachInbox(m_inbox, Role::Append);
        line.record(sampleEntry(QLatin1String(title)));
    }
    FilePreferences readOnly(m_folder, Access::ReadOnly);
    HistoryStore line(&readOnly);
    line.attachInbox(m_inbox, Role::Append);
    EXPECT_EQ(titlesOf(line.entries()), QStringLiteral("two one"));

    FilePreferences preferences(m_folder, Access::ReadWrite);
    HistoryStore window(&preferences);
    window.attachInbox(m_inbox, Role::Merge);
    EXPECT_EQ(window.entries(), line.entries());
    EXPECT_TRUE(m_inbox.entries().isEmpty());
}

TEST_F(SharedHistoryTest, theInboxIsEmptiedOnlyWhenTheListIsStored) {
    ASSERT_TRUE(m_inbox.append(sampleEntry(QStringLiteral("a"))));
    FakePreferences preferences;
    preferences.refuseWrites(Error{QStringLiteral("POSIX"), 28, QStringLiteral("No space left on device")});
    {
        HistoryStore window(&preferences);
        window.attachInbox(m_inbox, Role::Merge);
        EXPECT_EQ(window.entries().size(), 1);
    }
    EXPECT_EQ(m_inbox.entries().size(), 1);
    preferences.refuseWrites(std::nullopt);
    HistoryStore window(&preferences);
    window.attachInbox(m_inbox, Role::Merge);
    EXPECT_EQ(HistoryStore(&preferences).entries().size(), 1);
    EXPECT_TRUE(m_inbox.entries().isEmpty());
}

}  // namespace
}  // namespace orvo
