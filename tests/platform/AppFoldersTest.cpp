#include "platform/AppFolders.h"

#include "platform/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace orvo {
namespace {

/// Sets a variable for one scope.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const QByteArray& value) : m_name(name), m_before(qgetenv(name)) {
        qputenv(name, value);
    }
    ~ScopedVariable() { qputenv(m_name, m_before); }
    Q_DISABLE_COPY_MOVE(ScopedVariable)

private:
    const char* m_name;
    QByteArray m_before;
};

TEST(AppFolders, followTheBaseDirectoryRules) {
    const ScopedVariable home("HOME", "/home/someone");
    struct Case {
        QByteArray config, data, expectedConfiguration, expectedRuns;
    };
    const Case cases[] = {
        {"/c", "/d/", "/c/orvo-ai", "/d/Orvo AI/Runs"},
        {"", "", "/home/someone/.config/orvo-ai", "/home/someone/.local/share/Orvo AI/Runs"},
        {"relative", "./here", "/home/someone/.config/orvo-ai", "/home/someone/.local/share/Orvo AI/Runs"},
    };
    for (const Case& each : cases) {
        const ScopedVariable config("XDG_CONFIG_HOME", each.config);
        const ScopedVariable data("XDG_DATA_HOME", each.data);
        const AppFolders folders = AppFolders::fromProcess();
        EXPECT_EQ(folders.configuration.bytes(), each.expectedConfiguration);
        EXPECT_EQ(folders.applicationData("Runs").bytes(), each.expectedRuns);
    }
}

TEST(AppFolders, withoutAHomeTheAccountsOwnIsUsed) {
    const ScopedVariable home("HOME", "");
    const ScopedVariable config("XDG_CONFIG_HOME", "");
    EXPECT_TRUE(AppFolders::fromProcess().configuration.bytes().startsWith('/'));
}

TEST(AppFolders, areCreatedForTheOwnerAloneWhateverTheUmask) {
    const test::TemporaryFolder temporary;
    const FilePath& root = temporary.path();
    const mode_t before = umask(0);
    const FilePath folder = root.child("a").child("Orvo AI").child("n\xC3\xA4me \xFF");
    const Result<void> created = createPrivateFolder(folder);
    umask(before);
    ASSERT_TRUE(created);
    EXPECT_EQ(test::modeOf(folder), 0700U);
    EXPECT_EQ(test::modeOf(root.child("a")), 0700U);

    ASSERT_EQ(chmod(folder.bytes().constData(), 0755), 0);
    EXPECT_TRUE(createPrivateFolder(folder));
    EXPECT_EQ(test::modeOf(folder), 0755U) << "a folder that exists is the person's business";
}

TEST(AppFolders, aFileInTheWayIsAnErrorWithTheSystemsWords) {
    const test::TemporaryFolder temporary;
    const FilePath path = temporary.child("file");
    test::writeFile(path, "");
    for (const FilePath& folder : {path, path.child("below")}) {
        const Result<void> created = createPrivateFolder(folder);
        ASSERT_FALSE(created);
        EXPECT_EQ(created.error().domain, QStringLiteral("POSIX"));
        EXPECT_FALSE(created.error().message.isEmpty());
    }
}

}  // namespace
}  // namespace orvo
