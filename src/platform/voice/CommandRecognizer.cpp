#include "platform/voice/CommandRecognizer.h"

#include "platform/voice/SpeechSound.h"

#include <QCoreApplication>
#include <QPointer>
#include <QProcess>
#include <QTimer>
#include <QtEndian>

#include <csignal>

#include <unistd.h>

namespace orvo {
namespace {

using namespace std::chrono_literals;

constexpr auto patience = 1s;
constexpr qsizetype longestLine = 65'536;

/// One run of the command. Main thread; deletes itself after the command has ended, and goes with the
/// application at the latest.
class Run : public QObject {
public:
    Run(const QString& command, const QString& locale, AudioFormat format, Recognizer::Handler handler)
        : QObject(qApp), m_handler(std::move(handler)), m_sound(format) {
        connect(&m_process, &QProcess::readyReadStandardOutput, this, &Run::read);
        connect(&m_process, &QProcess::finished, this, &Run::finished);
        connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart) finished(-1, QProcess::CrashExit);
        });
        // Nothing of it may outlive the application.
        connect(qApp, &QCoreApplication::aboutToQuit, this, [this] { signalGroup(SIGKILL); });
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("ORVO_LOCALE"), locale);
        m_process.setProcessEnvironment(environment);
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.setChildProcessModifier([] { (void)setpgid(0, 0); });
        m_process.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), command});
        m_group = static_cast<pid_t>(m_process.processId());
    }
    ~Run() override {
        signalGroup(SIGKILL);
        m_process.disconnect(this);
        m_process.waitForFinished(static_cast<int>(std::chrono::milliseconds(patience).count()));
    }

    void append(const QByteArray& samples) {
        if (m_process.state() == QProcess::NotRunning || m_isSilenced) return;
        QByteArray sound = m_sound.convert(samples);
        qToLittleEndian<qint16>(sound.constData(), sound.size() / qsizetype(sizeof(qint16)), sound.data());
        m_process.write(sound);
    }
    void endAudio() { m_process.closeWriteChannel(); }
    void cancel() {
        m_isSilenced = true;
        if (m_process.state() == QProcess::NotRunning || std::exchange(m_isEnding, true)) return;
        m_process.closeWriteChannel();
        signalGroup(SIGTERM);
        QTimer::singleShot(patience, this, [this] {
            signalGroup(SIGKILL);
            if (m_process.state() == QProcess::NotRunning) deleteLater();
        });
    }

private:
    void read() {
        m_output += m_process.readAllStandardOutput();
        if (m_isSilenced) return m_output.clear();
        const qsizetype end = m_output.lastIndexOf('\n');
        const qsizetype start = end < 0 ? -1 : m_output.lastIndexOf('\n', end - 1);
        if (end >= 0) {
            // Each line replaces the one before: of several that came together the last one says it all.
            const QByteArray line = end == 0 ? QByteArray() : m_output.mid(start + 1, end - start - 1);
            m_output.remove(0, end + 1);
            if (line.size() > longestLine) return fail();
            m_text = QString::fromUtf8(line).trimmed();
            m_handler(Transcription{.text = m_text, .isFinal = false}, std::nullopt);
        }
        if (m_output.size() > longestLine) fail();
    }
    void finished(int status, QProcess::ExitStatus how) {
        read();
        // What the shell has started may be deaf to the first signal: it has the rest of its moment.
        if (m_isEnding && kill(-m_group, 0) == 0) return;
        // From here on the number may be another group's.
        m_group = 0;
        deleteLater();
        if (m_isSilenced) return;
        m_isSilenced = true;
        if (how == QProcess::NormalExit && status == 0)
            return m_handler(Transcription{.text = m_text, .isFinal = true}, std::nullopt);
        m_handler(std::nullopt, broken());
    }
    void fail() {
        cancel();
        m_handler(std::nullopt, broken());
    }
    static Error broken() {
        return {QStringLiteral("OrvoListening"), 1,
                QCoreApplication::translate("CommandRecognizer", "The recogniser's command failed.")};
    }
    void signalGroup(int number) {
        if (m_group > 1) (void)kill(-m_group, number);
    }

    const Recognizer::Handler m_handler;
    SpeechSound m_sound;
    QByteArray m_output;
    QString m_text;
    /// Nothing is reported any more.
    bool m_isSilenced = false;
    bool m_isEnding = false;
    /// The command and all that it has started; 0 when nothing of it is left.
    pid_t m_group = 0;
    QProcess m_process;
};

class CommandTask final : public RecognitionTask {
public:
    explicit CommandTask(Run* run) : m_run(run) {}
    ~CommandTask() override { cancel(); }

    void append(const QByteArray& samples) override {
        post([samples](Run& run) { run.append(samples); });
    }
    void endAudio() override { post(&Run::endAudio); }
    void cancel() override { post(&Run::cancel); }

private:
    template <class Step>
    void post(const Step& step) {
        // The pointer is looked at on the main thread only, where the run lives and ends.
        QMetaObject::invokeMethod(
            qApp,
            [run = m_run, step] {
                if (run) std::invoke(step, *run);
            },
            Qt::QueuedConnection);
    }

    const QPointer<Run> m_run;
};

}  // namespace

std::shared_ptr<RecognitionTask> CommandRecognizer::start(AudioFormat format, Where, Handler handler) {
    return std::make_shared<CommandTask>(new Run(m_command, m_locale, format, std::move(handler)));
}

}  // namespace orvo
