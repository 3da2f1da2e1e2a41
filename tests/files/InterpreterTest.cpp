#include "files/interpreter.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(InterpreterTest, followsTheExtensionAndQuotesThePath) {
    struct Case {
        QByteArray file;
        QString command;
    };
    const Case cases[] = {
        {"/p/script.PY", QStringLiteral("'/opt/my tools/python3' '/p/script.PY'")},
        {"/p/a.js", QStringLiteral("node '/p/a.js'")},
        {"/p/a.mjs", QStringLiteral("node '/p/a.mjs'")},
        {"/p/a.cjs", QStringLiteral("node '/p/a.cjs'")},
        {"/p/main.swift", QStringLiteral("/usr/bin/swift '/p/main.swift'")},
        {"/p/it's.sh", QStringLiteral("/bin/bash '/p/it'\\''s.sh'")},
        {"/p/a.tar.zsh", QStringLiteral("/bin/zsh '/p/a.tar.zsh'")},
        {"/p/$(b) \"c\".rb", QStringLiteral("ruby '/p/$(b) \"c\".rb'")},
        {"/p/a.applescript", QStringLiteral("/usr/bin/osascript '/p/a.applescript'")},
        // No text can hold these bytes, so the shell is told them one by one.
        {"/p/\xFF'\\.sh", QStringLiteral("/bin/bash $'/p/\\xff\\x27\\x5c.sh'")},
        {"/p/notes.txt", {}},
        {"/p/Makefile", {}},
        {"/p/.py", {}},
        {"/p/folder.py/file", {}},
        {"/p/ends.", {}},
    };
    const FilePath python("/opt/my tools/python3");
    for (const Case& each : cases) {
        const auto command = interpreterCommand(FilePath(each.file), python);
        EXPECT_EQ(command.value_or(QString()), each.command) << each.file.constData();
        EXPECT_EQ(command.has_value(), !each.command.isNull()) << each.file.constData();
    }
    EXPECT_EQ(interpreterCommand(FilePath("/p/a.py"), std::nullopt), QStringLiteral("python3 '/p/a.py'"));
}

}  // namespace
}  // namespace orvo
