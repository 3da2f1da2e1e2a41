#include "team_runs/RunStore.h"
#include "team_runs/Tree.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace orvo {
namespace {

using test::Tree;

TeamRun exampleRun(const FilePath& root, double created = 785'000'000.25) {
    TeamRun run{QUuid::createUuid(),
                QStringLiteral("Tidy \"up\"\n"),
                FilePath("/home/me/project"),
                root,
                created,
                {}};
    run.copies.append(
        {QUuid::createUuid(), QStringLiteral("codex"), root.child("A"), QUuid::createUuid(), 3});
    run.copies.append({QUuid::createUuid(), QStringLiteral("claude"), root.child("B"), {}, {}});
    return run;
}

QJsonObject jsonOf(const TeamRun& run) {
    return QJsonDocument::fromJson(encodeTeamRun(run)).object();
}

TEST(TeamRun, IsStoredUnderExactlyItsKeys) {
    const TeamRun run = exampleRun(FilePath("/data/Runs/X"));
    const QJsonObject json = jsonOf(run);
    EXPECT_EQ(json.keys().join(u','), QStringLiteral("copies,created,id,project,prompt,root"));
    EXPECT_EQ(json[u"created"].toDouble(), 785'000'000.25);
    EXPECT_TRUE(exampleRun(FilePath("/r"), 1e300).createdTime().isValid());
    EXPECT_EQ(json[u"id"].toString(), run.id.toString(QUuid::WithoutBraces).toUpper());
    const QJsonArray copies = json[u"copies"].toArray();
    EXPECT_EQ(copies[0].toObject().keys().join(u','),
              QStringLiteral("directory,exitCode,id,provider,session"));
    EXPECT_EQ(copies[1].toObject().keys().join(u','), QStringLiteral("directory,id,provider"));
    EXPECT_EQ(decodeTeamRun(encodeTeamRun(run)), run);
}

TEST(TeamRun, PathsThatAreNotTextAreKeptAsBytes) {
    TeamRun run = exampleRun(FilePath("/data/\xff/X"));
    run.project = FilePath("/home/caf\xe9");
    const QJsonObject json = jsonOf(run);
    EXPECT_EQ(json[u"project"].toString(), QStringLiteral("/home/caf\uFFFD"));
    EXPECT_EQ(QByteArray::fromBase64(json[u"projectBytes"].toString().toLatin1()), "/home/caf\xe9");
    EXPECT_EQ(decodeTeamRun(encodeTeamRun(run)), run);
}

TEST(TeamRun, ARecordThatLacksSomethingOrHasAnotherTypeIsNone) {
    const QJsonObject good = jsonOf(exampleRun(FilePath("/data/X")));
    const auto decodes = [](const QJsonObject& object) {
        return decodeTeamRun(QJsonDocument(object).toJson()).has_value();
    };
    ASSERT_TRUE(decodes(good));
    for (const QString& key : good.keys()) {
        QJsonObject lacking = good;
        lacking.remove(key);
        EXPECT_FALSE(decodes(lacking)) << qPrintable(key);
        QJsonObject odd = good;
        odd[key] = true;
        EXPECT_FALSE(decodes(odd)) << qPrintable(key);
    }
    const auto withCopyField = [&good](const QString& key, const QJsonValue& value) {
        QJsonObject object = good;
        QJsonArray copies = good[u"copies"].toArray();
        QJsonObject copy = copies[0].toObject();
        copy[key] = value;
        copies[0] = copy;
        object[u"copies"] = copies;
        return object;
    };
    for (const QJsonValue& value : {QJsonValue(1.5), QJsonValue(9223372036854775808.0), QJsonValue(true),
                                    QJsonValue(QStringLiteral("1"))}) {
        EXPECT_FALSE(decodes(withCopyField(QStringLiteral("exitCode"), value)));
    }
    EXPECT_FALSE(decodes(withCopyField(QStringLiteral("session"), QStringLiteral("not-a-uuid"))));
    EXPECT_FALSE(decodes(withCopyField(QStringLiteral("directoryBytes"), QStringLiteral("%%%"))));
    EXPECT_TRUE(decodes(withCopyField(QStringLiteral("session"), QJsonValue())));
    EXPECT_TRUE(decodes(withCopyField(QStringLiteral("exitCode"), -1)));
}

TEST(RunStore, LoadsNewestFirstAndADamagedRecordHidesOnlyItself) {
    const Tree tree;
    EXPECT_FALSE(RunStore::load(tree.path("Runs")).has_value());
    QList<TeamRun> runs;
    for (const double created : {200.5, 300.0, 100.0}) {
        const QByteArray name = "Runs/" + QByteArray::number(created);
        tree.makeFolder(name);
        runs.append(exampleRun(tree.path(name), created));
        ASSERT_TRUE(RunStore::save(runs.back()));
    }
    tree.write("Runs/plain file", "x");
    tree.write("Runs/cut/run.json", encodeTeamRun(runs[0]).chopped(5));
    tree.write("Runs/list/run.json", "[]");
    tree.makeFolder("Runs/folder/run.json");
    tree.makeFolder("Runs/pipe");
    tree.pipe("Runs/pipe/run.json");

    const auto loaded = RunStore::load(tree.path("Runs"));
    ASSERT_TRUE(loaded);
    EXPECT_EQ(*loaded, (QList<TeamRun>{runs[1], runs[0], runs[2]}));
    EXPECT_EQ(tree.mode("Runs/300/run.json"), 0600);
}

TEST(RunStore, ADamagedRecordIsPutAsideBeforeItIsOverwritten) {
    const Tree tree;
    tree.write("X/run.json", "{half");
    ASSERT_TRUE(RunStore::save(exampleRun(tree.path("X"))));
    EXPECT_EQ(tree.read("X/run.json.damaged"), "{half");
    ASSERT_TRUE(RunStore::save(exampleRun(tree.path("X"))));
    EXPECT_EQ(tree.read("X/run.json.damaged"), "{half");
    EXPECT_FALSE(RunStore::save(exampleRun(tree.path("missing"))));
}

TEST(RunStore, KeepsTheEndOfAnOutputWithinItsBounds) {
    const Tree tree;
    const TeamRun run = exampleRun(tree.path());
    EXPECT_FALSE(RunStore::output(run, run.copies[0]).has_value());
    const QString accented = QStringLiteral("e\u0301");
    ASSERT_TRUE(RunStore::saveOutput(run, run.copies[0], u'x' + accented.repeated(60'000)));
    EXPECT_EQ(RunStore::output(run, run.copies[0]), accented.repeated(60'000));
    // One character may carry any number of marks; the bytes are bounded too.
    ASSERT_TRUE(RunStore::saveOutput(run, run.copies[0],
                                     QChar(u'e') + QString(2'000'000, QChar(0x301)) + QStringLiteral("end")));
    const auto kept = RunStore::output(run, run.copies[0]);
    ASSERT_TRUE(kept);
    EXPECT_LE(kept->toUtf8().size(), 1024 * 1024);
    EXPECT_GT(kept->toUtf8().size(), 1024 * 1024 - 4);
    EXPECT_TRUE(kept->endsWith(u"\u0301end"));
    EXPECT_FALSE(kept->contains(QChar::ReplacementCharacter));
}

}  // namespace
}  // namespace orvo
