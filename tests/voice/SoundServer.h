#pragma once

#include "support/WaitFor.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QProcess>
#include <QString>

#include <chrono>
#include <memory>

namespace orvo::test {

/// Sound takes its own time, and services that play it in small pieces take several times that on a machine
/// that is busy with other tests.
template <class Condition>
[[nodiscard]] bool waitLong(Condition condition, std::chrono::milliseconds limit = std::chrono::seconds(90)) {
    return waitFor(std::move(condition), limit);
}

/// The name of the first of these programs that is not installed; empty when all are.
QString missingProgram(std::initializer_list<const char*> programs);

/// Ends a process that is no child of this one: kindly, then by force.
void endProcess(qint64 pid);

/// A sound server of this test alone. What is played goes nowhere, but can be listened to; a microphone hears
/// it when asked for.
class SoundServer {
public:
    enum class Microphone { None, HearsWhatIsPlayed };

    explicit SoundServer(Microphone microphone = Microphone::None);
    ~SoundServer();

    /// Why it does not run; empty when it does.
    const QString& fault() const { return m_fault; }
    qint64 pid() const { return m_server.processId(); }

private:
    QProcess m_server;
    QString m_fault;
};

/// Listens to what is played.
class SoundMeter {
public:
    SoundMeter();
    ~SoundMeter();

    /// The recording has begun.
    bool isOn() const { return m_on; }
    /// Something was heard since the last call.
    bool takeHeard();
    /// How long ago the last sound was heard; huge when there was none.
    qint64 silentFor() const;

private:
    QProcess m_recorder;
    QElapsedTimer m_lastSound;
    QByteArray m_rest;
    bool m_on = false;
    bool m_heard = false;
};

/// The speech service that was started in this test's own runtime folder; ended with this object.
class SpeechServiceGuard {
public:
    SpeechServiceGuard() = default;
    ~SpeechServiceGuard();

    /// 0 without one.
    static qint64 pid();
};

}  // namespace orvo::test
