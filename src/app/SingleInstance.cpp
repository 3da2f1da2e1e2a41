#include "app/SingleInstance.h"

#include "platform/AppFolders.h"
#include "platform/systemError.h"

#include <QDataStream>
#include <QDeadlineTimer>
#include <QLocalSocket>

#include <cerrno>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>

namespace orvo {
namespace {

using namespace std::chrono_literals;

constexpr auto retryInterval = 50ms;
// One path and a token; more is not ours.
constexpr qint64 longestRequest = qint64{64} * 1024;
constexpr char taken[] = "ok\n";

QDataStream& setUp(QDataStream& stream) {
    stream.setVersion(QDataStream::Qt_6_4);
    return stream;
}

QByteArray encoded(const StartRequest& request) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    setUp(stream) << (request.workspace ? request.workspace->bytes() : QByteArray())
                  << static_cast<quint8>(request.errand) << request.activationToken;
    return bytes;
}

/// Nothing while the request is not whole.
std::optional<StartRequest> received(QLocalSocket& socket) {
    QDataStream stream(&socket);
    setUp(stream).startTransaction();
    QByteArray workspace;
    quint8 errand = 0;
    QByteArray token;
    stream >> workspace >> errand >> token;
    if (!stream.commitTransaction()) return std::nullopt;
    StartRequest request;
    if (workspace.startsWith('/')) request.workspace = FilePath(workspace);
    if (errand <= static_cast<quint8>(Options::Errand::QuickDraft)) {
        request.errand = static_cast<Options::Errand>(errand);
    }
    request.activationToken = token;
    return request;
}

/// True when the running instance has said that it took the request.
bool handOver(const FilePath& socket, const StartRequest& request, const QDeadlineTimer& deadline) {
    const auto left = [&deadline] {
        return static_cast<int>(deadline.remainingTime());
    };
    QLocalSocket connection;
    connection.connectToServer(socket.display());
    if (!connection.waitForConnected(left())) return false;
    connection.write(encoded(request));
    while (connection.bytesAvailable() < qint64{sizeof taken} - 1) {
        if (!connection.waitForReadyRead(left())) return false;
    }
    return connection.readAll() == taken;
}

struct Lock {
    enum class State { Held, HeldByAnother, Impossible };

    FileDescriptor file;
    State state;
};

/// Impossible where the file system knows no locks, as some network homes do.
Result<Lock> lock(const FilePath& file) {
    FileDescriptor descriptor(
        open(file.bytes().constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!descriptor.isOpen()) return systemFailure(errno, file);
    if (flock(descriptor.number(), LOCK_EX | LOCK_NB) == 0)
        return Lock{std::move(descriptor), Lock::State::Held};
    switch (errno) {
        case EWOULDBLOCK:
            return Lock{std::move(descriptor), Lock::State::HeldByAnother};
        case ENOLCK:
        case ENOSYS:
        case EOPNOTSUPP:
            return Lock{std::move(descriptor), Lock::State::Impossible};
        default:
            return systemFailure(errno, file);
    }
}

}  // namespace

SingleInstance::SingleInstance(FileDescriptor lock, const FilePath& socket) : m_lock(std::move(lock)) {
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::receive);
    // Whoever left a socket here is gone: we hold the lock, or it did not answer. Without a socket this run
    // works all the same, only that a later start cannot reach it.
    QLocalServer::removeServer(socket.display());
    m_server.listen(socket.display());
}

Result<SingleInstance::Claim> SingleInstance::claim(const FilePath& folder, const StartRequest& request,
                                                    std::chrono::milliseconds patience) {
    if (const Result<void> created = createPrivateFolder(folder); !created) {
        return tl::unexpected(created.error());
    }
    const FilePath socket = folder.child("orvo-ai.socket");
    const QDeadlineTimer deadline(patience);
    while (true) {
        Result<Lock> place = lock(folder.child("orvo-ai.lock"));
        if (!place) return tl::unexpected(place.error());
        // Without locks whoever answers at the socket was first.
        if (place->state != Lock::State::Held && handOver(socket, request, deadline))
            return Claim(HandedOver());
        if (place->state != Lock::State::HeldByAnother) {
            return Claim(std::unique_ptr<SingleInstance>(new SingleInstance(std::move(place->file), socket)));
        }
        if (deadline.hasExpired()) {
            return failure(QStringLiteral("Orvo"), tr("Orvo AI is running already, but does not answer."));
        }
        // It has not opened its socket yet, or is just ending: then its place will be free.
        std::this_thread::sleep_for(retryInterval);
    }
}

void SingleInstance::receive() {
    while (QLocalSocket* const connection = m_server.nextPendingConnection()) {
        connect(connection, &QLocalSocket::disconnected, connection, &QObject::deleteLater);
        connection->setReadBufferSize(longestRequest);
        const auto read = [this, connection] {
            if (const std::optional<StartRequest> request = received(*connection)) {
                connection->write(taken);
                connection->flush();
                connection->disconnectFromServer();
                Q_EMIT requested(*request);
            } else if (connection->bytesAvailable() >= longestRequest) {
                connection->abort();
            }
        };
        connect(connection, &QLocalSocket::readyRead, this, read);
        read();
    }
}

}  // namespace orvo
