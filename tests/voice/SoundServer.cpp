#include "SoundServer.h"

#include <QFile>
#include <QStandardPaths>
#include <QTextStream>
#include <QThread>

#include <csignal>

#include <cstring>

namespace orvo::test {
namespace {

QString runtimeFile(const char* name) {
    return qEnvironmentVariable("XDG_RUNTIME_DIR") + u'/' + QString::fromLatin1(name);
}

QList<qint64> childrenOf(qint64 pid) {
    QFile list(QStringLiteral("/proc/%1/task/%1/children").arg(pid));
    QList<qint64> children;
    if (!list.open(QIODevice::ReadOnly)) return children;
    for (const QByteArray& child : list.readAll().simplified().split(' ')) {
        if (!child.isEmpty()) children.append(child.toLongLong());
    }
    return children;
}

bool isAlive(qint64 pid) {
    return kill(static_cast<pid_t>(pid), 0) == 0;
}

bool waitForEnd(qint64 pid) {
    for (int turn = 0; turn < 100 && isAlive(pid); ++turn)
        QThread::msleep(20);
    return !isAlive(pid);
}

}  // namespace

QString missingProgram(std::initializer_list<const char*> programs) {
    for (const char* program : programs) {
        if (QStandardPaths::findExecutable(QString::fromLatin1(program)).isEmpty())
            return QString::fromLatin1(program);
    }
    return {};
}

void endProcess(qint64 pid) {
    if (pid <= 1) return;
    (void)kill(static_cast<pid_t>(pid), SIGCONT);
    (void)kill(static_cast<pid_t>(pid), SIGTERM);
    if (!waitForEnd(pid)) (void)kill(static_cast<pid_t>(pid), SIGKILL);
}

SoundServer::SoundServer(Microphone microphone) {
    const QString socket = runtimeFile("sound");
    QStringList arguments = {QStringLiteral("-n"),
                             QStringLiteral("--daemonize=no"),
                             QStringLiteral("--exit-idle-time=-1"),
                             QStringLiteral("--use-pid-file=no"),
                             QStringLiteral("-L"),
                             QStringLiteral("module-native-protocol-unix auth-anonymous=1 socket=") + socket,
                             QStringLiteral("-L"),
                             QStringLiteral("module-null-sink sink_name=speakers")};
    if (microphone == Microphone::HearsWhatIsPlayed) {
        // Programs are offered no monitors as microphones; a remapped one is an ordinary source.
        arguments << QStringLiteral("-L")
                  << QStringLiteral("module-remap-source master=speakers.monitor source_name=microphone");
    }
    qputenv("PULSE_SERVER", "unix:" + socket.toLocal8Bit());
    m_server.setProcessChannelMode(QProcess::MergedChannels);
    m_server.start(QStringLiteral("pulseaudio"), arguments);
    // The socket is there before the devices are: ask for the one that comes last.
    const bool answers = waitLong([this, microphone] {
        if (m_server.state() == QProcess::NotRunning) return true;
        QProcess question;
        question.start(QStringLiteral("pactl"),
                       {QStringLiteral("list"), QStringLiteral("short"), QStringLiteral("sources")});
        question.waitForFinished(2000);
        const QByteArray sources = question.readAllStandardOutput();
        return sources.contains(microphone == Microphone::None ? "speakers.monitor" : "\tmicrophone\t");
    });
    if (!answers || m_server.state() == QProcess::NotRunning) {
        m_fault =
            QStringLiteral("pulseaudio did not start: ") + QString::fromUtf8(m_server.readAll().right(2000));
    }
}

SoundServer::~SoundServer() {
    if (pid() > 1) (void)kill(static_cast<pid_t>(pid()), SIGCONT);
    m_server.terminate();
    if (!m_server.waitForFinished(5000)) {
        m_server.kill();
        m_server.waitForFinished(5000);
    }
}

SoundMeter::SoundMeter() {
    QObject::connect(&m_recorder, &QProcess::readyReadStandardOutput, &m_recorder, [this] {
        m_on = true;
        m_rest += m_recorder.readAllStandardOutput();
        for (; m_rest.size() >= 2; m_rest.remove(0, m_rest.size() & ~1)) {
            bool isLoud = false;
            for (qsizetype at = 0; at + 1 < m_rest.size(); at += 2) {
                qint16 sample = 0;
                std::memcpy(&sample, m_rest.constData() + at, sizeof sample);
                isLoud = isLoud || sample > 300 || sample < -300;
            }
            if (!isLoud) continue;
            m_heard = true;
            m_lastSound.start();
        }
    });
    m_recorder.start(QStringLiteral("parec"),
                     {QStringLiteral("--device=speakers.monitor"), QStringLiteral("--rate=16000"),
                      QStringLiteral("--channels=1"), QStringLiteral("--format=s16ne"),
                      QStringLiteral("--latency-msec=20")});
}

SoundMeter::~SoundMeter() {
    m_recorder.terminate();
    if (!m_recorder.waitForFinished(3000)) m_recorder.kill();
    m_recorder.waitForFinished(3000);
}

bool SoundMeter::takeHeard() {
    return std::exchange(m_heard, false);
}

qint64 SoundMeter::silentFor() const {
    return m_lastSound.isValid() ? m_lastSound.elapsed() : std::numeric_limits<qint64>::max();
}

qint64 SpeechServiceGuard::pid() {
    QFile file(runtimeFile("speech-dispatcher/pid/speech-dispatcher.pid"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toLongLong() : 0;
}

SpeechServiceGuard::~SpeechServiceGuard() {
    const qint64 service = pid();
    if (service <= 1) return;
    // It may hang at its end and leave its voices behind.
    const QList<qint64> voices = childrenOf(service);
    endProcess(service);
    for (const qint64 voice : voices)
        endProcess(voice);
}

}  // namespace orvo::test
