#pragma once

#include "platform/Microphone.h"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

struct pa_context;
struct pa_mainloop;
struct pa_stream;

namespace orvo {

/// A connection to the desktop's sound server, which PulseAudio and PipeWire both speak. One thread, which
/// waits for the server here: never longer than a few seconds, and no longer than a tenth of one after
/// `leave` has become true.
class PulseConnection {
public:
    struct Source {
        QByteArray name;
        AudioFormat format;
    };
    using Take = std::function<void(const char* samples, size_t size)>;

    /// `leave` outlives this.
    explicit PulseConnection(const std::atomic<bool>& leave);
    ~PulseConnection();

    bool open();
    /// The person's default source, else another one; what plays on the speakers is none. Nothing without
    /// one.
    std::optional<Source> findSource();
    /// Begins to record in the format of the source, 16 bits a sample, in pieces of about that many frames.
    bool record(const Source& source, int framesInAPiece);
    /// Waits a moment for sound, and hands it on. False when there will be no more.
    bool listen(const Take& take);
    /// Why the last operation came to nothing, in the words of the server.
    QString reason() const;

private:
    /// Runs the connection until `done`; false when it fails, or takes too long.
    template <class Done>
    bool waitUntil(Done done);
    bool isAlive() const;
    /// Waits for the server's next word, for a tenth of a second at most.
    bool turn();

    struct Free {
        void operator()(pa_mainloop* loop) const;
        void operator()(pa_context* context) const;
        void operator()(pa_stream* stream) const;
    };

    const std::atomic<bool>& m_leave;
    std::unique_ptr<pa_mainloop, Free> m_loop;
    std::unique_ptr<pa_context, Free> m_context;
    std::unique_ptr<pa_stream, Free> m_stream;
};

}  // namespace orvo
