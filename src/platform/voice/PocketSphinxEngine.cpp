#include "platform/voice/PocketSphinxEngine.h"

#include "platform/SerialQueue.h"
#include "platform/voice/PocketSphinxModel.h"
#include "platform/voice/SpeechSound.h"

#include <QCoreApplication>
#include <QStringList>

#include <atomic>

namespace orvo {
namespace {

Error broken(const char* reason) {
    return {QStringLiteral("OrvoListening"), 1, QCoreApplication::translate("PocketSphinxEngine", reason)};
}

}  // namespace

/// The thread that listens, and the model, which is touched there only.
class PocketSphinxEngine::Listener {
public:
    /// Null when the system has no thread left. Goes away on its own thread, once it has done what it was
    /// given: nobody waits for a model that is being loaded.
    static std::shared_ptr<Listener> create() {
        auto queue = SerialQueue::create("orvo.listen");
        if (!queue) return nullptr;
        return {new Listener(std::move(queue)), [](Listener* listener) {
                    const auto own = listener->m_queue;
                    own->async([listener, own] { delete listener; });
                }};
    }

    /// Any thread.
    static void post(const std::shared_ptr<Listener>& self, std::function<void(Listener&)> work) {
        self->m_queue->async([self, work = std::move(work)] { work(*self); });
    }

    /// Null when it cannot be loaded; tried again the next time.
    PocketSphinxModel* model() {
        if (!m_model) m_model = PocketSphinxModel::load();
        return m_model.get();
    }

private:
    explicit Listener(std::shared_ptr<SerialQueue> queue) : m_queue(std::move(queue)) {}

    const std::shared_ptr<SerialQueue> m_queue;
    std::unique_ptr<PocketSphinxModel> m_model;
};

class PocketSphinxEngine::Task final : public RecognitionTask {
public:
    Task(std::shared_ptr<Listener> listener, AudioFormat format, Recognizer::Handler handler)
        : m_listener(std::move(listener)), m_state(std::make_shared<State>(format, std::move(handler))) {
        post(&State::begin);
    }
    ~Task() override { cancel(); }

    void append(const QByteArray& samples) override {
        post([samples](State& state, PocketSphinxModel& model) { state.hear(model, samples); });
    }
    void endAudio() override { post(&State::finish); }
    void cancel() override {
        if (m_state->cancelled.exchange(true)) return;
        // The model is left between two sentences, ready for the next stretch.
        Listener::post(m_listener, [state = m_state](Listener& listener) {
            if (state->listening) listener.model()->endSentence();
            state->listening = false;
        });
    }

private:
    /// Of one stretch of sound; on the listening thread but for `cancelled`.
    struct State {
        State(AudioFormat format, Recognizer::Handler callback)
            : handler(std::move(callback)), sound(format) {}

        void begin(PocketSphinxModel& model) {
            model.beginSentence();
            listening = true;
        }
        void hear(PocketSphinxModel& model, const QByteArray& samples) {
            if (!listening) return;
            const QByteArray piece = sound.convert(samples);
            const bool isSpeech = model.hear(piece);
            if (isSpeech) {
                speaking = true;
                silentSamples = 0;
                report(text(model.words()));
            } else if (speaking) {
                // A pause: what comes next is judged without what came before it.
                model.endSentence();
                keep(model.words());
                model.beginSentence();
                speaking = false;
                report(text({}));
            } else {
                silentSamples += piece.size() / static_cast<qsizetype>(sizeof(qint16));
            }
            if (!sentences.isEmpty() && silentSamples > qsizetype(secondsOfSilence) * SpeechSound::sampleRate)
                finish(model);
        }
        void finish(PocketSphinxModel& model) {
            if (!listening) return;
            listening = false;
            model.endSentence();
            keep(model.words());
            handler(Transcription{.text = text({}), .isFinal = true}, std::nullopt);
        }
        void keep(const QString& words) {
            if (!words.isEmpty()) sentences.append(words);
        }
        QString text(const QString& growing) const {
            return (growing.isEmpty() ? sentences : sentences + QStringList{growing}).join(u' ');
        }
        void report(const QString& whole) {
            if (whole == reported) return;
            reported = whole;
            handler(Transcription{.text = whole, .isFinal = false}, std::nullopt);
        }

        const Recognizer::Handler handler;
        SpeechSound sound;
        QStringList sentences;
        QString reported;
        qsizetype silentSamples = 0;
        bool speaking = false;
        bool listening = false;
        bool failed = false;
        std::atomic<bool> cancelled = false;
    };

    template <class Step>
    void post(const Step& step) {
        Listener::post(m_listener, [state = m_state, step](Listener& listener) {
            if (state->cancelled || state->failed) return;
            PocketSphinxModel* model = listener.model();
            if (model) return std::invoke(step, *state, *model);
            state->failed = true;
            state->handler(std::nullopt, broken(QT_TRANSLATE_NOOP("PocketSphinxEngine",
                                                                  "The speech model cannot be read.")));
        });
    }

    const std::shared_ptr<Listener> m_listener;
    const std::shared_ptr<State> m_state;
};

class PocketSphinxEngine::Language final : public Recognizer {
public:
    explicit Language(std::shared_ptr<Listener> listener) : m_listener(std::move(listener)) {}

    bool isAvailable() const override { return m_listener != nullptr; }
    bool supportsOnDeviceRecognition() const override { return true; }
    std::shared_ptr<RecognitionTask> start(AudioFormat format, Where, Handler handler) override {
        return std::make_shared<Task>(m_listener, format, std::move(handler));
    }

private:
    const std::shared_ptr<Listener> m_listener;
};

PocketSphinxEngine::PocketSphinxEngine() = default;
PocketSphinxEngine::~PocketSphinxEngine() = default;

std::unique_ptr<Recognizer> PocketSphinxEngine::recognizer(const QString& locale) {
    if (!PocketSphinxModel::isInstalledFor(locale.section(u'_', 0, 0))) return nullptr;
    if (!m_listener) m_listener = Listener::create();
    return std::make_unique<Language>(m_listener);
}

}  // namespace orvo
