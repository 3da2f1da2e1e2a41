#pragma once

#include "support/WaitFor.h"
#include "terminal/TerminalSession.h"

#include <memory>
#include <string>

namespace orvo::test {

/// A session that counts what it tells.
class TestSession {
public:
    explicit TestSession(const QString& command, const FilePath& directory = FilePath("/"))
        : session(std::make_shared<TerminalSession>(QStringLiteral("shell"), QStringLiteral("Test"), command,
                                                    directory)) {
        session->onFinish = [this](TerminalSession& ended) {
            ++finished;
            textAtEnd = ended.screen().plainText();
        };
        QObject::connect(session.get(), &TerminalSession::revisionChanged, session.get(),
                         [this] { ++revisions; });
        QObject::connect(session.get(), &TerminalSession::runningChanged, session.get(),
                         [this] { ++runnings; });
        QObject::connect(session.get(), &TerminalSession::exitCodeChanged, session.get(),
                         [this] { ++exitCodes; });
    }
    ~TestSession() {
        if (session) session->onFinish = nullptr;
    }
    TestSession(const TestSession&) = delete;
    TestSession& operator=(const TestSession&) = delete;

    std::string text() const { return session->screen().plainText(); }
    bool shows(const std::string& part) {
        return waitFor([&] { return text().find(part) != std::string::npos; });
    }
    bool ends() {
        return waitFor([&] { return finished > 0; });
    }

    std::shared_ptr<TerminalSession> session;
    int finished = 0;
    int revisions = 0;
    int runnings = 0;
    int exitCodes = 0;
    std::string textAtEnd;
};

}  // namespace orvo::test
