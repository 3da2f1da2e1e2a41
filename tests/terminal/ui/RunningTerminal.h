#pragma once

#include "appearance/Theme.h"
#include "support/WaitFor.h"
#include "terminal/TerminalSession.h"
#include "terminal/ui/TerminalView.h"

#include <QApplication>

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace orvo::test {

/// A session in a real pseudo-terminal whose program takes every byte as it is and shows it in caret notation
/// (ESC as "^["), once it has written `setup` and "ready".
inline std::string echoing(const std::string& setup = {}) {
    return "stty raw -echo; printf '" + setup + "ready>'; exec cat -v";
}

/// A shown view over a session of its own.
struct RunningTerminal {
    explicit RunningTerminal(const std::string& command = echoing())
        : session(QStringLiteral("shell"), QStringLiteral("Terminal session"),
                  QString::fromStdString(command), FilePath("/")) {
        view.resize(820, 400);
        view.setSession(&session);
    }

    /// Starts the program and waits until its screen shows `text`.
    testing::AssertionResult start(std::string_view text = "ready>") {
        view.show();
        view.activateWindow();
        view.setFocus();
        session.start();
        return shows(text);
    }

    testing::AssertionResult shows(std::string_view text) {
        if (waitFor([&] { return session.screen().plainText().find(text) != std::string::npos; })) {
            return testing::AssertionSuccess();
        }
        return testing::AssertionFailure() << '"' << text << "\" is not on the screen:\n"
                                           << session.screen().plainText();
    }

    /// Fills the history with "line 0" and so on until it holds `lines`.
    void fillHistory(int lines) {
        std::string text;
        for (int i = 0; i < lines + session.screen().rows() - 1; ++i)
            text += "line " + std::to_string(i) + "\r\n";
        session.screen().feed(text);
    }

    Theme theme{nullptr};
    TerminalSession session;
    TerminalView view{theme};
};

/// One without a program, whose screen has its size already and shows `text`.
struct DrawnTerminal : RunningTerminal {
    explicit DrawnTerminal(std::string_view text) {
        view.grab();
        session.screen().feed(text);
    }
};

}  // namespace orvo::test
