#include "platform/voice/AudioInput.h"

#include "platform/SerialQueue.h"
#include "platform/voice/PulseConnection.h"

#include <atomic>
#include <chrono>
#include <mutex>

namespace orvo {
namespace {

using namespace std::chrono_literals;

// A microphone that is on brings a piece of sound every few hundredths of a second, silence included.
constexpr auto longestGap = 3s;

tl::unexpected<Error> notOpened(const QString& message) {
    return failure(QStringLiteral("OrvoSound"), message);
}

/// Cuts a stream of sound into pieces of one size.
class Pieces {
public:
    Pieces(qsizetype size, Microphone::Tap take) : m_size(size), m_take(std::move(take)) {}

    void append(const char* samples, size_t size) {
        m_rest.append(samples, static_cast<qsizetype>(size));
        qsizetype taken = 0;
        for (; m_rest.size() - taken >= m_size; taken += m_size)
            m_take(m_rest.mid(taken, m_size));
        m_rest.remove(0, taken);
    }

private:
    const qsizetype m_size;
    const Microphone::Tap m_take;
    QByteArray m_rest;
};

}  // namespace

/// What both threads look at.
struct AudioInput::Shared {
    /// Held while the tap runs, so that its removal waits for it.
    std::mutex tapMutex;
    Tap tap;
    mutable std::mutex sourceMutex;
    std::optional<PulseConnection::Source> source;
    std::atomic<bool> leave = false;

    void setSource(std::optional<PulseConnection::Source> found) {
        const std::lock_guard lock(sourceMutex);
        source = std::move(found);
    }
    std::optional<PulseConnection::Source> currentSource() const {
        const std::lock_guard lock(sourceMutex);
        return source;
    }
    void pass(const QByteArray& samples) {
        const std::lock_guard lock(tapMutex);
        if (tap) tap(samples);
    }
};

/// From one `start` to its `stop`.
struct AudioInput::Recording {
    std::atomic<bool> stopped = false;
};

AudioInput::AudioInput() : m_shared(std::make_shared<Shared>()) {}

AudioInput::~AudioInput() {
    m_shared->leave = true;
    stop();
    removeTap();
}

SerialQueue* AudioInput::audioThread() {
    if (!m_thread) m_thread = SerialQueue::create("orvo.audio");
    return m_thread.get();
}

void AudioInput::requestAccess(Answer answer) {
    m_shared->setSource(std::nullopt);
    SerialQueue* thread = audioThread();
    if (!thread) return answer(true);
    thread->async([shared = m_shared, answer = std::move(answer)] {
        PulseConnection connection(shared->leave);
        if (connection.open()) shared->setSource(connection.findSource());
        answer(true);
    });
}

AudioFormat AudioInput::inputFormat() const {
    const auto source = m_shared->currentSource();
    return source ? source->format : AudioFormat();
}

void AudioInput::installTap(Tap tap) {
    const std::lock_guard lock(m_shared->tapMutex);
    m_shared->tap = std::move(tap);
}

void AudioInput::removeTap() {
    Tap removed;
    const std::lock_guard lock(m_shared->tapMutex);
    removed.swap(m_shared->tap);
}

void AudioInput::start(Started started, Lost lost) {
    stop();
    SerialQueue* thread = audioThread();
    if (!thread) return started(notOpened(tr("the system has no thread left.")));
    m_recording = std::make_shared<Recording>();
    thread->async([shared = m_shared, recording = m_recording, started = std::move(started),
                   lost = std::move(lost)] { record(*shared, *recording, started, lost); });
}

void AudioInput::record(Shared& shared, const Recording& recording, const Started& started,
                        const Lost& lost) {
    if (recording.stopped) return;
    const auto source = shared.currentSource();
    if (!source) return started(notOpened(tr("there is none.")));
    PulseConnection connection(shared.leave);
    if (!connection.open() || !connection.record(*source, framesInAPiece))
        return started(notOpened(tr("the sound server does not open it (%1).").arg(connection.reason())));
    started({});
    Pieces pieces(qsizetype{framesInAPiece} * source->format.channels * qsizetype{sizeof(qint16)},
                  [&shared](const QByteArray& samples) { shared.pass(samples); });
    auto lastSound = std::chrono::steady_clock::now();
    while (!recording.stopped) {
        const bool isOn = connection.listen([&](const char* samples, size_t size) {
            lastSound = std::chrono::steady_clock::now();
            if (!recording.stopped) pieces.append(samples, size);
        });
        if (!isOn || std::chrono::steady_clock::now() - lastSound > longestGap) return lost();
    }
}

void AudioInput::stop() {
    if (const auto recording = std::exchange(m_recording, nullptr)) recording->stopped = true;
}

}  // namespace orvo
