#pragma once

#include "platform/SpeechRecognition.h"

namespace orvo {

/// A recogniser that is a shell command of the person's own; how it is spoken to stands in
/// docs/formats/preferences.md. Each stretch of sound starts it anew. Main thread, but for what
/// `RecognitionTask` allows elsewhere.
class CommandRecognizer final : public Recognizer {
public:
    CommandRecognizer(QString command, QString locale)
        : m_command(std::move(command)), m_locale(std::move(locale)) {}

    bool isAvailable() const override { return true; }
    /// Nobody knows what the command does.
    bool supportsOnDeviceRecognition() const override { return false; }
    std::shared_ptr<RecognitionTask> start(AudioFormat format, Where where, Handler handler) override;

private:
    const QString m_command;
    const QString m_locale;
};

}  // namespace orvo
