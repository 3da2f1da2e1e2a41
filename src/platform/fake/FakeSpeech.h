#pragma once

#include "platform/SpeechRecognition.h"
#include "platform/SpeechSynthesizer.h"

#include <QStringList>

namespace orvo {

/// A microphone that records in `log` what it is asked, and whose answers wait until the test gives them.
class FakeMicrophone final : public Microphone {
public:
    QStringList log;
    AudioFormat format{48000, 1};
    Answer access;
    Started started;
    Lost lost;
    Tap tap;

    void requestAccess(Answer answer) override {
        log.append(QStringLiteral("access?"));
        access = std::move(answer);
    }
    AudioFormat inputFormat() const override { return format; }
    void installTap(Tap newTap) override {
        log.append(QStringLiteral("tap"));
        tap = std::move(newTap);
    }
    void removeTap() override {
        log.append(QStringLiteral("untap"));
        tap = {};
    }
    void start(Started answer, Lost newLost) override {
        log.append(QStringLiteral("start"));
        started = std::move(answer);
        lost = std::move(newLost);
    }
    void stop() override { log.append(QStringLiteral("stop")); }
};

/// Recognisers that record in `log`; what they hear and say goes through the test.
class FakeSpeechRecognition final : public SpeechRecognition {
public:
    QStringList log;
    bool hasRecognizer = true;
    bool available = true;
    bool onDevice = true;
    Microphone::Answer authorization;
    Recognizer::Handler handler;
    QByteArray heard;

    void requestAuthorization(Microphone::Answer answer) override {
        log.append(QStringLiteral("authorized?"));
        authorization = std::move(answer);
    }
    std::unique_ptr<Recognizer> recognizer(const QString& locale) override {
        log.append(QStringLiteral("recognizer ") + locale);
        if (!hasRecognizer) return nullptr;
        return std::make_unique<Language>(*this);
    }

private:
    class Task final : public RecognitionTask {
    public:
        explicit Task(FakeSpeechRecognition& owner) : m_owner(owner) {}
        void append(const QByteArray& samples) override { m_owner.heard += samples; }
        void endAudio() override { m_owner.log.append(QStringLiteral("end")); }
        void cancel() override { m_owner.log.append(QStringLiteral("cancel")); }

    private:
        FakeSpeechRecognition& m_owner;
    };

    class Language final : public Recognizer {
    public:
        explicit Language(FakeSpeechRecognition& owner) : m_owner(owner) {}
        bool isAvailable() const override { return m_owner.available; }
        bool supportsOnDeviceRecognition() const override { return m_owner.onDevice; }
        std::shared_ptr<RecognitionTask> start(AudioFormat, Where where, Handler tell) override {
            m_owner.log.append(where == Where::OnDeviceOnly ? QStringLiteral("recognize on device")
                                                            : QStringLiteral("recognize anywhere"));
            m_owner.handler = std::move(tell);
            return std::make_shared<Task>(m_owner);
        }

    private:
        FakeSpeechRecognition& m_owner;
    };
};

/// A voice that records what it is to say and ends when the test says so.
class FakeSpeechSynthesizer final : public SpeechSynthesizer {
public:
    QList<Utterance> spoken;
    Finished finished;
    int stops = 0;

    void speak(const Utterance& utterance, Finished answer) override {
        spoken.append(utterance);
        finished = std::move(answer);
    }
    void stop() override { ++stops; }
};

}  // namespace orvo
