#include "team_runs/ContentHash.h"

#include "platform/loadModule.h"
#include "team_runs/Digest.h"
#include "team_runs/Tree.h"

#include <gtest/gtest.h>

#include <fcntl.h>

#include <QCryptographicHash>

namespace orvo {
namespace {

using test::noise;
using test::Tree;

QByteArray expected(const QByteArray& content) {
    return QCryptographicHash::hash(content, QCryptographicHash::Sha256);
}

TEST(ContentHash, TheModulesDigestIsSHA256) {
    const auto make =
        reinterpret_cast<RunFiles::DigestFunction>(loadModule("orvo_hashes", RunFiles::digestSymbol));
    ASSERT_NE(make, nullptr);
    const std::unique_ptr<RunFiles::Digest> digest(make());
    // In pieces that begin and end anywhere in a block; used again after each result.
    const QByteArray content = noise(400, 1);
    for (qsizetype size = 0; size <= content.size(); ++size) {
        const qsizetype first = size / 3;
        const qsizetype second = size / 2 - first;
        digest->add(content.constData(), static_cast<size_t>(first));
        digest->add(content.constData() + first, static_cast<size_t>(second));
        digest->add(content.constData() + first + second, static_cast<size_t>(size - first - second));
        ASSERT_EQ(digest->take(), expected(content.left(size))) << size;
    }
}

TEST(ContentHash, TwoFilesAtOnceMayDifferInLength) {
    const Tree tree;
    for (const auto& [first, second] :
         {std::pair(0, 1), std::pair(131'072, 131'072), std::pair(131'073, 10), std::pair(63, 5'000'000)}) {
        const QByteArray left = noise(first, 4);
        const QByteArray right = noise(second, 5);
        tree.write("left", left);
        tree.write("right", right);
        const FileDescriptor leftFile(open(tree.path("left").bytes().constData(), O_RDONLY | O_CLOEXEC));
        const FileDescriptor rightFile(open(tree.path("right").bytes().constData(), O_RDONLY | O_CLOEXEC));
        const auto digits = RunFiles::hashDescriptors(leftFile.number(), rightFile.number());
        ASSERT_TRUE(digits);
        EXPECT_EQ(*digits, std::pair(expected(left).toHex(), expected(right).toHex()));
    }
    std::stop_source stop;
    stop.request_stop();
    const FileDescriptor file(open(tree.path("left").bytes().constData(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(RunFiles::hashDescriptors(file.number(), file.number(), stop.get_token()).error(), ECANCELED);
}

}  // namespace
}  // namespace orvo
