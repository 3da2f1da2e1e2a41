#include "app/SingleInstance.h"

#include "platform/AppFolders.h"
#include "platform/systemError.h"

#include <QDataStream>
#include <QDeadlineTimer>

#include <algorithm>
#include <array>
#include <cerrno>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace orvo {
namespace {

using namespace std::chrono_literals;

constexpr auto retryInterval = 50ms;
// One path and a token; more is not ours.
constexpr qsizetype longestRequest = qsizetype{64} * 1024;
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
std::optional<StartRequest> received(const QByteArray& bytes) {
    QDataStream stream(bytes);
    setUp(stream);
    QByteArray workspace;
    quint8 errand = 0;
    QByteArray token;
    stream >> workspace >> errand >> token;
    if (stream.status() != QDataStream::Ok) return std::nullopt;
    StartRequest request;
    if (workspace.startsWith('/')) request.workspace = FilePath(workspace);
    if (errand <= static_cast<quint8>(Options::Errand::QuickDraft)) {
        request.errand = static_cast<Options::Errand>(errand);
    }
    request.activationToken = token;
    return request;
}

/// Nothing when the path is too long for a socket.
std::optional<sockaddr_un> addressOf(const FilePath& socket) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray& path = socket.bytes();
    if (static_cast<size_t>(path.size()) >= sizeof address.sun_path) return std::nullopt;
    std::ranges::copy(path, address.sun_path);
    return address;
}

FileDescriptor makeSocket() {
    return FileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

/// In the place of what lies there. Not open when nobody can be reached there.
FileDescriptor listenAt(const FilePath& path) {
    unlink(path.bytes().constData());
    const auto address = addressOf(path);
    FileDescriptor socket = makeSocket();
    // The rights are those of the file that bind() makes.
    const bool listens =
        address && fchmod(socket.number(), 0600) == 0 &&
        bind(socket.number(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) == 0 &&
        listen(socket.number(), SOMAXCONN) == 0;
    return listens ? std::move(socket) : FileDescriptor();
}

/// Waits until the socket is ready; false when it is not in time.
bool waitFor(const FileDescriptor& socket, short events, const QDeadlineTimer& deadline) {
    while (true) {
        pollfd set{socket.number(), events, 0};
        const int ready = poll(&set, 1, static_cast<int>(deadline.remainingTime()));
        if (ready >= 0 || errno != EINTR) return ready > 0;
    }
}

/// True when the running instance has said that it took the request.
bool handOver(const FilePath& path, const StartRequest& request, const QDeadlineTimer& deadline) {
    const auto address = addressOf(path);
    const FileDescriptor socket = makeSocket();
    if (!address || connect(socket.number(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address))
        return false;
    const QByteArray bytes = encoded(request);
    for (qsizetype sent = 0; sent < bytes.size();) {
        if (!waitFor(socket, POLLOUT, deadline)) return false;
        const ssize_t count = send(socket.number(), bytes.constData() + sent,
                                   static_cast<size_t>(bytes.size() - sent), MSG_NOSIGNAL);
        if (count < 0) return false;
        sent += count;
    }
    QByteArray answer;
    while (!answer.endsWith('\n')) {
        std::array<char, sizeof taken> some{};
        if (!waitFor(socket, POLLIN, deadline)) return false;
        const ssize_t count = recv(socket.number(), some.data(), some.size(), 0);
        if (count <= 0) return false;
        answer.append(some.data(), count);
    }
    return answer == taken;
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

/// A later start that is connected, until it has said what it wants.
class SingleInstance::Caller {
public:
    Caller(FileDescriptor socket, SingleInstance& instance)
        : m_socket(std::move(socket)), m_instance(instance) {
        m_said = new QSocketNotifier(m_socket.number(), QSocketNotifier::Read, &m_instance);
    }

    static void serve(FileDescriptor socket, SingleInstance& instance) {
        const auto caller = std::make_shared<Caller>(std::move(socket), instance);
        // The notifier keeps the caller, and goes when nothing more is expected.
        connect(caller->m_said, &QSocketNotifier::activated, &instance, [caller] { caller->read(); });
    }

private:
    void read() {
        std::array<char, 4096> some{};
        const ssize_t count = recv(m_socket.number(), some.data(), some.size(), 0);
        if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
        if (count <= 0) return end();
        m_bytes.append(some.data(), count);
        const std::optional<StartRequest> request = received(m_bytes);
        if (request) {
            (void)send(m_socket.number(), taken, sizeof taken - 1, MSG_NOSIGNAL);
            end();
            Q_EMIT m_instance.requested(*request);
        } else if (m_bytes.size() >= longestRequest) {
            end();
        }
    }
    void end() {
        m_said->setEnabled(false);
        m_said->deleteLater();
        shutdown(m_socket.number(), SHUT_RDWR);
    }

    const FileDescriptor m_socket;
    SingleInstance& m_instance;
    QSocketNotifier* m_said = nullptr;
    QByteArray m_bytes;
};

SingleInstance::SingleInstance(FileDescriptor lock, const FilePath& socket)
    // Whoever left a socket here is gone: we hold the lock, or it did not answer. Without a socket this run
    // works all the same, only that a later start cannot reach it.
    : m_lock(std::move(lock)), m_path(socket), m_socket(listenAt(socket)) {
    if (!m_socket.isOpen()) return;
    m_called = std::make_unique<QSocketNotifier>(m_socket.number(), QSocketNotifier::Read);
    connect(m_called.get(), &QSocketNotifier::activated, this, &SingleInstance::receive);
}

SingleInstance::~SingleInstance() {
    if (m_socket.isOpen()) unlink(m_path.bytes().constData());
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
    FileDescriptor caller(accept4(m_socket.number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (caller.isOpen()) Caller::serve(std::move(caller), *this);
}

}  // namespace orvo
