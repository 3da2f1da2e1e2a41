#include "support/QtTestMain.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QString>
#include <QTemporaryDir>

#include <array>
#include <string_view>

namespace orvo::test {
namespace {

// Each entry: the beginning of a message that is not ours to mend, and why.
constexpr std::array<std::string_view, 2> allowedWarnings = {
    // The offscreen platform has no window manager to pass geometry hints to.
    "This plugin does not support",
    // Containers often have no /run/user/UID; the tests set a private folder, whose mode Qt may tighten.
    "QStandardPaths: ",
};

void failOnWarning(QtMsgType type, const QMessageLogContext&, const QString& message) {
    const std::string text = message.toStdString();
    if (type == QtDebugMsg || type == QtInfoMsg) {
        fprintf(stderr, "%s\n", text.c_str());
        return;
    }
    for (const std::string_view allowed : allowedWarnings) {
        if (text.starts_with(allowed)) return;
    }
    ADD_FAILURE() << "Qt warning: " << text;
    if (type == QtFatalMsg) abort();
}

QTemporaryDir& privateFolder() {
    static QTemporaryDir folder;
    return folder;
}

}  // namespace

void isolateEnvironment() {
    const QDir root(privateFolder().path());
    const auto point = [&root](const char* variable, const char* name) {
        const QString folder = root.filePath(QString::fromLatin1(name));
        QDir().mkpath(folder);
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv(variable, folder.toLocal8Bit());
    };
    point("HOME", "home");
    point("XDG_CONFIG_HOME", "config");
    point("XDG_DATA_HOME", "data");
    point("XDG_CACHE_HOME", "cache");
    point("XDG_RUNTIME_DIR", "run");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("LC_ALL", "C.UTF-8");
}

int runAllTests(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qInstallMessageHandler(failOnWarning);
    const int status = RUN_ALL_TESTS();
    qInstallMessageHandler(nullptr);
    return status;
}

}  // namespace orvo::test
