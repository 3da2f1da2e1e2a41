#pragma once

#include "platform/Microphone.h"

#include <QCoreApplication>

#include <memory>

namespace orvo {

class SerialQueue;

/// The person's default microphone, through the desktop's sound server. There is a connection to it while
/// access is asked for and while the microphone is on, and a thread from the first question on.
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
    void start(Started started, Lost lost) override;
    void stop() override;

private:
    struct Shared;
    struct Recording;

    static void record(Shared& shared, const Recording& recording, const Started& started, const Lost& lost);
    /// Null when the system has no thread left.
    SerialQueue* audioThread();

    const std::shared_ptr<Shared> m_shared;
    std::shared_ptr<Recording> m_recording;
    std::shared_ptr<SerialQueue> m_thread;
};

}  // namespace orvo
