#include "SoundServer.h"
#include "companion/CompanionModel.h"
#include "platform/Clock.h"
#include "platform/fake/FakeDialogs.h"
#include "platform/fake/FakeImageDecoder.h"
#include "platform/fake/FakePreferences.h"
#include "platform/voice/VoiceServices.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <csignal>

#include <atomic>
#include <optional>

namespace orvo::test {
namespace {

using namespace std::chrono_literals;

const char* const modelFolder = "/usr/share/pocketsphinx/model/en-us/en-us";

/// The companion with the real parts, and somebody who speaks into its microphone.
class DictationTest : public testing::Test {
protected:
    void SetUp() override {
        const QString missing = missingProgram({"pulseaudio", "pactl", "paplay", "flite"});
        if (!missing.isEmpty()) GTEST_SKIP() << missing.toStdString() << " is not installed";
        if (!QDir(QString::fromUtf8(modelFolder)).exists())
            GTEST_SKIP() << "the speech model of package pocketsphinx-en-us is not installed";
        startServer(SoundServer::Microphone::HearsWhatIsPlayed);
    }
    /// In place of the one before.
    void startServer(SoundServer::Microphone microphone) {
        m_sound.reset();
        m_sound.emplace(microphone);
        ASSERT_TRUE(m_sound->fault().isEmpty()) << m_sound->fault().toStdString();
    }
    CompanionServices services(const char* locale = "en_US") { return services(locale, m_voice); }
    CompanionServices services(const char* locale, VoiceServices& voice) {
        return {.preferences = &m_preferences,
                .clock = m_clock,
                .dialogs = m_dialogs,
                .images = m_images,
                .microphone = voice.microphone(),
                .recognition = voice.recognition(),
                .synthesizer = voice.synthesizer(),
                .builtInPet = [] { return nullptr; },
                .locale = QString::fromUtf8(locale)};
    }
    /// Says `sentence` aloud, once; over when this returns.
    void say(const QString& sentence) {
        const QString sound = m_folder.filePath(QStringLiteral("sentence.wav"));
        QProcess speaker;
        speaker.start(QStringLiteral("flite"), {QStringLiteral("-voice"), QStringLiteral("slt"),
                                                QStringLiteral("-t"), sentence, QStringLiteral("-o"), sound});
        ASSERT_TRUE(speaker.waitForFinished(30'000));
        QProcess player;
        player.start(QStringLiteral("paplay"), {QStringLiteral("--device=speakers"), sound});
        EXPECT_TRUE(waitLong([&player] { return player.state() == QProcess::NotRunning; }));
        EXPECT_EQ(player.exitCode(), 0) << player.readAllStandardError().toStdString();
    }
    /// Whether that many of these words are in the draft.
    static bool hasWords(const CompanionModel& model, const QStringList& words, int atLeast) {
        const QStringList heard = model.draft().split(u' ');
        int found = 0;
        for (const QString& word : words)
            found += heard.contains(word) ? 1 : 0;
        return found >= atLeast;
    }
    static bool becomesIdle(const CompanionModel& model) {
        return waitLong([&model] { return !model.voiceBusy(); });
    }

    /// Starts dictation with this command, which writes the ids of its processes to %1, and stops it.
    void expectEnded(const char* command) {
        const QString pids = m_folder.filePath(QStringLiteral("pids"));
        (void)QFile::remove(pids);
        (void)m_preferences.setValue(preference::recognizerCommand, QString::fromUtf8(command).arg(pids));
        CompanionModel model(services());
        model.toggleMicrophone();
        QList<QByteArray> processes;
        ASSERT_TRUE(waitLong([&] {
            QFile file(pids);
            if (file.open(QIODevice::ReadOnly)) processes = file.readAll().simplified().split(' ');
            return processes.size() == 2 && model.listening();
        }));
        model.toggleMicrophone();
        const auto isGone = [](const QByteArray& pid) {
            // A dead one that nobody has asked after counts as gone.
            QFile status(QStringLiteral("/proc/%1/stat").arg(QString::fromLatin1(pid)));
            return !status.open(QIODevice::ReadOnly) || status.readAll().contains(") Z ");
        };
        EXPECT_TRUE(waitLong([&] { return std::ranges::all_of(processes, isGone); })) << command;
    }

    QTemporaryDir m_folder;
    FakePreferences m_preferences;
    SystemClock m_clock;
    FakeDialogs m_dialogs;
    FakeImageDecoder m_images;
    VoiceServices m_voice{&m_preferences};
    std::optional<SoundServer> m_sound;
};

TEST_F(DictationTest, WhatIsSaidGrowsInTheDraftUntilTheSpeakerIsSilent) {
    CompanionModel model(services());
    model.setDraft(QStringLiteral("Before."));
    int changes = 0;
    QObject::connect(&model, &CompanionModel::draftChanged, [&changes] { ++changes; });
    QElapsedTimer timer;
    timer.start();
    model.toggleMicrophone();
    EXPECT_LT(timer.elapsed(), 500) << "sound server and model are waited for elsewhere";
    ASSERT_TRUE(waitLong([&model] { return model.listening(); })) << model.message().toStdString();
    say(QStringLiteral("Please make a new plan before you change any files."));
    EXPECT_TRUE(becomesIdle(model));
    EXPECT_EQ(model.message(), QStringLiteral("Dictation finished. Review your draft before using it."));
    EXPECT_TRUE(model.draft().startsWith(QStringLiteral("Before. ")));
    EXPECT_TRUE(hasWords(
        model,
        {QStringLiteral("make"), QStringLiteral("new"), QStringLiteral("plan"), QStringLiteral("files")}, 3))
        << model.draft().toStdString();
    EXPECT_GT(changes, 3) << "partial results";
    RecordProperty("draft", model.draft().toStdString());

    // Once more with the loaded model; this time the person stops, and what was heard stays.
    model.setDraft({});
    model.toggleMicrophone();
    ASSERT_TRUE(waitLong([&model] { return model.listening(); }));
    const QString sentence = QStringLiteral("Please make a new plan before you change any files.");
    say(sentence);
    EXPECT_TRUE(waitLong([&model] { return model.draft().count(QStringLiteral("plan")) == 1; }))
        << model.draft().toStdString();
    say(sentence);
    EXPECT_TRUE(waitLong([&model] { return model.draft().count(QStringLiteral("plan")) == 2; }))
        << "a pause keeps what was said before it: " << model.draft().toStdString();
    timer.start();
    model.toggleMicrophone();
    EXPECT_LT(timer.elapsed(), 500);
    EXPECT_FALSE(model.listening());
    const QString draft = model.draft();
    EXPECT_EQ(model.message(), QStringLiteral("Microphone off. Your draft is ready to review."));
    (void)waitFor([] { return false; }, 1500ms);
    EXPECT_EQ(model.draft(), draft) << "nothing comes after the stop";
}

TEST_F(DictationTest, WithoutAMicrophoneOrALanguageTheCompanionSaysSo) {
    const char* const unavailable =
        "Speech recognition is unavailable for this language or connection. You can still type your draft.";
    ASSERT_NO_FATAL_FAILURE(startServer(SoundServer::Microphone::None));
    {
        CompanionModel model(services());
        model.toggleMicrophone();
        EXPECT_TRUE(becomesIdle(model));
        EXPECT_EQ(model.message(), QStringLiteral("No microphone input is available."));
        CompanionModel other(services("de_DE"));
        other.toggleMicrophone();
        EXPECT_TRUE(becomesIdle(other));
        EXPECT_EQ(other.message(), QString::fromUtf8(unavailable));
    }
    m_sound.reset();
    CompanionModel model(services());
    model.toggleMicrophone();
    EXPECT_TRUE(becomesIdle(model));
    EXPECT_EQ(model.message(), QStringLiteral("No microphone input is available."));
}

TEST_F(DictationTest, TheTapGetsPiecesOfOneSizeAndNothingAfterItsRemoval) {
    Microphone& microphone = m_voice.microphone();
    std::atomic<bool> isThere = false;
    microphone.requestAccess([&isThere](bool granted) { isThere = granted; });
    ASSERT_TRUE(waitLong([&isThere] { return isThere.load(); }));
    const AudioFormat format = microphone.inputFormat();
    ASSERT_TRUE(format.isUsable());
    std::atomic<int> pieces = 0;
    std::atomic<bool> isInside = false;
    std::atomic<bool> isEven = true;
    microphone.start([](const Result<void>&) {}, [] {});
    for (int turn = 1; turn <= 5; ++turn) {
        const int before = pieces;
        microphone.installTap([&, size = 1024 * format.channels * 2](const QByteArray& samples) {
            isInside = true;
            if (samples.size() != size) isEven = false;
            QThread::msleep(15);
            ++pieces;
            isInside = false;
        });
        ASSERT_TRUE(waitLong([&] { return pieces > before + 2 && isInside; }));
        microphone.removeTap();
        EXPECT_FALSE(isInside) << "its removal waits for it";
        const int atRemoval = pieces;
        QThread::msleep(100);
        EXPECT_EQ(pieces, atRemoval);
    }
    EXPECT_TRUE(isEven);
    microphone.stop();
}

TEST_F(DictationTest, TogglingQuicklyEndsInSilence) {
    CompanionModel model(services());
    for (int turn = 0; turn < 20; ++turn) {
        model.toggleMicrophone();
        (void)waitFor([] { return false; }, std::chrono::milliseconds(turn * 7));
        model.toggleMicrophone();
    }
    if (model.voiceBusy()) model.toggleMicrophone();
    (void)waitFor([] { return false; }, 1s);
    EXPECT_FALSE(model.voiceBusy());
    const auto recordings = [] {
        QProcess question;
        question.start(QStringLiteral("pactl"),
                       {QStringLiteral("list"), QStringLiteral("short"), QStringLiteral("source-outputs")});
        question.waitForFinished(3000);
        QByteArray list = question.readAllStandardOutput();
        return list.count('\n');
    };
    // The remapped microphone itself records what is played.
    EXPECT_TRUE(waitLong([&recordings] { return recordings() <= 1; })) << "the microphone is off";
    model.toggleMicrophone();
    EXPECT_TRUE(waitLong([&model] { return model.listening(); })) << "and goes on again";
    EXPECT_TRUE(waitLong([&recordings] { return recordings() == 2; }));
}

TEST_F(DictationTest, ASoundServerThatGoesEndsTheDictationAndANewOneIsFound) {
    CompanionModel model(services());
    model.toggleMicrophone();
    ASSERT_TRUE(waitLong([&model] { return model.listening(); }));
    kill(static_cast<pid_t>(m_sound->pid()), SIGKILL);
    ASSERT_NO_FATAL_FAILURE(startServer(SoundServer::Microphone::HearsWhatIsPlayed));
    EXPECT_TRUE(waitLong([&model] { return !model.listening(); }));
    EXPECT_EQ(model.message(), QStringLiteral("Dictation ended. Check your microphone, language, and "
                                              "connection; your draft is kept."));
    EXPECT_TRUE(waitLong([&model] {
        if (!model.voiceBusy()) model.toggleMicrophone();
        return model.listening();
    })) << model.message().toStdString();
}

TEST_F(DictationTest, ASoundServerThatHangsHoldsUpNothing) {
    const auto server = static_cast<pid_t>(m_sound->pid());
    QElapsedTimer timer;
    {
        VoiceServices voice(nullptr);
        CompanionModel model(services("en_US", voice));
        kill(server, SIGSTOP);
        timer.start();
        model.toggleMicrophone();
        EXPECT_LT(timer.elapsed(), 500);
        EXPECT_TRUE(becomesIdle(model));
        EXPECT_EQ(model.message(), QStringLiteral("No microphone input is available."));
        timer.start();
        model.toggleMicrophone();
        model.toggleMicrophone();
        EXPECT_LT(timer.elapsed(), 500);
        EXPECT_EQ(model.message(), QStringLiteral("Microphone off. Your draft is ready to review."));
        timer.start();
    }
    EXPECT_LT(timer.elapsed(), 2000) << "the end of the application";
}

TEST_F(DictationTest, TheApplicationMayEndWhileTheModelIsLoaded) {
    QElapsedTimer timer;
    {
        const auto voice = std::make_unique<VoiceServices>(nullptr);
        std::atomic<bool> isThere = false;
        voice->microphone().requestAccess([&isThere](bool) { isThere = true; });
        ASSERT_TRUE(waitLong([&isThere] { return isThere.load(); }));
        const auto recognizer = voice->recognition().recognizer(QStringLiteral("en_US"));
        ASSERT_TRUE(recognizer);
        const auto task = recognizer->start(voice->microphone().inputFormat(),
                                            Recognizer::Where::OnDeviceOnly, [](const auto&, const auto&) {});
        voice->microphone().installTap([task](const QByteArray& samples) { task->append(samples); });
        voice->microphone().start([](const Result<void>&) {}, [] {});
        (void)waitFor([] { return false; }, 100ms);
        timer.start();
    }
    EXPECT_LT(timer.elapsed(), 1000);
}

TEST_F(DictationTest, ACommandOfThePersonsOwnRecognises) {
    // Counts what it hears: half a second of sound is 16,000 bytes.
    const char* const counter = "echo $ORVO_LOCALE; head -c 16000 | wc -c; head -c 16000 | wc -c; exit 0";
    (void)m_preferences.setValue(preference::recognizerCommand, QString::fromUtf8(counter));
    CompanionModel model(services("de_DE"));
    QStringList drafts;
    QObject::connect(&model, &CompanionModel::draftChanged, [&] { drafts.append(model.draft()); });
    model.toggleMicrophone();
    EXPECT_TRUE(becomesIdle(model));
    EXPECT_EQ(model.message(), QStringLiteral("Dictation finished. Review your draft before using it."));
    EXPECT_EQ(drafts, QStringList({QStringLiteral("de_DE"), QStringLiteral("16000")}));

    (void)m_preferences.setValue(preference::recognizerCommand, QStringLiteral("echo half; exit 3"));
    model.setDraft({});
    model.toggleMicrophone();
    EXPECT_TRUE(becomesIdle(model));
    EXPECT_EQ(model.message(),
              QStringLiteral("Dictation ended. Check your microphone, language, and connection; your draft "
                             "is kept."));
    EXPECT_EQ(model.draft(), QStringLiteral("half"));

    // Its end comes a second after the stop at the latest, also when the command or what it has started is
    // deaf to the end of its input and to the kind signal.
    for (const char* deaf : {"trap '' TERM; sleep 300 & echo $$ $! >'%1'; wait",
                             "(trap '' TERM; exec sleep 300) & echo $$ $! >'%1'; wait"})
        expectEnded(deaf);
}

}  // namespace
}  // namespace orvo::test
