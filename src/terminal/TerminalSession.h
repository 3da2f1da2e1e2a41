#pragma once

#include "platform/FilePath.h"
#include "terminal/Attention.h"
#include "terminal/core/TerminalScreen.h"

#include <QByteArray>
#include <QDateTime>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QUuid>

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace orvo {

class ChildProcess;
class PTYTransport;

/// One command in a pseudo-terminal of its own, with the screen that its output is interpreted into.
/// Main thread only. Destroying a running session ends the child as `stop` does, the kill after one second
/// included; the child is reaped all the same.
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
    /// What the program calls itself, to be shown beside the title; empty until it says so.
    const QString& programTitle() const;
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

    /// Launches the command; once a launch has succeeded, later calls do nothing. A launch that fails says
    /// why on the screen, leaves the exit code -1 and finishes the session; it may be tried again.
    void start();
    /// Dropped unless the session runs.
    void send(const QString& text);
    void sendBytes(const QByteArray& bytes);
    void resize(int rows, int columns);
    /// What the person sees; programs may ask for it, or want to be told of a change.
    void setColors(const TerminalColors& colors);
    /// What the session needs of the person, and why.
    Attention::Mark mark() const;
    QString evidence() const;
    /// What its program asks with, as "bell"; empty while it asks for nothing.
    QString request() const;
    /// Whether the person looks at the session; told by whoever shows it.
    void setInFront(bool inFront);

    /// Programs may write the clipboard only when the person has said so for this session.
    enum class ClipboardAccess { Unknown, Allowed, Refused };
    ClipboardAccess clipboardAccess() const;
    void setClipboardAccess(ClipboardAccess access);
    /// What the program wants to put on the clipboard, until it is taken or refused.
    const std::optional<QString>& clipboardText() const;
    std::optional<QString> takeClipboardText();

    /// Asks the child to end, and kills what is left of its process group after one second. Does not wait.
    void stop();

    /// Called once when the session has ended, after its last output is on the screen.
    std::function<void(TerminalSession&)> onFinish;

Q_SIGNALS:
    void revisionChanged();
    void runningChanged();
    void exitCodeChanged();
    void programTitleChanged();
    void markChanged();
    /// The access has changed, or the text.
    void clipboardTextChanged();

private:
    void failStart(const QString& reason);
    void receive(const QByteArray& batch);
    void queueFeeding();
    void feedForOneTurn();
    void feedSlice();
    void answer(std::string_view reply);
    void take(const TerminalRequest& request);
    /// Tells of a new mark, and comes back when it will change by itself.
    void refreshMark();
    void finish(int status);

    const QUuid m_id = QUuid::createUuid();
    const QString m_providerID;
    const QString m_title;
    const QString m_command;
    const FilePath m_directory;
    const QDateTime m_started = QDateTime::currentDateTimeUtc();
    TerminalScreen m_screen;
    QString m_programTitle;
    Attention m_attention;
    Attention::Mark m_mark = Attention::Mark::Quiet;
    QTimer m_nextMark;
    ClipboardAccess m_clipboardAccess = ClipboardAccess::Unknown;
    std::optional<QString> m_clipboardText;
    bool m_clipboardWritten = false;
    int m_revision = 0;
    bool m_running = false;
    std::optional<int> m_exitCode;
    int m_pid = -1;

    /// Both from a start until the session has finished.
    std::shared_ptr<PTYTransport> m_transport;
    std::shared_ptr<ChildProcess> m_child;
    /// Batches that are not wholly on the screen yet; of the first, `m_fed` bytes are.
    std::deque<QByteArray> m_batches;
    qsizetype m_fed = 0;
    bool m_feedingQueued = false;
    /// What the screen has answered to the slice that is being fed.
    QByteArray m_replies;
    /// The child's status while output before it is still to be fed.
    std::optional<int> m_pendingStatus;
};

/// Stops the sessions and waits for them without an event loop, for the end of the application: until all
/// their process groups are gone, also those of sessions that were stopped and forgotten before, or `limit`
/// has passed; what is left then is killed. False when a process could not be killed even so.
bool stopSessionsAndWait(const std::vector<std::shared_ptr<TerminalSession>>& sessions,
                         std::chrono::milliseconds limit = std::chrono::seconds(1));

}  // namespace orvo
