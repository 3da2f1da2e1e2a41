#pragma once

#include "platform/SerialQueue.h"

#include <QByteArray>
#include <QObject>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

namespace orvo {

class ChildProcess;

/// Owns the master descriptor of one pseudo-terminal for the life of one child: hands over what the child
/// writes, writes what is typed without ever blocking, and reports the child's end once, after the last
/// output.
///
/// All state lives on the queue; the two callbacks run on the receiver's thread, in the order of the events.
/// The receiver must call `close` before it goes away. Public operations may be called from any thread.
class PTYTransport : public std::enable_shared_from_this<PTYTransport> {
    struct Private {};

public:
    using Output = std::function<void(const QByteArray& batch)>;
    using Completion = std::function<void(int status)>;

    /// A batch holds at most this many bytes.
    static constexpr qsizetype maximumBatch = 1 << 20;
    /// Output handed over and not yet consumed; beyond it reading pauses, and the child waits on its
    /// terminal.
    static constexpr qsizetype maximumUnread = 4 << 20;
    /// A child that writes byte by byte must not fill the receiver's event queue either.
    static constexpr int maximumUnreadBatches = 16;
    /// Terminal replies that the child has not taken yet; what goes beyond is for the caller to drop.
    static constexpr std::int64_t maximumUnreadReplies = 64 << 10;

    /// Takes over the descriptor, which must be non-blocking, and starts to read.
    static std::shared_ptr<PTYTransport> open(std::shared_ptr<SerialQueue> queue, int descriptor,
                                              QObject* receiver, Output output, Completion completion);
    PTYTransport(Private, std::shared_ptr<SerialQueue> queue, int descriptor, QObject* receiver,
                 Output output, Completion completion);
    ~PTYTransport();

    /// Queues bytes for the child; they arrive complete and in order unless the terminal closes first.
    void send(const QByteArray& bytes);
    /// As `send`, for answers of the terminal itself, which count as unread until they are written.
    void sendReplies(const QByteArray& bytes);
    std::int64_t unreadReplies() const { return m_unreadReplies; }
    /// Tells that a batch has been dealt with, so that reading may go on.
    void consumed(qsizetype bytes);
    void resize(int rows, int columns);
    /// Records the child's status: what is left in the terminal is still read, then it is closed.
    void childExited(int status);
    /// Asks the terminal's foreground group and the child's own group to end. The signals are sent on return.
    void stop(ChildProcess& child);
    /// Closes the descriptor and cuts the receiver off: once this has returned, nothing more is posted to it.
    void close();

private:
    enum class Outcome { BatchFull, DryForNow, Closed };
    /// Where a reply ends in the stream of all input.
    struct Reply {
        std::uint64_t end;
        qsizetype size;
    };

    void startReading();
    void readAvailable();
    Outcome readBatch(QByteArray& batch, qsizetype room) const;
    qsizetype room() const;
    void deliver(QByteArray batch);
    void append(const QByteArray& bytes);
    void writeAvailable();
    void forgetWrittenReplies();
    void discardInput();
    void inputFailed();
    void waitForOtherSide();
    void closeDescriptor();
    void finishIfReady();
    void post(std::function<void()> work);

    const std::shared_ptr<SerialQueue> m_queue;
    std::atomic<std::int64_t> m_unreadReplies = 0;

    // On the queue only.
    int m_master;
    std::shared_ptr<SerialQueue::Source> m_reader;
    std::shared_ptr<SerialQueue::Source> m_writer;
    /// Sources that may still refer to the descriptor.
    int m_liveSources = 0;
    QByteArray m_input;
    /// Leading bytes of the input that have been written already.
    qsizetype m_inputOffset = 0;
    /// Input is refused: writing has failed, and only what can still be read is of interest.
    bool m_inputFailed = false;
    std::uint64_t m_bytesQueued = 0;
    std::uint64_t m_bytesWritten = 0;
    std::deque<Reply> m_replies;
    qsizetype m_unread = 0;
    int m_unreadBatches = 0;
    /// Nobody has the other side open; a look whether somebody opened it again is due after this time.
    std::chrono::milliseconds m_nextLook;
    bool m_lookQueued = false;
    std::optional<int> m_status;
    bool m_finished = false;
    QObject* m_receiver;
    Output m_output;
    Completion m_completion;
};

}  // namespace orvo
