#pragma once

#include "platform/Microphone.h"

#include <QCoreApplication>
#include <QObject>

#include <memory>

class QThread;

namespace orvo {

/// The person's default microphone, through the desktop's sound server. Nothing is loaded and no thread
/// started before access is asked for.
class AudioInput final : public Microphone {
    Q_DECLARE_TR_FUNCTIONS(AudioInput)

public:
    /// Of one piece of sound that the tap takes.
    static constexpr int framesInAPiece = 1024;

    AudioInput();
    /// Switches the microphone off.
    ~AudioInput() override;

    /// Looks which microphone there is. Desktops of this kind ask nobody: the answer is yes, and without a
    /// microphone `inputFormat` is not usable.
    void requestAccess(Answer answer) override;
    AudioFormat inputFormat() const override;
    void installTap(Tap tap) override;
    void removeTap() override;
    void start(Started started) override;
    void stop() override;

private:
    class Capture;
    struct Shared;

    /// Runs `work` on the audio thread, after all that was given to it before.
    void onAudioThread(std::function<void(Capture&)> work);

    const std::shared_ptr<Shared> m_shared;
    QThread* m_thread = nullptr;
    Capture* m_capture = nullptr;
    /// Ends the waiting for a sound server that hangs with this object.
    QObject m_context;
};

}  // namespace orvo
