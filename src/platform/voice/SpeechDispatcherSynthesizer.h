#pragma once

#include "platform/SpeechSynthesizer.h"

#include <QCoreApplication>
#include <QObject>

#include <chrono>
#include <memory>

namespace orvo {

/// Reads aloud through the desktop's speech service, speech-dispatcher, which is started when it does not
/// run. Nothing is loaded and no thread started before the first text.
class SpeechDispatcherSynthesizer final : public SpeechSynthesizer {
    Q_DECLARE_TR_FUNCTIONS(SpeechDispatcherSynthesizer)

public:
    /// How long the service may take to accept a text, its own start included.
    static constexpr std::chrono::milliseconds answerLimit = std::chrono::seconds(30);

    explicit SpeechDispatcherSynthesizer(std::chrono::milliseconds limit = answerLimit);
    /// Silences what is being read.
    ~SpeechDispatcherSynthesizer() override;

    void speak(const Utterance& utterance, Finished finished) override;
    void stop() override;

private:
    class Service;
    struct Reading;

    void abandon();

    const std::chrono::milliseconds m_limit;
    std::shared_ptr<Service> m_service;
    /// A service whose thread waits in a call that never came back; watched so that there is one at most.
    std::weak_ptr<Service> m_stuck;
    /// Bounds the waiting for an answer by the main thread's life with this object.
    QObject m_context;
};

}  // namespace orvo
