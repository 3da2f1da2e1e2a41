#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace orvo::test {

/// Runs the real program in a home of its own, where only the fake assistants that a test installs exist.
class OrvoctlTestCase : public testing::Test {
protected:
    struct Outcome {
        int status = -1;
        QByteArray output;
        QByteArray error;

        /// Standard output as its one JSON document; a failure when it is anything else.
        QJsonDocument json() const;
    };

    OrvoctlTestCase();
    ~OrvoctlTestCase() override;

    /// Installs a fake assistant of tests/data/bin under its own or another name.
    void install(const char* script, const char* name = nullptr);
    QString path(const char* name) const { return root.filePath(QString::fromUtf8(name)); }
    void write(const char* name, const QByteArray& content) const;
    QByteArray read(const char* name) const;
    /// The words of a command line; double quotes hold one together.
    static QStringList words(const char* line) { return QProcess::splitCommand(QString::fromUtf8(line)); }
    Outcome orvoctl(const QStringList& arguments, const QByteArray& input = {}) const;
    /// A started program; input is closed.
    std::unique_ptr<QProcess> start(const QStringList& arguments) const;
    static Outcome finish(QProcess& process);

    QTemporaryDir root;
    QProcessEnvironment environment;
};

}  // namespace orvo::test
