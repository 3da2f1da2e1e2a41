#include "platform/voice/PulseConnection.h"

#include "platform/voice/SignalsOpen.h"

#include <pulse/pulseaudio.h>

#include <QList>

#include <algorithm>
#include <chrono>

namespace orvo {
namespace {

using namespace std::chrono_literals;

// A server that has not answered by then hangs.
constexpr auto longestAnswer = 4s;
constexpr std::chrono::microseconds oneTurn = 100ms;

struct Found {
    QByteArray defaultName;
    QList<PulseConnection::Source> sources;
    int answers = 0;
};

void takeServer(pa_context*, const pa_server_info* info, void* target) {
    auto* found = static_cast<Found*>(target);
    if (info && info->default_source_name) found->defaultName = info->default_source_name;
    ++found->answers;
}

void takeSource(pa_context*, const pa_source_info* info, int isLast, void* target) {
    auto* found = static_cast<Found*>(target);
    if (isLast != 0) {
        ++found->answers;
        return;
    }
    // Every output has a source that repeats what it plays; it hears no person.
    if (info->monitor_of_sink != PA_INVALID_INDEX) return;
    found->sources.append({.name = info->name,
                           .format = {.sampleRate = static_cast<double>(info->sample_spec.rate),
                                      .channels = info->sample_spec.channels}});
}

/// An answer may come after nobody waits for it any more.
class Question {
public:
    explicit Question(pa_operation* operation) : m_operation(operation) {}
    ~Question() {
        if (!m_operation) return;
        pa_operation_cancel(m_operation);
        pa_operation_unref(m_operation);
    }
    Question(const Question&) = delete;
    Question& operator=(const Question&) = delete;

private:
    pa_operation* const m_operation;
};

}  // namespace

PulseConnection::PulseConnection(const std::atomic<bool>& leave) : m_leave(leave) {}

PulseConnection::~PulseConnection() = default;

void PulseConnection::Free::operator()(pa_mainloop* loop) const {
    pa_mainloop_free(loop);
}

void PulseConnection::Free::operator()(pa_context* context) const {
    pa_context_disconnect(context);
    pa_context_unref(context);
}

void PulseConnection::Free::operator()(pa_stream* stream) const {
    pa_stream_disconnect(stream);
    pa_stream_unref(stream);
}

bool PulseConnection::isAlive() const {
    if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(m_context.get()))) return false;
    return !m_stream || PA_STREAM_IS_GOOD(pa_stream_get_state(m_stream.get()));
}

bool PulseConnection::turn() {
    if (pa_mainloop_prepare(m_loop.get(), static_cast<int>(oneTurn.count())) < 0) return false;
    if (pa_mainloop_poll(m_loop.get()) < 0) return false;
    return pa_mainloop_dispatch(m_loop.get()) >= 0;
}

template <class Done>
bool PulseConnection::waitUntil(Done done) {
    const auto deadline = std::chrono::steady_clock::now() + longestAnswer;
    while (!done()) {
        if (m_leave || !isAlive() || std::chrono::steady_clock::now() > deadline) return false;
        if (!turn()) return false;
    }
    return true;
}

bool PulseConnection::open() {
    m_loop.reset(pa_mainloop_new());
    if (!m_loop) return false;
    m_context.reset(pa_context_new(pa_mainloop_get_api(m_loop.get()), "Orvo AI"));
    if (!m_context) return false;
    {
        const SignalsOpen open;
        if (pa_context_connect(m_context.get(), nullptr, PA_CONTEXT_NOFLAGS, nullptr) < 0) return false;
    }
    return waitUntil([this] { return pa_context_get_state(m_context.get()) == PA_CONTEXT_READY; });
}

std::optional<PulseConnection::Source> PulseConnection::findSource() {
    Found found;
    const Question server(pa_context_get_server_info(m_context.get(), takeServer, &found));
    const Question sources(pa_context_get_source_info_list(m_context.get(), takeSource, &found));
    if (!waitUntil([&found] { return found.answers == 2; }) || found.sources.isEmpty()) return std::nullopt;
    const auto preferred = std::ranges::find(found.sources, found.defaultName, &Source::name);
    return preferred != found.sources.end() ? *preferred : found.sources.first();
}

bool PulseConnection::record(const Source& source, int framesInAPiece) {
    const pa_sample_spec format{.format = PA_SAMPLE_S16NE,
                                .rate = static_cast<uint32_t>(source.format.sampleRate),
                                .channels = static_cast<uint8_t>(source.format.channels)};
    m_stream.reset(pa_stream_new(m_context.get(), "Dictation", &format, nullptr));
    if (!m_stream) return false;
    constexpr auto anything = static_cast<uint32_t>(-1);
    const pa_buffer_attr sizes{
        .maxlength = anything,
        .tlength = anything,
        .prebuf = anything,
        .minreq = anything,
        .fragsize = static_cast<uint32_t>(pa_frame_size(&format)) * static_cast<uint32_t>(framesInAPiece)};
    if (pa_stream_connect_record(m_stream.get(), source.name.constData(), &sizes, PA_STREAM_ADJUST_LATENCY) <
        0)
        return false;
    return waitUntil([this] { return pa_stream_get_state(m_stream.get()) == PA_STREAM_READY; });
}

bool PulseConnection::listen(const Take& take) {
    if (!turn() || !isAlive()) return false;
    while (pa_stream_readable_size(m_stream.get()) > 0) {
        const void* samples = nullptr;
        size_t size = 0;
        if (pa_stream_peek(m_stream.get(), &samples, &size) < 0) return false;
        if (size == 0) return true;
        // A hole is sound that was lost on the way.
        if (samples)
            take(static_cast<const char*>(samples), size);
        else
            take(QByteArray(static_cast<qsizetype>(size), '\0').constData(), size);
        pa_stream_drop(m_stream.get());
    }
    return true;
}

QString PulseConnection::reason() const {
    return m_context ? QString::fromUtf8(pa_strerror(pa_context_errno(m_context.get()))) : QString();
}

}  // namespace orvo
