#include "terminal/TerminalSession.h"

#include "platform/SerialQueue.h"
#include "platform/observe.h"
#include "terminal/ChildProcess.h"
#include "terminal/PTYTransport.h"
#include "terminal/core/launch.h"

#include <QLocale>
#include <QPointer>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace orvo {

namespace {

/// Puts the folders that the assistants' installers use ahead of the inherited search path.
constexpr char searchPath[] =
    "export PATH=\"$HOME/.local/bin:$HOME/.kimi-code/bin:$HOME/.cargo/bin:/opt/homebrew/bin:/usr/local/bin:"
    "$PATH\"; ";

/// Output is fed in slices of this many bytes, for this long in one turn of the event loop, so that eight
/// flooding sessions together take one frame of a turn and a key never waits longer.
constexpr qsizetype sliceSize = 16 << 10;
constexpr std::chrono::milliseconds turn{2};

QString systemText(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

}  // namespace

TerminalSession::TerminalSession(QString providerID, QString title, QString command, FilePath directory,
                                 QObject* parent)
    : QObject(parent),
      m_providerID(std::move(providerID)),
      m_title(std::move(title)),
      m_command(std::move(command)),
      m_directory(std::move(directory)) {
    // Programs are told a terminal type that erases with the background colour.
    m_screen.setBackgroundColorErase(true);
    m_screen.onResponse = [this](std::string_view reply) {
        answer(reply);
    };
    m_screen.onRequest = [this](const TerminalRequest& request) {
        take(request);
    };
    m_nextMark.setSingleShot(true);
    connect(&m_nextMark, &QTimer::timeout, this, [this] {
        refreshMark();
        if (!m_nextMark.isActive()) m_screen.compact();
    });
}

TerminalSession::~TerminalSession() {
    stop();
    if (m_transport) m_transport->close();
}

QUuid TerminalSession::id() const {
    return m_id;
}
const QString& TerminalSession::providerID() const {
    return m_providerID;
}
const QString& TerminalSession::title() const {
    return m_title;
}
const QString& TerminalSession::command() const {
    return m_command;
}
const QString& TerminalSession::programTitle() const {
    return m_programTitle;
}
const FilePath& TerminalSession::directory() const {
    return m_directory;
}
const QDateTime& TerminalSession::started() const {
    return m_started;
}
TerminalScreen& TerminalSession::screen() {
    return m_screen;
}
const TerminalScreen& TerminalSession::screen() const {
    return m_screen;
}
int TerminalSession::revision() const {
    return m_revision;
}
bool TerminalSession::running() const {
    return m_running;
}
std::optional<int> TerminalSession::exitCode() const {
    return m_exitCode;
}
int TerminalSession::pid() const {
    return m_pid;
}

void TerminalSession::start() {
    if (m_pid >= 0) return;
    const QByteArray line = searchPath + m_command.toUtf8();
    if (line.contains('\0')) {
        failStart(systemText(EINVAL));
        return;
    }
    if (!fitsOneArgument({line.constData(), static_cast<std::size_t>(line.size())})) {
        failStart(tr("the command is %1 bytes long, more than the system allows.")
                      .arg(QLocale(QLocale::English).toString(line.size())));
        return;
    }

    // The queue comes first: without it, a child could be started but not looked after.
    const std::shared_ptr<SerialQueue> queue = SerialQueue::create("orvo.pty");
    std::int32_t master = -1;
    if (queue) {
        m_pid = pelk_spawn(line.constData(), m_directory.bytes().constData(),
                           static_cast<std::uint16_t>(m_screen.rows()),
                           static_cast<std::uint16_t>(m_screen.columns()), &master);
    }
    if (m_pid < 1) {
        failStart(systemText(errno));
        return;
    }
    m_transport = PTYTransport::open(
        queue, master, this, [this](const QByteArray& batch) { receive(batch); },
        [this](int status) {
            m_pendingStatus = status;
            queueFeeding();
        });
    m_child = ChildProcess::watch(queue, m_pid,
                                  [transport = m_transport](int status) { transport->childExited(status); });

    const bool failedBefore = m_exitCode.has_value();
    m_exitCode.reset();
    m_running = true;
    m_attention.started(std::chrono::steady_clock::now());
    const QPointer<TerminalSession> alive(this);
    if (failedBefore) Q_EMIT exitCodeChanged();
    if (alive) Q_EMIT runningChanged();
    if (alive) refreshMark();
}

void TerminalSession::failStart(const QString& reason) {
    m_screen.feedText((tr("Could not start the terminal: ") + reason).toStdString());
    const bool first = assign(m_exitCode, -1);
    ++m_revision;
    m_attention.ended(std::chrono::steady_clock::now());

    const QPointer<TerminalSession> alive(this);
    refreshMark();
    if (!alive) return;
    if (first) Q_EMIT exitCodeChanged();
    if (alive) Q_EMIT revisionChanged();
    // A copy, because the callback may release the session and itself with it.
    if (const auto callback = alive ? onFinish : nullptr) callback(*this);
}

void TerminalSession::receive(const QByteArray& batch) {
    m_batches.push_back(batch);
    queueFeeding();
}

void TerminalSession::queueFeeding() {
    if (std::exchange(m_feedingQueued, true)) return;
    QMetaObject::invokeMethod(this, &TerminalSession::feedForOneTurn, Qt::QueuedConnection);
}

void TerminalSession::feedForOneTurn() {
    m_feedingQueued = false;
    const QPointer<TerminalSession> alive(this);
    const auto end = std::chrono::steady_clock::now() + turn;
    while (!m_batches.empty() && std::chrono::steady_clock::now() < end) {
        feedSlice();
        if (!alive) return;
    }
    if (!m_batches.empty()) {
        queueFeeding();
    } else if (const auto status = std::exchange(m_pendingStatus, std::nullopt)) {
        finish(*status);
    }
}

void TerminalSession::feedSlice() {
    const QByteArray& batch = m_batches.front();
    const qsizetype size = std::min(sliceSize, batch.size() - m_fed);
    m_screen.feed({batch.constData() + m_fed, static_cast<std::size_t>(size)});
    m_fed += size;
    m_transport->sendReplies(std::exchange(m_replies, {}));
    const QPointer<TerminalSession> alive(this);
    if (assign(m_programTitle, QString::fromStdString(m_screen.programTitle()))) Q_EMIT programTitleChanged();
    if (alive && std::exchange(m_clipboardWritten, false)) Q_EMIT clipboardTextChanged();
    if (!alive || m_fed < batch.size()) return;

    m_transport->consumed(batch.size());
    m_batches.pop_front();
    m_fed = 0;
    m_attention.outputArrived(std::chrono::steady_clock::now());
    refreshMark();
    if (!alive) return;
    ++m_revision;
    Q_EMIT revisionChanged();
}

/// A child that asks without ever reading the answers must not fill the memory with them.
void TerminalSession::answer(std::string_view reply) {
    if (!m_running || !m_transport) return;
    const auto size = static_cast<qsizetype>(reply.size());
    const qsizetype waiting = m_replies.size() + m_transport->unreadReplies();
    if (waiting + size <= PTYTransport::maximumUnreadReplies) m_replies.append(QByteArrayView(reply));
}

void TerminalSession::take(const TerminalRequest& request) {
    const auto text = [&request] {
        return QByteArrayView(request.text.data(), static_cast<qsizetype>(request.text.size()));
    };
    switch (request.kind) {
        case TerminalRequest::Kind::Bell:
            m_attention.asked(Attention::Cause::Bell, {}, std::chrono::steady_clock::now());
            break;
        case TerminalRequest::Kind::Notify:
            m_attention.asked(Attention::Cause::Message, QString::fromUtf8(text()),
                              std::chrono::steady_clock::now());
            break;
        case TerminalRequest::Kind::SetClipboard:
            if (m_clipboardAccess == ClipboardAccess::Refused) break;
            if (const auto decoded = QByteArray::fromBase64Encoding(
                    text().toByteArray(), QByteArray::AbortOnBase64DecodingErrors)) {
                m_clipboardText = QString::fromUtf8(decoded.decoded);
                m_clipboardWritten = true;
            }
            break;
    }
}

void TerminalSession::refreshMark() {
    const auto now = std::chrono::steady_clock::now();
    if (const auto next = m_attention.nextChange(now)) {
        // Looked at again at the end of the time, not at every batch.
        if (!m_nextMark.isActive())
            m_nextMark.start(std::chrono::ceil<std::chrono::milliseconds>(*next - now));
    } else {
        m_nextMark.stop();
    }
    if (assign(m_mark, m_attention.mark(now))) Q_EMIT markChanged();
}

Attention::Mark TerminalSession::mark() const {
    return m_mark;
}

QString TerminalSession::evidence() const {
    return m_attention.evidence(std::chrono::steady_clock::now());
}

QString TerminalSession::request() const {
    return m_attention.request();
}

void TerminalSession::setInFront(bool inFront) {
    m_attention.setInFront(inFront);
    refreshMark();
}

TerminalSession::ClipboardAccess TerminalSession::clipboardAccess() const {
    return m_clipboardAccess;
}

const std::optional<QString>& TerminalSession::clipboardText() const {
    return m_clipboardText;
}

void TerminalSession::setClipboardAccess(ClipboardAccess access) {
    if (!assign(m_clipboardAccess, access)) return;
    if (access == ClipboardAccess::Refused) m_clipboardText.reset();
    Q_EMIT clipboardTextChanged();
}

std::optional<QString> TerminalSession::takeClipboardText() {
    return std::exchange(m_clipboardText, std::nullopt);
}

void TerminalSession::finish(int status) {
    // Its thread and descriptors go now; the session itself may stay listed for hours.
    m_transport->close();
    m_transport.reset();
    m_child.reset();
    m_running = false;
    m_exitCode = status;
    m_attention.ended(std::chrono::steady_clock::now());
    m_screen.compact();

    const QPointer<TerminalSession> alive(this);
    refreshMark();
    if (!alive) return;
    Q_EMIT runningChanged();
    if (alive) Q_EMIT exitCodeChanged();
    if (const auto callback = alive ? onFinish : nullptr) callback(*this);
}

void TerminalSession::send(const QString& text) {
    sendBytes(text.toUtf8());
}

void TerminalSession::sendBytes(const QByteArray& bytes) {
    if (m_running && m_transport) m_transport->send(bytes);
}

void TerminalSession::resize(int rows, int columns) {
    const int newRows = std::max(rows, 3);
    const int newColumns = std::max(columns, 10);
    if (newRows == m_screen.rows() && newColumns == m_screen.columns()) return;
    m_screen.resize(newRows, newColumns);
    if (m_running && m_transport) m_transport->resize(m_screen.rows(), m_screen.columns());
}

void TerminalSession::setColors(const TerminalColors& colors) {
    m_screen.setColors(colors);
    if (m_transport) m_transport->sendReplies(std::exchange(m_replies, {}));
}

void TerminalSession::stop() {
    if (m_running && m_child) m_transport->stop(*m_child);
}

bool stopSessionsAndWait(const std::vector<std::shared_ptr<TerminalSession>>& sessions,
                         std::chrono::milliseconds limit) {
    for (const auto& session : sessions)
        session->stop();
    return ChildProcess::waitForTerminated(limit);
}

}  // namespace orvo
