#pragma once

#include "platform/Result.h"

#include <QByteArray>

#include <functional>

namespace orvo {

/// What a source of sound delivers.
struct AudioFormat {
    double sampleRate = 0;
    int channels = 0;

    bool isUsable() const { return sampleRate > 0 && channels > 0; }
};

/// The sound input of this computer. Called on the main thread; nothing here waits for the sound server.
class Microphone {
public:
    using Answer = std::function<void(bool granted)>;
    using Started = std::function<void(Result<void>)>;
    /// The input has gone while it was on, or brings nothing any more.
    using Lost = std::function<void()>;
    /// Takes signed 16-bit samples in the order of the machine, channels interleaved.
    using Tap = std::function<void(const QByteArray& samples)>;

    virtual ~Microphone() = default;

    /// Asks the system, and perhaps the person. `answer` comes later, on any thread.
    virtual void requestAccess(Answer answer) = 0;
    /// Of the input that `start` would use, as it was when access was asked for; not usable when there is
    /// none.
    virtual AudioFormat inputFormat() const = 0;
    /// `tap` is called on the audio thread with every piece of sound, about 1024 frames long, until it is
    /// removed.
    virtual void installTap(Tap tap) = 0;
    /// `tap` is not called any more when this returns.
    virtual void removeTap() = 0;
    /// `started` comes later, on any thread; a `stop` before it may keep it from coming. After a good start
    /// `lost` may come, once and on any thread too; the input is to be stopped then all the same.
    virtual void start(Started started, Lost lost) = 0;
    virtual void stop() = 0;
};

}  // namespace orvo
