#include "team_runs/Changes.h"
#include "team_runs/ContentHash.h"
#include "team_runs/Tree.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>

namespace orvo {
namespace {

using test::Tree;

QByteArray hashOf(const QByteArray& content) {
    RunFiles::ContentHash hash;
    hash.add(content.constData(), static_cast<size_t>(content.size()));
    return hash.digits();
}

QList<FileChange> changesOf(const Tree& tree) {
    const auto changes = RunFiles::changes(tree.path("baseline"), tree.path("copy"));
    if (changes) return *changes;
    ADD_FAILURE() << qPrintable(changes.error().message);
    return {};
}

TEST(Changes, AdditionsEditsAndDeletionsAreFoundInPathOrder) {
    const Tree tree;
    tree.write("baseline/a", "a");
    tree.write("baseline/b", "b", 0600);
    tree.write("baseline/same", "same");
    tree.write("copy/a", "A");
    tree.write("copy/c", "c", 0755);
    tree.write("copy/same", "same");
    EXPECT_EQ(changesOf(tree), (QList<FileChange>{
                                   {"a", hashOf("a"), hashOf("A"), 0644, 0644},
                                   {"b", hashOf("b"), std::nullopt, 0600, std::nullopt},
                                   {"c", std::nullopt, hashOf("c"), std::nullopt, 0755},
                               }));
}

TEST(Changes, ModesCountAndEmptyFilesToo) {
    const Tree tree;
    tree.write("baseline/run.sh", "x", 0644);
    tree.write("copy/run.sh", "x", 0755);
    tree.write("baseline/empty", "", 0644);
    tree.write("copy/empty", "", 0600);
    tree.write("baseline/emptied", "text");
    tree.write("copy/emptied", "");
    tree.write("baseline/none", "");
    tree.write("copy/none", "");
    EXPECT_EQ(changesOf(tree), (QList<FileChange>{
                                   {"emptied", hashOf("text"), hashOf(""), 0644, 0644},
                                   {"empty", hashOf(""), hashOf(""), 0644, 0600},
                                   {"run.sh", hashOf("x"), hashOf("x"), 0644, 0755},
                               }));
}

TEST(Changes, AFileWhereAFolderWasAndALinkWhereAFileWas) {
    const Tree tree;
    tree.write("baseline/x/inner", "1");
    tree.write("copy/x", "2");
    tree.write("baseline/plain", "3");
    tree.makeFolder("copy");
    tree.link("copy/plain", "x");
    EXPECT_EQ(changesOf(tree), (QList<FileChange>{
                                   {"plain", hashOf("3"), std::nullopt, 0644, std::nullopt},
                                   {"x", std::nullopt, hashOf("2"), std::nullopt, 0644},
                                   {"x/inner", hashOf("1"), std::nullopt, 0644, std::nullopt},
                               }));
}

// Against the plain rule, on trees small enough to hash everything.
TEST(Changes, EqualWhatHashingEverythingFinds) {
    QRandomGenerator random(20'01);
    for (int round = 0; round < 20; ++round) {
        const Tree tree;
        QMap<QByteArray, FileChange> all;
        for (const char* side : {"baseline", "copy"}) {
            const bool isBaseline = side == std::string_view("baseline");
            tree.makeFolder(side);
            for (int i = 0; i < 40; ++i) {
                if (random.bounded(4) == 0) continue;
                const QByteArray path =
                    QByteArray("d") + char('0' + i % 7) + "/n" + QByteArray::number(i) + "\xff";
                QByteArray content(qsizetype{random.bounded(3)} * 64 * 1024, 'x');
                if (!content.isEmpty() && random.bounded(2) == 0) content.back() = 'y';
                const int mode = random.bounded(8) == 0 ? 0755 : 0644;
                tree.write(QByteArray(side) + '/' + path, content, mode);
                FileChange& change = all[path];
                change.path = path;
                (isBaseline ? change.before : change.after) = hashOf(content);
                (isBaseline ? change.beforeMode : change.afterMode) = mode;
            }
        }
        QList<FileChange> expected;
        for (const FileChange& change : all) {
            if (change.before != change.after || change.beforeMode != change.afterMode)
                expected.append(change);
        }
        EXPECT_EQ(changesOf(tree), expected);
    }
}

// Its halves are compared, and its two sides hashed, at the same time.
TEST(Changes, ALargeFileThatDiffersHasTheHashOfEachSide) {
    const QByteArray before(5'000'001, 'x');
    for (const qsizetype at : {qsizetype{0}, before.size() / 2 - 1, before.size() / 2, before.size() - 1}) {
        const Tree tree;
        QByteArray after = before;
        after[at] = 'y';
        tree.write("baseline/large", before);
        tree.write("copy/large", after);
        tree.write("baseline/longer", before);
        tree.write("copy/longer", before + 'x');
        tree.write("baseline/same", before);
        tree.write("copy/same", before);
        EXPECT_EQ(changesOf(tree), (QList<FileChange>{
                                       {"large", hashOf(before), hashOf(after), 0644, 0644},
                                       {"longer", hashOf(before), hashOf(before + 'x'), 0644, 0644},
                                   }))
            << at;
    }
}

TEST(Changes, TellsHowManyFilesHaveBeenExamined) {
    Tree tree;
    for (int i = 0; i < 500; ++i)
        tree.write("baseline/" + QByteArray::number(i), "low");
    tree.write("copy/1", "high");
    QList<int> told;
    const auto changes =
        RunFiles::changes(tree.path("baseline"), tree.path("copy"), {}, [&](int files, int all) {
            EXPECT_EQ(all, 500);
            told.append(files);
        });
    ASSERT_TRUE(changes);
    ASSERT_FALSE(told.isEmpty());
    EXPECT_TRUE(std::ranges::is_sorted(told));
    EXPECT_EQ(told.last(), 500);
}

TEST(Changes, AMissingCopyIsAFailureNotAListOfRemovals) {
    const Tree tree;
    tree.write("baseline/a", "a");
    const auto changes = RunFiles::changes(tree.path("baseline"), tree.path("copy"));
    ASSERT_FALSE(changes);
    EXPECT_EQ(changes.error().message, QStringLiteral("This project folder no longer exists."));
}

TEST(FileChange, ListsSurviveJSON) {
    const QList<FileChange> changes = {
        {"caf\xe9", hashOf("1"), std::nullopt, 0644, std::nullopt},
        {"plain", hashOf("1"), hashOf("2"), 0644, 0755},
        {"new", std::nullopt, hashOf("2"), std::nullopt, 0600},
    };
    QJsonArray written;
    for (const FileChange& change : changes)
        written.append(jsonOf(change));
    const QByteArray json = QJsonDocument(written).toJson(QJsonDocument::Compact);
    EXPECT_EQ(decodeChanges(json), changes);
    EXPECT_EQ(changes[0].kind(), FileChange::Kind::Removed);
    EXPECT_EQ(changes[1].kind(), FileChange::Kind::Changed);
    EXPECT_EQ(changes[2].kind(), FileChange::Kind::Added);
    EXPECT_TRUE(json.contains(R"("pathBytes":"Y2Fm6Q==")"));
    for (const char* unreadable :
         {"", "{}", "[1]", R"([{"path":1}])", R"([{"path":"a","before":1}])",
          R"([{"path":"a","beforeMode":1.5}])", R"([{"path":"a","pathBytes":"?"}])"}) {
        EXPECT_FALSE(decodeChanges(unreadable).has_value()) << unreadable;
    }
}

}  // namespace
}  // namespace orvo
