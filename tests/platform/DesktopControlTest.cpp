// Opens real applications and types into them, in an X server with a window manager.

#include "platform/desktop/X11DesktopControl.h"
#include "platform/desktop/XConnection.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>

namespace orvo::test {
namespace {

class DesktopControlTest : public testing::Test {
protected:
    // The folders of desktop entries are read once by a process.
    static void SetUpTestSuite() {
        qputenv("XDG_DATA_HOME", data.path().toUtf8());
        qputenv("QT_QPA_PLATFORM", "xcb");
        ASSERT_TRUE(QDir(data.path()).mkpath(QStringLiteral("applications")));
    }
    void TearDown() override {
        for (const auto& running : opened)
            kill(static_cast<pid_t>(running.processID), SIGTERM);
        // A window that goes late would take the keyboard from the first one of the next test.
        for (const auto& running : opened)
            EXPECT_TRUE(
                waitFor([&] { return hasEnded(running.processID) && !desktop.isFrontmost(running); }));
    }
    static bool hasEnded(qint64 process) {
        QFile status(QStringLiteral("/proc/%1/stat").arg(process));
        return !status.open(QIODevice::ReadOnly) || status.readAll().contains(") Z ");
    }

    void install(const char* id, const QByteArray& command) {
        QFile entry(data.filePath(QStringLiteral("applications/%1.desktop").arg(QLatin1String(id))));
        ASSERT_TRUE(entry.open(QIODevice::WriteOnly));
        entry.write("[Desktop Entry]\nType=Application\nName=" + QByteArray(id) + "\nExec=" + command + "\n");
        entry.close();
        // New entries are noticed by a monitor of the folder.
        EXPECT_TRUE(waitFor([&] { return desktop.application(QLatin1String(id)).has_value(); }));
    }
    void installScript(const char* id, const QByteArray& body) {
        QFile script(folder.filePath(QString::fromLatin1(id)));
        ASSERT_TRUE(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\n" + body);
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        install(id, script.fileName().toUtf8() + " %u");
    }

    Result<std::optional<RunningApplication>> open(const char* id) {
        const auto application = desktop.application(QLatin1String(id));
        if (!application) return std::optional<RunningApplication>();
        std::optional<Result<std::optional<RunningApplication>>> answer;
        desktop.openApplication(*application, [&](const auto& result) { answer = result; });
        EXPECT_FALSE(answer);
        EXPECT_TRUE(waitFor([&] { return answer.has_value(); }));
        if (answer && *answer && **answer) opened.append(***answer);
        return *answer;
    }
    // Opens the application and waits until it is in front.
    RunningApplication openInFront(const char* id) {
        const auto running = open(id);
        EXPECT_TRUE(running && *running);
        if (!running || !*running) return {};
        EXPECT_TRUE(waitFor([&] { return desktop.isFrontmost(**running); }));
        return **running;
    }
    Result<void> type(const RunningApplication& application, const QString& line) {
        std::optional<Result<void>> answer;
        desktop.typeLine(
            application, line, [&](qsizetype sent) { typed = sent; },
            [&](const Result<void>& result) { answer = result; });
        EXPECT_TRUE(waitFor([&] { return answer.has_value(); }, std::chrono::seconds(60)));
        return answer ? *answer : failure(QStringLiteral("Test"), QStringLiteral("no answer"));
    }
    Result<void> press(const RunningApplication& application, quint16 code, quint64 modifiers) {
        std::optional<Result<void>> answer;
        desktop.pressKey(application, code, modifiers, [&](const Result<void>& result) { answer = result; });
        EXPECT_TRUE(waitFor([&] { return answer.has_value(); }));
        return answer ? *answer : failure(QStringLiteral("Test"), QStringLiteral("no answer"));
    }
    QString content(const QString& name) const {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    inline static QTemporaryDir data;
    QTemporaryDir folder;
    X11DesktopControl desktop;
    QList<RunningApplication> opened;
    qsizetype typed = 0;
};

// Letters in both cases and on no key, signs on every level, scripts of both directions, and clusters.
const QString hardLine = QStringLiteral(
    "The quick (brown) fox: \"it's\" 100% <sure> {a|b} ~`^\\ ÄÖÜäöüß éÉñÑ ПриветМир Ωλ 你好世界 안녕 שלום "
    "👩‍🚀🎉 €½ end.");

TEST_F(DesktopControlTest, TypesAnyLineExactlyAndPressesShortcuts) {
    install("typing-target", ORVO_TYPING_TARGET " " + folder.filePath(QStringLiteral("saved")).toUtf8());
    ASSERT_TRUE(desktop.isTrusted());
    const RunningApplication target = openInFront("typing-target");
    EXPECT_FALSE(desktop.isTerminated(target));
    const auto done = type(target, hardLine);
    ASSERT_TRUE(done) << done.error().message.toStdString();
    EXPECT_EQ(typed, hardLine.size());
    ASSERT_TRUE(press(target, 1, 0x100000));
    ASSERT_TRUE(waitFor([&] { return !content(QStringLiteral("saved")).isEmpty(); }));
    EXPECT_EQ(content(QStringLiteral("saved")).toStdString(), hardLine.toStdString());
}

TEST_F(DesktopControlTest, TypesIntoATerminalExactly) {
    const QByteArray output = folder.filePath(QStringLiteral("terminal-saved")).toUtf8();
    // Line editing would interpret nothing here, but the echo of wide characters is the terminal's matter.
    installScript("terminal-target", "exec xterm -u8 -e sh -c 'cat > " + output + "'\n");
    const RunningApplication target = openInFront("terminal-target");
    const QString line = hardLine.left(hardLine.indexOf(u'你'));
    const auto done = type(target, line);
    ASSERT_TRUE(done) << done.error().message.toStdString();
    ASSERT_TRUE(press(target, 36, 0));
    ASSERT_TRUE(waitFor([&] { return content(QStringLiteral("terminal-saved")).endsWith(u'\n'); }));
    EXPECT_EQ(content(QStringLiteral("terminal-saved")).toStdString(), line.toStdString() + "\n");
}

TEST_F(DesktopControlTest, TypesIntoAnotherToolkitExactly) {
    const QByteArray output = folder.filePath(QStringLiteral("gtk-saved")).toUtf8();
    installScript("gtk-target", "exec /usr/bin/python3 -B '" ORVO_GTK_TARGET "' '" + output + "'\n");
    const RunningApplication target = openInFront("gtk-target");
    const auto done = type(target, hardLine);
    ASSERT_TRUE(done) << done.error().message.toStdString();
    ASSERT_TRUE(press(target, 1, 0x100000));
    ASSERT_TRUE(waitFor([&] { return !content(QStringLiteral("gtk-saved")).isEmpty(); }));
    EXPECT_EQ(content(QStringLiteral("gtk-saved")).toStdString(), hardLine.toStdString());
}

TEST_F(DesktopControlTest, StopsTypingWhenAnotherWindowComesToTheFront) {
    install("typing-target", ORVO_TYPING_TARGET " " + folder.filePath(QStringLiteral("saved")).toUtf8());
    const RunningApplication first = openInFront("typing-target");
    install("other-target", ORVO_TYPING_TARGET " " + folder.filePath(QStringLiteral("other")).toUtf8());
    const RunningApplication second = openInFront("other-target");
    ASSERT_FALSE(desktop.isFrontmost(first));
    const auto refused = type(first, QStringLiteral("secret"));
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().message,
              QStringLiteral("The target app is no longer active. Nothing was typed. Try this step again."));
    ASSERT_TRUE(type(second, QStringLiteral("x")));
    ASSERT_TRUE(press(second, 1, 0x100000));
    ASSERT_TRUE(waitFor([&] { return !content(QStringLiteral("other")).isEmpty(); }));
    EXPECT_EQ(content(QStringLiteral("other")), QStringLiteral("x"));
}

TEST_F(DesktopControlTest, AWindowThatGetsNoKeysIsNotInFrontWhateverTheWindowManagerSays) {
    install("typing-target", ORVO_TYPING_TARGET " " + folder.filePath(QStringLiteral("saved")).toUtf8());
    const RunningApplication target = openInFront("typing-target");
    const auto windowManager = static_cast<pid_t>(qEnvironmentVariableIntValue("WINDOW_MANAGER_PID"));
    ASSERT_GT(windowManager, 1);
    // Too busy to notice that the keyboard is nobody's.
    ASSERT_EQ(kill(windowManager, SIGSTOP), 0);
    const auto connection = XConnection::open();
    xcb_set_input_focus(connection->get(), XCB_INPUT_FOCUS_POINTER_ROOT, XCB_INPUT_FOCUS_POINTER_ROOT,
                        XCB_CURRENT_TIME);
    connection->synchronise();
    EXPECT_FALSE(desktop.isFrontmost(target));
    EXPECT_FALSE(type(target, QStringLiteral("secret")));
    EXPECT_EQ(typed, 0);
    EXPECT_EQ(kill(windowManager, SIGCONT), 0);
    EXPECT_TRUE(waitFor([&] { return desktop.isFrontmost(target); }));
}

TEST_F(DesktopControlTest, BringsARunningApplicationToTheFrontInsteadOfStartingItAgain) {
    install("kept-target", ORVO_TYPING_TARGET " " + folder.filePath(QStringLiteral("kept")).toUtf8());
    install("covering-target", ORVO_TYPING_TARGET " " + folder.filePath(QStringLiteral("cover")).toUtf8());
    const RunningApplication kept = openInFront("kept-target");
    ASSERT_TRUE(type(kept, QStringLiteral("one ")));
    const RunningApplication covering = openInFront("covering-target");
    const RunningApplication again = openInFront("kept-target");
    EXPECT_EQ(again, kept);
    EXPECT_FALSE(desktop.isFrontmost(covering));
    ASSERT_TRUE(type(again, QStringLiteral("two")));
    ASSERT_TRUE(press(again, 1, 0x100000));
    ASSERT_TRUE(waitFor([&] { return !content(QStringLiteral("kept")).isEmpty(); }));
    EXPECT_EQ(content(QStringLiteral("kept")), QStringLiteral("one two"));
}

TEST_F(DesktopControlTest, StopsTypingWhenItIsCancelled) {
    install("typing-target", ORVO_TYPING_TARGET " " + folder.filePath(QStringLiteral("saved")).toUtf8());
    const RunningApplication target = openInFront("typing-target");
    // Forty characters that are on no key cost several pauses.
    QString line;
    for (char16_t c = 0x4e00; c < 0x4e80; ++c)
        line += QChar(c);
    std::optional<Result<void>> answer;
    desktop.typeLine(
        target, line,
        [&](qsizetype sent) {
            typed = sent;
            desktop.cancelTyping();
        },
        [&](const Result<void>& result) { answer = result; });
    ASSERT_TRUE(waitFor([&] { return answer.has_value(); }, std::chrono::seconds(20)));
    EXPECT_FALSE(*answer);
    EXPECT_LT(typed, line.size());
}

TEST_F(DesktopControlTest, KnowsApplicationsByIDAliasAndName) {
    install("org.example.Painter", "/bin/true");
    install("org.gnome.Calculator", "/bin/true");
    const auto idOf = [&](const char* identifier) {
        const auto found = desktop.application(QLatin1String(identifier));
        return found ? found->id.toStdString() : std::string();
    };
    EXPECT_EQ(idOf("org.example.Painter.desktop"), "org.example.Painter.desktop");
    EXPECT_EQ(idOf("org.example.Painter"), "org.example.Painter.desktop");
    EXPECT_EQ(idOf("com.apple.calculator"), "org.gnome.Calculator.desktop");
    EXPECT_EQ(idOf("com.other.painter"), "org.example.Painter.desktop");
    EXPECT_EQ(idOf("com.example.NoSuchThing"), "");
}

TEST_F(DesktopControlTest, GivesAnAddressAsOneArgumentAndTellsOfProgramsThatFail) {
    const QByteArray output = folder.filePath(QStringLiteral("arguments")).toUtf8();
    installScript("browser", "printf '%s|' \"$#\" \"$@\" > '" + output + "'\n");
    const QUrl address(QStringLiteral("https://example.com/?a=b&c='d'%20e;f$(g)"), QUrl::StrictMode);
    std::optional<Result<void>> answer;
    desktop.openAddress(address, *desktop.application(QStringLiteral("browser")),
                        [&](const Result<void>& result) { answer = result; });
    ASSERT_TRUE(waitFor([&] { return answer && content(QStringLiteral("arguments")).count(u'|') == 2; }));
    EXPECT_TRUE(*answer);
    EXPECT_EQ(content(QStringLiteral("arguments")).toStdString(),
              "1|" + address.toEncoded().toStdString() + "|");

    installScript("broken", "exit 3\n");
    const auto broken = open("broken");
    ASSERT_TRUE(broken && *broken);
    EXPECT_TRUE(waitFor([&] { return desktop.isTerminated(**broken); }));
    // One that hands over to a running instance and ends well has not failed.
    installScript("handover", "exit 0\n");
    const auto handover = open("handover");
    ASSERT_TRUE(handover && *handover);
    EXPECT_TRUE(waitFor([&] { return kill(static_cast<pid_t>((*handover)->processID), 0) != 0; }));
    EXPECT_FALSE(desktop.isTerminated(**handover));
    opened.clear();
}

TEST(TypeableText, IsWhatAKeyboardCanWrite) {
    const X11DesktopControl desktop;
    EXPECT_TRUE(desktop.checkTypeable(hardLine));
    for (const QString& line : {QStringLiteral("next\u0085line"), QStringLiteral("\uE000"),
                                QStringLiteral("\u2028"), QString(QChar(0xD800)), QStringLiteral("\uFFFF")})
        EXPECT_FALSE(desktop.checkTypeable(line));
    EXPECT_TRUE(desktop.checkTypeable(QStringLiteral("a\u0085")).error().message.contains(u"U+0085"));
}

}  // namespace
}  // namespace orvo::test
