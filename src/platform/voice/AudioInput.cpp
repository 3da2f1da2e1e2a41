#include "platform/voice/AudioInput.h"

#include <QAudioDevice>
#include <QAudioFormat>
#include <QAudioSource>
#include <QMediaDevices>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <mutex>

namespace orvo {
namespace {

using namespace std::chrono_literals;

// A sound server that has not named its microphones by then hangs.
constexpr auto longestSearch = 8s;
// What the end of the application may wait for the audio thread.
constexpr auto farewell = 500ms;

AudioFormat described(const QAudioFormat& format) {
    return {.sampleRate = static_cast<double>(format.sampleRate()), .channels = format.channelCount()};
}

}  // namespace

/// What both threads look at.
struct AudioInput::Shared {
    /// Held while the tap runs, so that its removal waits for it.
    std::mutex tapMutex;
    Tap tap;
    std::mutex formatMutex;
    AudioFormat format;

    void setFormat(AudioFormat found) {
        const std::lock_guard lock(formatMutex);
        format = found;
    }
    void pass(const QByteArray& samples) {
        const std::lock_guard lock(tapMutex);
        if (tap) tap(samples);
    }
};

/// Lives on the audio thread: the sound server is waited for here.
class AudioInput::Capture : public QObject {
public:
    explicit Capture(std::shared_ptr<Shared> shared) : m_shared(std::move(shared)) {}

    void findMicrophone() {
        m_device = QMediaDevices::defaultAudioInput();
        m_format = {};
        if (!m_device.isNull()) {
            m_format = m_device.preferredFormat();
            m_format.setSampleFormat(QAudioFormat::Int16);
        }
        m_shared->setFormat(described(m_format));
    }

    bool start() {
        stop();
        if (m_device.isNull() || !m_format.isValid()) return false;
        m_source = std::make_unique<QAudioSource>(m_device, m_format);
        QIODevice* sound = m_source->start();
        if (!sound || m_source->error() != QAudio::NoError) {
            m_source.reset();
            return false;
        }
        connect(sound, &QIODevice::readyRead, this, [this, sound] { take(sound->readAll()); });
        return true;
    }

    void stop() {
        if (m_source) m_source->stop();
        m_source.reset();
        m_rest.clear();
    }

private:
    void take(const QByteArray& sound) {
        m_rest += sound;
        const qsizetype piece = m_format.bytesForFrames(framesInAPiece);
        qsizetype passed = 0;
        for (; m_rest.size() - passed >= piece; passed += piece)
            m_shared->pass(m_rest.mid(passed, piece));
        m_rest.remove(0, passed);
    }

    const std::shared_ptr<Shared> m_shared;
    QAudioDevice m_device;
    QAudioFormat m_format;
    std::unique_ptr<QAudioSource> m_source;
    QByteArray m_rest;
};

AudioInput::AudioInput() : m_shared(std::make_shared<Shared>()) {}

AudioInput::~AudioInput() {
    removeTap();
    if (!m_thread) return;
    m_capture->deleteLater();
    m_thread->quit();
    // A thread that waits for a hanging sound server ends with the process.
    if (m_thread->wait(QDeadlineTimer(farewell))) delete m_thread;
}

void AudioInput::onAudioThread(std::function<void(Capture&)> work) {
    if (!m_thread) {
        m_thread = new QThread;
        m_thread->setObjectName(QStringLiteral("orvo.audio"));
        m_capture = new Capture(m_shared);
        m_capture->moveToThread(m_thread);
        m_thread->start(QThread::TimeCriticalPriority);
    }
    QMetaObject::invokeMethod(
        m_capture, [capture = m_capture, work = std::move(work)] { work(*capture); }, Qt::QueuedConnection);
}

void AudioInput::requestAccess(Answer answer) {
    m_shared->setFormat({});
    const auto once = std::make_shared<std::atomic<bool>>(false);
    const auto answered = [once, answer = std::move(answer)] {
        if (!once->exchange(true)) answer(true);
    };
    onAudioThread([answered](Capture& capture) {
        capture.findMicrophone();
        answered();
    });
    QTimer::singleShot(longestSearch, &m_context, answered);
}

AudioFormat AudioInput::inputFormat() const {
    const std::lock_guard lock(m_shared->formatMutex);
    return m_shared->format;
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

void AudioInput::start(Started started) {
    onAudioThread([started = std::move(started)](Capture& capture) {
        if (capture.start()) return started({});
        started(failure(QStringLiteral("OrvoSound"), tr("the sound server does not open it.")));
    });
}

void AudioInput::stop() {
    if (!m_thread) return;
    onAudioThread([](Capture& capture) { capture.stop(); });
}

}  // namespace orvo
