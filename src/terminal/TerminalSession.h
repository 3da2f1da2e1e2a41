#pragma once

#include "platform/FilePath.h"
#include "terminal/core/TerminalScreen.h"

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QUuid>

#include <functional>
#include <memory>
#include <optional>

namespace orvo {

class PTYTransport;

/// One command in a pseudo-terminal of its own, with the screen that its output is interpreted into.
/// Main thread only. Destroying a running session sends the terminate signal to the child's process group.
class TerminalSession : public QObject {
    Q_OBJECT

public:
    TerminalSession(QString providerID, QString title, QString command, FilePath directory,
                    QObject* parent = nullptr);
    ~TerminalSession() override;

    QUuid id() const;
    const QString& providerID() const;
    const QString& title() const;
    const QString& command() const;
    const FilePath& directory() const;
    const QDateTime& started() const;
    TerminalScreen& screen();
    const TerminalScreen& screen() const;

    /// Grows by one with every batch of output and with a failed start.
    int revision() const;
    bool running() const;
    /// Known once the child has ended; -1 when it could not be started.
    std::optional<int> exitCode() const;
    /// -1 until a start has succeeded.
    int pid() const;

    /// Launches the command; once a launch has succeeded, later calls do nothing.
    void start();
    /// Dropped unless the session runs.
    void send(const QString& text);
    void sendBytes(const QByteArray& bytes);
    void resize(int rows, int columns);
    /// Asks the child to end, and kills its process group after one second if it has not.
    void stop();

    /// Called once when the session has ended, after its last output is on the screen.
    std::function<void(TerminalSession&)> onFinish;

Q_SIGNALS:
    void revisionChanged();
    void runningChanged();
    void exitCodeChanged();
};

}  // namespace orvo
