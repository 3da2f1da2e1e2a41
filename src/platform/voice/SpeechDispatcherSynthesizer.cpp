#include "platform/voice/SpeechDispatcherSynthesizer.h"

#include "platform/SerialQueue.h"
#include "platform/voice/SignalsOpen.h"

#include <QTimer>

#include <libspeechd.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string_view>

namespace orvo {
namespace {

using namespace std::chrono_literals;

// How often a service that reads is looked after: it may end without a word.
constexpr auto lookInterval = 1s;
// The slowest voices read two characters a second, and a busy machine starts slowly; beyond that nothing is
// being heard.
constexpr auto longestCharacter = 500ms;
constexpr auto longestSilence = 45s;
// What the end of the application may wait for silence.
constexpr auto farewell = 250ms;

tl::unexpected<Error> unavailable(const QString& sentence) {
    return failure(QStringLiteral("OrvoSpeech"), sentence);
}

/// Control characters say nothing, and are not allowed in the markup in which voices are given a text.
QByteArray readable(QString text) {
    for (QChar& character : text) {
        if (character.category() == QChar::Other_Control && character != u'\n' && character != u'\t')
            character = u' ';
    }
    return text.toUtf8();
}

}  // namespace

/// One text on its way. Its end is told once, by whichever thread finds it first.
struct SpeechDispatcherSynthesizer::Reading {
    explicit Reading(Finished answer) : finished(std::move(answer)) {}

    void end(const Result<void>& result) {
        if (!ended.exchange(true)) finished(result);
    }

    const Finished finished;
    std::atomic<bool> ended = false;
    /// The service has taken the text or refused it.
    std::atomic<bool> answered = false;
};

/// The connection. Its members are touched on its queue only, but for what is said otherwise.
class SpeechDispatcherSynthesizer::Service : public std::enable_shared_from_this<Service> {
public:
    explicit Service(std::shared_ptr<SerialQueue> queue) : m_queue(std::move(queue)) {}

    /// Main thread.
    void speak(const Utterance& utterance, const std::shared_ptr<Reading>& reading) {
        m_queue->async([self = shared_from_this(), utterance, reading, turn = ++m_turn] {
            if (self->m_turn == turn) self->begin(utterance, reading, turn);
            reading->answered = true;
        });
    }
    /// Main thread.
    void stop() {
        ++m_turn;
        m_queue->async([self = shared_from_this()] { self->silence(); });
    }
    /// Main thread. Silence, and the end of the connection; waits for it at most this long.
    void leave(std::chrono::milliseconds patience) {
        struct Gate {
            std::mutex mutex;
            std::condition_variable opened;
            bool isOpen = false;
        };
        ++m_turn;
        auto gate = std::make_shared<Gate>();
        // The last reference to the queue goes on the queue itself: nobody waits for a call that hangs.
        m_queue->async([self = shared_from_this(), queue = m_queue, gate] {
            self->silence();
            self->close();
            const std::lock_guard lock(gate->mutex);
            gate->isOpen = true;
            gate->opened.notify_all();
        });
        m_queue.reset();
        std::unique_lock lock(gate->mutex);
        gate->opened.wait_for(lock, patience, [&gate] { return gate->isOpen; });
    }

private:
    void begin(const Utterance& utterance, const std::shared_ptr<Reading>& reading, quint64 turn) {
        // The second time on a new connection: the service may have left since the last text.
        const bool mayBeStale = m_connection;
        Result<void> begun = say(utterance, turn);
        if (!begun && mayBeStale && m_turn == turn) {
            close();
            begun = say(utterance, turn);
        }
        if (!begun) {
            close();
            return reading->end(begun);
        }
        m_reading = reading;
        m_lookUntil = std::chrono::steady_clock::now() + longestSilence +
                      longestCharacter * static_cast<int>(utterance.text.size());
        lookAfter(reading);
    }

    /// Does nothing when the turn is over by the time that the service has started.
    Result<void> say(const Utterance& utterance, quint64 turn) {
        if (Result<void> opened = open(); !opened || m_turn != turn) return opened;
        // A voice of another language is better than none: the answer does not matter.
        (void)spd_set_language(m_connection, utterance.language.toUtf8().constData());
        m_message = spd_say(m_connection, SPD_MESSAGE, readable(utterance.text).constData());
        if (m_message <= 0)
            return unavailable(tr("Reading aloud is unavailable: the speech service refused the text."));
        return {};
    }

    Result<void> open() {
        if (m_connection) return {};
        char* reason = nullptr;
        {
            const SignalsOpen open;
            m_connection = spd_open2("orvo", "companion", nullptr, SPD_MODE_THREADED, nullptr, 1, &reason);
        }
        free(reason);
        if (!m_connection) {
            return unavailable(
                tr("Reading aloud is unavailable: the speech service (speech-dispatcher) did not start."));
        }
        watchEvents();
        if (!hasVoice()) {
            return unavailable(
                tr("Reading aloud is unavailable: the speech service has no voice. Install one, such as "
                   "speech-dispatcher-espeak-ng."));
        }
        return {};
    }

    void watchEvents() {
        m_client = static_cast<size_t>(std::max(0, spd_get_client_id(m_connection)));
        {
            const std::lock_guard lock(listeners().mutex);
            listeners().services[m_client] = weak_from_this();
        }
        m_connection->callback_end = &Service::ended;
        m_connection->callback_cancel = &Service::ended;
        spd_set_notification_on(m_connection, SPD_END);
        spd_set_notification_on(m_connection, SPD_CANCEL);
    }

    bool hasVoice() {
        char** modules = spd_list_modules(m_connection);
        bool found = false;
        // The dummy only plays a recording that says that there is no voice.
        for (char** module = modules; module && *module; ++module)
            found = found || std::string_view(*module) != "dummy";
        if (modules) free_spd_modules(modules);
        return found;
    }

    void silence() {
        m_reading.reset();
        if (m_connection) (void)spd_cancel(m_connection);
    }

    void close() {
        if (!m_connection) return;
        {
            const std::lock_guard lock(listeners().mutex);
            listeners().services.erase(m_client);
        }
        spd_close(std::exchange(m_connection, nullptr));
    }

    // A service that ends sends no event, and one without a sound device never comes to the end of a text.
    void lookAfter(const std::shared_ptr<Reading>& reading) {
        const auto queue = m_events.lock();
        if (!queue) return;
        queue->after(lookInterval, [weak = weak_from_this(), reading] {
            const auto self = weak.lock();
            if (!self || self->m_reading != reading) return;
            if (spd_set_notification_on(self->m_connection, SPD_END) != 0) {
                self->fail(tr("Reading aloud ended: the speech service is gone."));
            } else if (std::chrono::steady_clock::now() > self->m_lookUntil) {
                self->silence();
                reading->end(unavailable(tr("Reading aloud ended: the speech service makes no sound.")));
            } else {
                self->lookAfter(reading);
            }
        });
    }

    void fail(const QString& sentence) {
        const auto reading = std::exchange(m_reading, nullptr);
        close();
        if (reading) reading->end(unavailable(sentence));
    }

    /// The library's callbacks carry nothing but numbers, and come on its own thread.
    struct Listeners {
        std::mutex mutex;
        std::map<size_t, std::weak_ptr<Service>> services;
    };
    static Listeners& listeners() {
        static auto* const all = new Listeners;
        return *all;
    }
    static void ended(size_t message, size_t client, SPDNotificationType) {
        std::shared_ptr<Service> service;
        {
            const std::lock_guard lock(listeners().mutex);
            const auto found = listeners().services.find(client);
            if (found != listeners().services.end()) service = found->second.lock();
        }
        if (!service) return;
        const auto queue = service->m_events.lock();
        if (!queue) return;
        queue->async([service, message] {
            if (service->m_message != static_cast<int>(message)) return;
            if (const auto reading = std::exchange(service->m_reading, nullptr)) reading->end({});
        });
    }

    /// Main thread only; empty once it has left.
    std::shared_ptr<SerialQueue> m_queue;
    /// The same one, for every other thread.
    const std::weak_ptr<SerialQueue> m_events = m_queue;
    /// Changed on the main thread by every text and every stop; a text whose turn is over is not begun.
    std::atomic<quint64> m_turn = 0;
    SPDConnection* m_connection = nullptr;
    size_t m_client = 0;
    int m_message = 0;
    std::shared_ptr<Reading> m_reading;
    std::chrono::steady_clock::time_point m_lookUntil;
};

SpeechDispatcherSynthesizer::SpeechDispatcherSynthesizer(std::chrono::milliseconds limit) : m_limit(limit) {}

SpeechDispatcherSynthesizer::~SpeechDispatcherSynthesizer() {
    if (m_service) m_service->leave(farewell);
}

void SpeechDispatcherSynthesizer::speak(const Utterance& utterance, Finished finished) {
    const auto reading = std::make_shared<Reading>(std::move(finished));
    if (!m_service && m_stuck.expired()) {
        if (auto queue = SerialQueue::create("orvo.speech"))
            m_service = std::make_shared<Service>(std::move(queue));
    }
    const auto service = m_service;
    if (service) service->speak(utterance, reading);
    QTimer::singleShot(service ? m_limit : 0ms, &m_context, [this, reading, service] {
        if (reading->answered) return;
        if (service && service == m_service) abandon();
        reading->end(unavailable(tr("Reading aloud is unavailable: the speech service does not answer.")));
    });
}

void SpeechDispatcherSynthesizer::abandon() {
    m_stuck = m_service;
    std::exchange(m_service, nullptr)->leave(0ms);
}

void SpeechDispatcherSynthesizer::stop() {
    if (m_service) m_service->stop();
}

}  // namespace orvo
