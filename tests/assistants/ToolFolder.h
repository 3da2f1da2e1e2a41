#pragma once

#include "platform/ToolEnvironment.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace orvo::test {

/// A home folder of its own beside a folder for PATH, both empty; programs are put there by the tests.
class ToolFolder {
public:
    QString home() const { return m_folder.filePath(QStringLiteral("home")); }
    QString inheritedPath() const { return m_folder.filePath(QStringLiteral("path")); }
    /// Without the folders of the system, where the machine that runs the test may have assistants.
    ToolEnvironment environment() const {
        return {.home = FilePath::fromString(home()), .path = inheritedPath().toUtf8(), .systemFolders = {}};
    }

    /// Writes a shell script and returns its path.
    FilePath script(const QString& path, const QByteArray& text = "exit 0\n",
                    QFile::Permissions mode = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner) const {
        EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + text);
        file.close();
        EXPECT_TRUE(file.setPermissions(mode));
        return FilePath::fromString(path);
    }

private:
    QTemporaryDir m_folder;
};

}  // namespace orvo::test
