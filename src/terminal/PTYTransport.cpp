#include "terminal/PTYTransport.h"

#include "terminal/ChildProcess.h"
#include "terminal/core/launch.h"

#include <unistd.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace orvo {

namespace {

constexpr qsizetype pieceSize = 16'384;
/// What one writing event may write, so that a long paste does not keep the queue from reading.
constexpr qsizetype writeBudget = 256 << 10;
/// How often a terminal that nobody has open is looked at again. A child that closed it for good costs one
/// look a second.
constexpr std::chrono::milliseconds firstLook{10};
constexpr std::chrono::milliseconds longestLook{1'000};

}  // namespace

std::shared_ptr<PTYTransport> PTYTransport::open(std::shared_ptr<SerialQueue> queue, int descriptor,
                                                 QObject* receiver, Output output, Completion completion) {
    auto transport = std::make_shared<PTYTransport>(Private(), std::move(queue), descriptor, receiver,
                                                    std::move(output), std::move(completion));
    transport->m_queue->async([transport] { transport->startReading(); });
    return transport;
}

PTYTransport::PTYTransport(Private, std::shared_ptr<SerialQueue> queue, int descriptor, QObject* receiver,
                           Output output, Completion completion)
    : m_queue(std::move(queue)),
      m_master(descriptor),
      m_nextLook(firstLook),
      m_receiver(receiver),
      m_output(std::move(output)),
      m_completion(std::move(completion)) {}

PTYTransport::~PTYTransport() = default;

void PTYTransport::post(std::function<void()> work) {
    m_queue->async([self = shared_from_this(), work = std::move(work)] { work(); });
}

void PTYTransport::startReading() {
    if (m_master < 0) return;
    const auto whenAlive = [weak = weak_from_this()](void (PTYTransport::*step)()) {
        return [weak, step] {
            if (const auto self = weak.lock()) (self.get()->*step)();
        };
    };
    // The number may be given out again as soon as it is closed, so no source may still wait on it then.
    const auto onCancelled = [self = shared_from_this(), descriptor = m_master] {
        if (--self->m_liveSources == 0) ::close(descriptor);
    };
    m_liveSources = 2;
    m_reader = m_queue->watch(m_master, SerialQueue::Interest::Readable,
                              whenAlive(&PTYTransport::readAvailable), onCancelled);
    m_writer = m_queue->watch(m_master, SerialQueue::Interest::Writable,
                              whenAlive(&PTYTransport::writeAvailable), onCancelled);
    m_reader->resume();
}

qsizetype PTYTransport::room() const {
    if (m_unreadBatches >= maximumUnreadBatches) return 0;
    return std::min(maximumBatch, maximumUnread - m_unread);
}

PTYTransport::Outcome PTYTransport::readBatch(QByteArray& batch, qsizetype room) const {
    std::array<char, pieceSize> piece;
    while (batch.size() < room) {
        const auto wanted = static_cast<std::size_t>(std::min(pieceSize, room - batch.size()));
        const ssize_t size = ::read(m_master, piece.data(), wanted);
        if (size > 0) {
            batch.append(piece.data(), size);
        } else if (size == 0) {
            return Outcome::Closed;
        } else if (errno != EINTR) {
            // Everything else means the end; EIO says that nobody has the other side open any more.
            return errno == EAGAIN ? Outcome::DryForNow : Outcome::Closed;
        }
    }
    return Outcome::BatchFull;
}

void PTYTransport::readAvailable() {
    if (m_master < 0) {
        finishIfReady();
        return;
    }
    const qsizetype limit = room();
    if (limit == 0) {
        m_reader->suspend();
        return;
    }
    QByteArray batch;
    const Outcome outcome = readBatch(batch, limit);
    if (!batch.isEmpty()) {
        m_nextLook = firstLook;
        deliver(std::move(batch));
    }
    if (outcome == Outcome::BatchFull) {
        // Writes and resizes that wait already go first.
        post([this] { readAvailable(); });
        return;
    }
    if (outcome == Outcome::Closed && !m_status) {
        waitForOtherSide();
        return;
    }
    if (m_status || m_inputFailed) closeDescriptor();
    finishIfReady();
}

/// Nobody has the other side open, but the child lives on. Closing ours now would hang it up and so falsify
/// its exit status, and it may open its terminal again; so we look again now and then until it has ended.
void PTYTransport::waitForOtherSide() {
    m_reader->suspend();
    if (std::exchange(m_lookQueued, true)) return;
    m_queue->after(m_nextLook, [weak = weak_from_this()] {
        const auto self = weak.lock();
        if (!self) return;
        self->m_lookQueued = false;
        if (self->m_master < 0) return;
        self->m_reader->resume();
        self->readAvailable();
    });
    m_nextLook = std::min(2 * m_nextLook, longestLook);
}

void PTYTransport::deliver(QByteArray batch) {
    if (m_receiver == nullptr) return;
    m_unread += batch.size();
    ++m_unreadBatches;
    QMetaObject::invokeMethod(
        m_receiver, [output = m_output, batch = std::move(batch)] { output(batch); }, Qt::QueuedConnection);
}

void PTYTransport::consumed(qsizetype bytes) {
    post([this, bytes] {
        m_unread -= bytes;
        --m_unreadBatches;
        if (m_master < 0 || m_reader->active()) return;
        // Going on at half the limits spares a change of threads a batch.
        if (m_unread > maximumUnread / 2 || m_unreadBatches > maximumUnreadBatches / 2) return;
        m_reader->resume();
        readAvailable();
    });
}

void PTYTransport::send(const QByteArray& bytes) {
    if (bytes.isEmpty()) return;
    post([this, bytes] { append(bytes); });
}

void PTYTransport::sendReplies(const QByteArray& bytes) {
    if (bytes.isEmpty()) return;
    m_unreadReplies += bytes.size();
    post([this, bytes] {
        m_replies.push_back({m_bytesQueued + static_cast<std::uint64_t>(bytes.size()), bytes.size()});
        append(bytes);
        // A closed terminal takes nothing, so nothing is left waiting.
        if (m_master < 0 || m_inputFailed) discardInput();
    });
}

void PTYTransport::append(const QByteArray& bytes) {
    if (m_master < 0 || m_inputFailed) return;
    if (m_inputOffset > 0) {
        m_input.remove(0, m_inputOffset);
        m_inputOffset = 0;
    }
    m_input.append(bytes);
    m_bytesQueued += static_cast<std::uint64_t>(bytes.size());
    m_writer->resume();
    // Most input is short and goes out here, without waiting for the writer.
    writeAvailable();
}

void PTYTransport::writeAvailable() {
    if (m_master < 0) return;
    qsizetype total = 0;
    while (m_inputOffset < m_input.size() && total < writeBudget) {
        const auto size = static_cast<std::size_t>(std::min(pieceSize, m_input.size() - m_inputOffset));
        const ssize_t written = ::write(m_master, m_input.constData() + m_inputOffset, size);
        if (written > 0) {
            m_inputOffset += written;
            total += written;
            m_bytesWritten += static_cast<std::uint64_t>(written);
        } else if (written < 0 && errno == EINTR) {
            continue;
        } else if (written < 0 && errno == EAGAIN) {
            break;
        } else {
            inputFailed();
            return;
        }
    }
    forgetWrittenReplies();
    if (m_inputOffset < m_input.size()) return;
    m_input.clear();
    m_inputOffset = 0;
    m_writer->suspend();
}

void PTYTransport::forgetWrittenReplies() {
    while (!m_replies.empty() && m_replies.front().end <= m_bytesWritten) {
        m_unreadReplies -= m_replies.front().size;
        m_replies.pop_front();
    }
}

void PTYTransport::discardInput() {
    m_input.clear();
    m_inputOffset = 0;
    m_bytesWritten = m_bytesQueued;
    for (const Reply& reply : m_replies)
        m_unreadReplies -= reply.size;
    m_replies.clear();
}

/// Nobody reads any more, but the child's last words may still wait to be read: a key that was pressed at the
/// wrong moment must not cost them.
void PTYTransport::inputFailed() {
    m_inputFailed = true;
    discardInput();
    m_writer->suspend();
    readAvailable();
}

void PTYTransport::resize(int rows, int columns) {
    post([this, rows, columns] {
        if (m_master < 0) return;
        pelk_resize(m_master, static_cast<std::uint16_t>(rows), static_cast<std::uint16_t>(columns));
    });
}

void PTYTransport::childExited(int status) {
    post([this, status] {
        m_status = status;
        readAvailable();
    });
}

void PTYTransport::stop(ChildProcess& child) {
    m_queue->sync([this, &child] { child.terminate(m_master < 0 ? -1 : ::tcgetpgrp(m_master)); });
}

void PTYTransport::close() {
    m_queue->sync([this] {
        m_receiver = nullptr;
        m_output = nullptr;
        m_completion = nullptr;
        closeDescriptor();
    });
}

void PTYTransport::closeDescriptor() {
    if (m_master < 0) return;
    m_master = -1;
    discardInput();
    m_writer->cancel();
    m_reader->cancel();
}

void PTYTransport::finishIfReady() {
    if (m_master >= 0 || !m_status || m_finished) return;
    m_finished = true;
    if (m_receiver == nullptr) return;
    QMetaObject::invokeMethod(
        m_receiver, [completion = m_completion, status = *m_status] { completion(status); },
        Qt::QueuedConnection);
}

}  // namespace orvo
