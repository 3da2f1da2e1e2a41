#include "orvoctl/OrvoctlTestCase.h"

#include <QDir>

#include <filesystem>

namespace orvo::test {

QJsonDocument OrvoctlTestCase::Outcome::json() const {
    QJsonParseError problem;
    const QJsonDocument document = QJsonDocument::fromJson(output, &problem);
    EXPECT_EQ(problem.error, QJsonParseError::NoError) << output.constData() << error.constData();
    return document;
}

OrvoctlTestCase::OrvoctlTestCase() {
    for (const char* const folder : {"home/.local/bin", "config", "data", "run", "project", "bin"}) {
        EXPECT_TRUE(QDir().mkpath(path(folder)));
    }
    environment.insert(QStringLiteral("HOME"), path("home"));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), path("config"));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), path("data"));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), path("run"));
    // The assistants of the machine that runs the test stay out of it.
    for (const char* const tool :
         {"cat", "chmod", "cp", "diff", "ln", "mkdir", "mkfifo", "mv", "rm", "sh", "sleep", "touch"}) {
        EXPECT_TRUE(QFile::link(QStringLiteral("/usr/bin/") + QString::fromUtf8(tool),
                                path("bin/") + QString::fromUtf8(tool)));
    }
    environment.insert(QStringLiteral("PATH"), path("bin"));
    environment.insert(QStringLiteral("ORVO_TOOL_FOLDERS"), QString());
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
}

// Qt's own removal leaves names that are not UTF-8.
OrvoctlTestCase::~OrvoctlTestCase() {
    std::error_code ignored;
    std::filesystem::remove_all(root.path().toStdString(), ignored);
}

void OrvoctlTestCase::install(const char* script, const char* name) {
    const QString target = path("home/.local/bin/") + QString::fromUtf8(name ? name : script);
    EXPECT_TRUE(QFile::link(QStringLiteral(ORVO_TEST_DATA "/bin/") + QString::fromUtf8(script), target));
}

void OrvoctlTestCase::write(const char* name, const QByteArray& content) const {
    QFile file(path(name));
    EXPECT_TRUE(QDir().mkpath(QFileInfo(file).path()));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
}

QByteArray OrvoctlTestCase::read(const char* name) const {
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

std::unique_ptr<QProcess> OrvoctlTestCase::start(const QStringList& arguments) const {
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(environment);
    process->setWorkingDirectory(path("project"));
    process->start(QStringLiteral(ORVOCTL_PROGRAM), arguments);
    EXPECT_TRUE(process->waitForStarted());
    return process;
}

OrvoctlTestCase::Outcome OrvoctlTestCase::finish(QProcess& process) {
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(60'000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

OrvoctlTestCase::Outcome OrvoctlTestCase::orvoctl(const QStringList& arguments,
                                                  const QByteArray& input) const {
    const auto process = start(arguments);
    process->write(input);
    return finish(*process);
}

}  // namespace orvo::test
