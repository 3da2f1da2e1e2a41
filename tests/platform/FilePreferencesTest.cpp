#include "platform/linux/FilePreferences.h"

#include "platform/TemporaryFolder.h"
#include "support/FileSizeLimit.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QProcess>
#include <QRandomGenerator>

#include <cmath>
#include <limits>

#include <sys/stat.h>
#include <unistd.h>

namespace orvo {
namespace {

using test::modeOf;
using test::readFile;
using test::TemporaryFolder;
using test::writeFile;
using Names = std::set<std::string>;
using Access = FilePreferences::Access;

TEST(FilePreferences, storeEveryTypeForTheNextStart) {
    const TemporaryFolder temporary;
    const FilePath folder = temporary.child("new").child("orvo-ai");
    const QString text = QStringLiteral("quote \" back\\slash \u00e4\u6f22 \U0001F600\n\t") + QChar(1);
    const QStringList paths{QStringLiteral("/a b"), QString(), QStringLiteral("/c")};
    const QByteArray bytes("\0\xFF binary \n", 11);
    {
        FilePreferences preferences(folder, Access::ReadWrite);
        EXPECT_FALSE(preferences.value(preference::keepAwake));
        ASSERT_TRUE(preferences.setValue(preference::keepAwake, true));
        ASSERT_TRUE(preferences.setValue(preference::preset, text));
        ASSERT_TRUE(preferences.setValue(preference::recentFolders, paths));
        ASSERT_TRUE(preferences.setValue(preference::petImage, bytes));
    }
    const FilePreferences again(folder, Access::ReadWrite);
    EXPECT_EQ(again.value(preference::keepAwake), true);
    EXPECT_EQ(again.value(preference::preset), text);
    EXPECT_EQ(again.value(preference::recentFolders), paths);
    EXPECT_EQ(again.value(preference::petImage), bytes);
    EXPECT_EQ(modeOf(folder), 0700U);
    EXPECT_EQ(modeOf(folder.child("preferences.json")), 0600U);
    EXPECT_EQ(modeOf(folder.child("orvo.pet.image.data")), 0600U);
}

TEST(FilePreferences, storeTogetherWhatChangesTogether) {
    const TemporaryFolder temporary;
    const FilePath folder = temporary.child("orvo-ai");
    FilePreferences preferences(folder, Access::ReadWrite);
    {
        const Preferences::Together together(preferences);
        ASSERT_TRUE(preferences.setValue(preference::keepAwake, true));
        ASSERT_TRUE(preferences.setValue(preference::petX, 3));
        ASSERT_TRUE(preferences.setValue(preference::petImage, QByteArray("picture")));
        ASSERT_TRUE(preferences.remove(preference::keepAwake));
        EXPECT_EQ(preferences.value(preference::petX), 3);
        const FilePreferences meanwhile(folder, Access::ReadOnly);
        EXPECT_FALSE(meanwhile.value(preference::petX));
        EXPECT_EQ(meanwhile.value(preference::petImage), QByteArray("picture")) << "large values do not wait";
    }
    const FilePreferences after(folder, Access::ReadOnly);
    EXPECT_EQ(after.value(preference::petX), 3);
    EXPECT_FALSE(after.value(preference::keepAwake));
    ASSERT_TRUE(preferences.setValue(preference::petY, 4));
    EXPECT_EQ(FilePreferences(folder, Access::ReadOnly).value(preference::petY), 4) << "at once again";
}

TEST(FilePreferences, keepNumbersToTheLastBit) {
    const TemporaryFolder folder;
    const double numbers[] = {0.1,    1.0 / 3,           -1e-308, 5e-324, std::numeric_limits<double>::max(),
                              12.000, 9007199254740993., 1e22,    -0.5};
    for (const double number : numbers) {
        ASSERT_TRUE(FilePreferences(folder.path(), Access::ReadWrite).setValue(preference::petX, number));
        EXPECT_EQ(FilePreferences(folder.path(), Access::ReadOnly).value(preference::petX), number);
    }
    FilePreferences preferences(folder.path(), Access::ReadWrite);
    EXPECT_FALSE(preferences.setValue(preference::petX, std::nan("")));
    EXPECT_FALSE(preferences.setValue(preference::petX, HUGE_VAL));
    EXPECT_EQ(preferences.value(preference::petX), -0.5);
}

TEST(FilePreferences, aWrongTypeCountsAsAbsentAndStaysWithAllThatIsUnknown) {
    const TemporaryFolder folder;
    const FilePath file = folder.child("preferences.json");
    writeFile(file, R"({"terminalFont":"big","keepAwake":1,"recentFolders":["/a",2],"preset":null,
                        "history":[],"accent":"ABCDEF","later":{"version":[1,2.5]}})");
    FilePreferences preferences(folder.path(), Access::ReadWrite);
    EXPECT_FALSE(preferences.value(preference::terminalFont));
    EXPECT_FALSE(preferences.value(preference::keepAwake));
    EXPECT_FALSE(preferences.value(preference::recentFolders));
    EXPECT_FALSE(preferences.value(preference::preset));
    EXPECT_FALSE(preferences.value(preference::history));
    EXPECT_EQ(preferences.value(preference::accent), QStringLiteral("ABCDEF"));

    ASSERT_TRUE(preferences.setValue(preference::keepAwake, true));
    ASSERT_TRUE(preferences.setValue(preference::history, QByteArray("[1]")));
    const QByteArray content = readFile(file).simplified().replace(' ', "");
    EXPECT_EQ(content, R"({"accent":"ABCDEF","keepAwake":true,"later":{"version":[1,2.5]},)"
                       R"("preset":null,"recentFolders":["/a",2],"terminalFont":"big"})");
    EXPECT_EQ(FilePreferences(folder.path(), Access::ReadOnly).value(preference::history), QByteArray("[1]"));
}

TEST(FilePreferences, aDamagedFileIsPutAsideBeforeTheFirstWriteAndNotEarlier) {
    for (const QByteArray& damaged : {QByteArray("{\"keepAwake\": tr"), QByteArray("[]"), QByteArray()}) {
        const TemporaryFolder folder;
        writeFile(folder.child("preferences.json"), damaged);
        writeFile(folder.child("history.data"), "not a list");
        FilePreferences preferences(folder.path(), Access::ReadWrite);
        EXPECT_FALSE(preferences.value(preference::keepAwake));
        preferences.markDamaged(preference::history);
        EXPECT_EQ(folder.names(), (Names{"preferences.json", "history.data"}));

        for (const QString& preset : {QStringLiteral("one"), QStringLiteral("two")}) {
            ASSERT_TRUE(preferences.setValue(preference::preset, preset));
            ASSERT_TRUE(preferences.setValue(preference::history, preset.toUtf8()));
        }
        EXPECT_EQ(readFile(folder.child("preferences.json.damaged")), damaged);
        EXPECT_EQ(readFile(folder.child("history.data.damaged")), "not a list");
        const FilePreferences again(folder.path(), Access::ReadOnly);
        EXPECT_EQ(again.value(preference::preset), QStringLiteral("two"));
        EXPECT_EQ(again.value(preference::history), QByteArray("two"));
    }
}

TEST(FilePreferences, whatCannotBeReadIsPutAsideToo) {
    const TemporaryFolder folder;
    ASSERT_EQ(mkdir(folder.child("preferences.json").bytes().constData(), 0700), 0);
    ASSERT_EQ(mkfifo(folder.child("history.data").bytes().constData(), 0600), 0);
    FilePreferences preferences(folder.path(), Access::ReadWrite);
    EXPECT_FALSE(preferences.value(preference::history));
    ASSERT_TRUE(preferences.setValue(preference::history, QByteArray("[]")));
    ASSERT_TRUE(preferences.setValue(preference::keepAwake, true));
    EXPECT_EQ(folder.names(), (Names{"preferences.json", "preferences.json.damaged", "history.data",
                                     "history.data.damaged"}));
}

TEST(FilePreferences, readOnlyAccessChangesNothing) {
    const TemporaryFolder folder;
    writeFile(folder.child("preferences.json"), "{\"preset\":\"mirel\"}");
    writeFile(folder.child("history.data"), "junk");
    writeFile(folder.child(".orvo-1.tmp"), "");
    FilePreferences preferences(folder.path(), Access::ReadOnly);
    preferences.markDamaged(preference::history);
    EXPECT_FALSE(preferences.setValue(preference::preset, QStringLiteral("ocean")));
    EXPECT_FALSE(preferences.setValue(preference::history, QByteArray("[]")));
    EXPECT_FALSE(preferences.remove(preference::preset));
    EXPECT_EQ(preferences.value(preference::preset), QStringLiteral("mirel"));
    EXPECT_EQ(preferences.value(preference::history), QByteArray("junk"));
    EXPECT_EQ(folder.names(), (Names{".orvo-1.tmp", "history.data", "preferences.json"}));

    FilePreferences absent(folder.child("absent"), Access::ReadOnly);
    EXPECT_FALSE(absent.value(preference::preset));
    EXPECT_FALSE(folder.names().contains("absent"));
}

TEST(FilePreferences, removeTakesTheValueFromTheDisk) {
    const TemporaryFolder folder;
    FilePreferences preferences(folder.path(), Access::ReadWrite);
    ASSERT_TRUE(preferences.setValue(preference::petX, 3));
    ASSERT_TRUE(preferences.setValue(preference::petImage, QByteArray("png")));
    ASSERT_TRUE(preferences.remove(preference::petX));
    ASSERT_TRUE(preferences.remove(preference::petImage));
    EXPECT_FALSE(preferences.value(preference::petImage));
    EXPECT_EQ(folder.names(), (Names{"preferences.json"}));
    EXPECT_FALSE(FilePreferences(folder.path(), Access::ReadOnly).value(preference::petX));
}

TEST(FilePreferences, anEqualValueIsNotWrittenAgain) {
    const TemporaryFolder folder;
    FilePreferences preferences(folder.path(), Access::ReadWrite);
    ASSERT_TRUE(preferences.setValue(preference::keepAwake, true));
    ASSERT_EQ(unlink(folder.child("preferences.json").bytes().constData()), 0);
    ASSERT_TRUE(preferences.setValue(preference::keepAwake, true));
    ASSERT_TRUE(preferences.remove(preference::petX));
    EXPECT_TRUE(folder.names().empty());
}

TEST(FilePreferences, whatCannotBeStoredHoldsForTheRunAndIsStoredLater) {
    const TemporaryFolder folder;
    // A file where the folder should be: nothing can be stored, whoever runs the test.
    const FilePath home = folder.child("home");
    writeFile(home, "");
    FilePreferences preferences(home.child("orvo-ai"), Access::ReadWrite);
    const Result<void> small = preferences.setValue(preference::preset, QStringLiteral("ocean"));
    const Result<void> data = preferences.setValue(preference::history, QByteArray("[]"));
    ASSERT_FALSE(small);
    ASSERT_FALSE(data);
    EXPECT_FALSE(small.error().message.isEmpty());
    EXPECT_EQ(preferences.value(preference::preset), QStringLiteral("ocean"));
    EXPECT_EQ(preferences.value(preference::history), QByteArray("[]"));

    ASSERT_EQ(unlink(home.bytes().constData()), 0);
    ASSERT_TRUE(preferences.setValue(preference::keepAwake, true));
    EXPECT_EQ(FilePreferences(home.child("orvo-ai"), Access::ReadOnly).value(preference::preset),
              QStringLiteral("ocean"));
}

TEST(FilePreferences, aFullDiskLeavesTheStoredValueAndNoTemporary) {
    const TemporaryFolder folder;
    FilePreferences preferences(folder.path(), Access::ReadWrite);
    ASSERT_TRUE(preferences.setValue(preference::history, QByteArray("[\"old\"]")));
    const auto stored = [&] {
        const test::FileSizeLimit limit(64);
        return preferences.setValue(preference::history, QByteArray(1000, 'n'));
    }();
    EXPECT_FALSE(stored);
    EXPECT_EQ(preferences.value(preference::history), QByteArray(1000, 'n'));
    EXPECT_EQ(readFile(folder.child("history.data")), "[\"old\"]");
    EXPECT_EQ(folder.names(), (Names{"history.data"}));
}

TEST(FilePreferences, surviveAKillAtAnyMoment) {
    const TemporaryFolder folder;
    for (int round = 0; round < 100; ++round) {
        QProcess child;
        child.start(QCoreApplication::applicationDirPath() + QStringLiteral("/write_preferences"),
                    {QString::fromUtf8(folder.path().bytes())});
        ASSERT_TRUE(child.waitForReadyRead());
        // Every other time after a whole round, because on a busy machine none might fit before the kill.
        while (round % 2 == 1 && child.bytesAvailable() < 10)
            ASSERT_TRUE(child.waitForReadyRead());
        usleep(QRandomGenerator::global()->bounded(10'000U));
        child.kill();
        ASSERT_TRUE(child.waitForFinished());
        ASSERT_EQ(child.exitStatus(), QProcess::CrashExit);
        const FilePreferences preferences(folder.path(), Access::ReadOnly);
        const auto data = preferences.value(preference::history);
        if (data) {
            ASSERT_TRUE(data->endsWith('.') && data->count('h') == data->size() - 1) << "round " << round;
        }
        if (folder.names().contains("preferences.json")) {
            ASSERT_TRUE(preferences.value(preference::petX)) << "round " << round;
        }
        ASSERT_FALSE(folder.names().contains("preferences.json.damaged")) << "round " << round;
    }
    EXPECT_TRUE(FilePreferences(folder.path(), Access::ReadOnly).value(preference::history));
}

TEST(FilePreferencesSoon, keepsNobodyWaitingAndLosesNothing) {
    const TemporaryFolder temporary;
    const FilePath folder = temporary.child("orvo-ai");
    const auto onDisk = [&] {
        return FilePreferences(folder, Access::ReadOnly).value(preference::history);
    };
    const QByteArray large(4'000'000, 'x');
    {
        FilePreferences preferences(folder, Access::ReadWrite);
        int stored = 0;
        for (int turn = 0; turn < 20; ++turn) {
            preferences.setValueSoon(
                preference::history, large + QByteArray::number(turn),
                [&stored](const Result<void>& written) { stored += written ? 1 : -1000; });
            EXPECT_EQ(preferences.value(preference::history), large + QByteArray::number(turn));
        }
        ASSERT_TRUE(test::waitFor([&] { return onDisk() == large + "19"; }));
        EXPECT_TRUE(test::waitFor([&] { return stored > 0; }));

        // What is stored at once comes after what was to be stored soon.
        preferences.setValueSoon(preference::history, large);
        EXPECT_TRUE(preferences.setValue(preference::history, "now"));
        EXPECT_EQ(onDisk(), QByteArray("now"));
        preferences.setValueSoon(preference::history, large);
        EXPECT_TRUE(preferences.remove(preference::history));
        EXPECT_FALSE(onDisk());
        EXPECT_FALSE(test::waitFor([&] { return onDisk().has_value(); }, std::chrono::milliseconds(200)));
        preferences.setValueSoon(preference::history, "last");
    }
    EXPECT_EQ(onDisk(), QByteArray("last")) << "the end waits";
}

TEST(FilePreferencesSoon, whatCannotBeStoredIsSaidAndStaysForThisRun) {
    const TemporaryFolder temporary;
    const FilePath file = temporary.child("in the way");
    writeFile(file, "a file where the folder should be");
    FilePreferences preferences(file.child("orvo-ai"), Access::ReadWrite);
    std::optional<Result<void>> stored;
    preferences.setValueSoon(preference::history, "kept",
                             [&stored](const Result<void>& written) { stored = written; });
    ASSERT_TRUE(test::waitFor([&] { return stored.has_value(); }));
    EXPECT_FALSE(*stored);
    EXPECT_EQ(preferences.value(preference::history), QByteArray("kept"));
}

}  // namespace
}  // namespace orvo
