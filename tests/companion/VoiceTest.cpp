#include "companion/CompanionFixture.h"

namespace orvo::test {
namespace {

using namespace std::chrono_literals;

const char* const idleMessage = "Microphone off. Your draft is ready to review.";
const char* const endedMessage =
    "Dictation ended. Check your microphone, language, and connection; your draft is kept.";
const Error broken{QStringLiteral("Test"), 1, QStringLiteral("it broke")};

class VoiceTest : public CompanionFixture {
protected:
    /// Asks for the microphone and has both permissions granted; the microphone has not started yet.
    void grant() {
        m_model.toggleMicrophone();
        m_microphone.access(true);
        deliver();
        m_recognition.authorization(true);
        deliver();
    }
    void listen() {
        grant();
        m_microphone.started({});
        deliver();
        ASSERT_TRUE(m_model.listening());
    }
    void hear(const char* transcription, bool isFinal = false, std::optional<Error> error = {}) {
        m_recognition.handler(Transcription{text(transcription), isFinal}, std::move(error));
        deliver();
    }
    void expectIdle(const char* message) {
        EXPECT_FALSE(m_model.listening());
        EXPECT_FALSE(m_model.requestingMicrophone());
        EXPECT_EQ(m_model.message(), text(message));
    }

    CompanionModel m_model{services()};
};

TEST_F(VoiceTest, DictationAsksForBothPermissionsThenListens) {
    m_model.toggleMicrophone();
    EXPECT_TRUE(m_model.requestingMicrophone());
    EXPECT_EQ(m_model.message(), text("Waiting for microphone permission…"));
    m_microphone.access(true);
    EXPECT_EQ(m_model.message(), text("Waiting for microphone permission…"))
        << "answers come from any thread";
    deliver();
    EXPECT_EQ(m_model.message(), text("Waiting for speech recognition permission…"));
    m_recognition.authorization(true);
    deliver();
    EXPECT_EQ(m_recognition.log,
              QStringList({text("authorized?"), text("recognizer en_GB"), text("recognize on device")}));
    EXPECT_EQ(m_microphone.log, QStringList({text("access?"), text("tap"), text("start")}));
    EXPECT_TRUE(m_model.requestingMicrophone() && !m_model.listening());
    m_microphone.started({});
    deliver();
    EXPECT_TRUE(m_model.listening() && !m_model.requestingMicrophone());
    EXPECT_EQ(m_model.message(), text("Listening… tap the microphone to stop."));
    m_microphone.tap("sound");
    EXPECT_EQ(m_recognition.heard, "sound");

    m_model.toggleMicrophone();
    expectIdle(idleMessage);
    EXPECT_EQ(m_microphone.log.mid(3), QStringList({text("stop"), text("untap")}));
    EXPECT_EQ(m_recognition.log.mid(3), QStringList({text("end"), text("cancel")}));
}

TEST_F(VoiceTest, RefusalsAndFailuresReturnToIdleWithTheirSentence) {
    m_model.setDraft(text("kept"));
    m_model.toggleMicrophone();
    m_microphone.access(false);
    deliver();
    expectIdle(
        "Microphone access is off. You can enable Orvo AI in System Settings → Privacy & Security → "
        "Microphone.");

    m_model.toggleMicrophone();
    m_microphone.access(true);
    deliver();
    m_recognition.authorization(false);
    deliver();
    expectIdle(
        "Speech recognition is off. Enable it for Orvo AI in System Settings → Privacy & Security → "
        "Speech Recognition.");

    const char* const unavailable =
        "Speech recognition is unavailable for this language or connection. You can still type your draft.";
    m_recognition.available = false;
    grant();
    expectIdle(unavailable);
    m_recognition.hasRecognizer = false;
    grant();
    expectIdle(unavailable);
    m_recognition.hasRecognizer = m_recognition.available = true;

    m_microphone.log.clear();
    for (const AudioFormat format : {AudioFormat{0, 1}, AudioFormat{48000, 0}}) {
        m_microphone.format = format;
        grant();
        expectIdle("No microphone input is available.");
    }
    EXPECT_FALSE(m_microphone.log.contains(text("start")));
    m_microphone.format = {16000, 2};

    grant();
    m_microphone.started(tl::unexpected(broken));
    deliver();
    expectIdle("Could not start the microphone: it broke");
    EXPECT_EQ(m_microphone.log.last(), text("untap"));
    EXPECT_EQ(m_model.draft(), text("kept"));
}

TEST_F(VoiceTest, WhatIsHeardFollowsTheDraft) {
    struct Case {
        const char* before;
        const char* after;
    };
    for (const Case& each :
         {Case{"one", "one two"}, Case{" \n one\t", "one two"}, Case{"", "two"}, Case{"   ", "two"}}) {
        m_model.setDraft(text(each.before));
        listen();
        hear("too");
        m_model.setDraft(text("typed meanwhile"));
        hear("two");
        EXPECT_EQ(m_model.draft(), text(each.after));
        EXPECT_TRUE(m_model.listening());
        m_model.stopMicrophone();
        EXPECT_EQ(m_model.draft(), text(each.after)) << "stopping leaves the draft";
    }
}

TEST_F(VoiceTest, AFinalResultAnErrorOrALostMicrophoneEndsListening) {
    listen();
    hear("done", true);
    EXPECT_EQ(m_model.draft(), text("done"));
    expectIdle("Dictation finished. Review your draft before using it.");

    m_model.setDraft({});
    listen();
    hear("half", true, broken);
    EXPECT_EQ(m_model.draft(), text("half"));
    expectIdle(endedMessage);

    listen();
    m_recognition.handler(std::nullopt, std::nullopt);
    deliver();
    EXPECT_TRUE(m_model.listening());
    m_recognition.handler(std::nullopt, broken);
    deliver();
    expectIdle(endedMessage);
    EXPECT_EQ(m_model.draft(), text("half"));

    listen();
    m_microphone.lost();
    deliver();
    expectIdle(endedMessage);
    EXPECT_EQ(m_microphone.log.mid(m_microphone.log.size() - 2), QStringList({text("stop"), text("untap")}));
}

TEST_F(VoiceTest, AMinuteOfListeningIsTheMost) {
    listen();
    m_clock.advance(30s);
    m_model.toggleMicrophone();
    listen();
    m_clock.advance(59'999ms);
    EXPECT_TRUE(m_model.listening()) << "the first attempt's minute has passed, not this one's";
    m_clock.advance(1ms);
    expectIdle("Dictation paused after one minute. Your draft is ready.");
}

TEST_F(VoiceTest, AnswersOfAnEndedAttemptChangeNothing) {
    m_model.toggleMicrophone();
    const auto access = m_microphone.access;
    m_model.toggleMicrophone();
    access(true);
    deliver();
    expectIdle(idleMessage);
    EXPECT_TRUE(m_recognition.log.isEmpty());

    grant();
    const auto started = m_microphone.started;
    const auto handler = m_recognition.handler;
    // On their way when the person stops: posted, not yet delivered.
    started({});
    handler(Transcription{text("late"), false}, {});
    m_model.stopMicrophone();
    deliver();
    expectIdle(idleMessage);
    EXPECT_TRUE(m_model.draft().isEmpty());

    listen();
    handler(Transcription{text("late"), true}, broken);
    deliver();
    EXPECT_TRUE(m_model.listening()) << "what an older attempt heard does not end this one";
    EXPECT_TRUE(m_model.draft().isEmpty());
}

TEST_F(VoiceTest, AnswersAfterTheEndOfTheCompanionGoNowhere) {
    {
        CompanionModel model(services());
        model.toggleMicrophone();
    }
    m_microphone.access(true);
    deliver();
    EXPECT_TRUE(m_recognition.log.isEmpty());
}

TEST_F(VoiceTest, ReadsTheEndOfALongTextInThePersonsLanguage) {
    m_model.speak(text("  ") + QString(4000, u'a') + QString(6000, u'b') + text("\n"));
    ASSERT_EQ(m_synthesizer.spoken.size(), 1);
    EXPECT_EQ(m_synthesizer.spoken.first().text, QString(6000, u'b'));
    EXPECT_EQ(m_synthesizer.spoken.first().language, text("en-GB"));
    EXPECT_TRUE(m_model.speaking());
    EXPECT_EQ(m_model.message(), text("Reading aloud… Stop Orvo audio ends playback."));
    m_synthesizer.finished({});
    deliver();
    EXPECT_FALSE(m_model.speaking());
}

TEST_F(VoiceTest, ABlankTextOnlySaysSo) {
    listen();
    m_model.speak(text(" \n\t"));
    EXPECT_EQ(m_model.message(), text("There is no text to read yet."));
    EXPECT_TRUE(m_model.listening());
    EXPECT_FALSE(m_model.speaking());
    EXPECT_TRUE(m_synthesizer.spoken.isEmpty());
}

TEST_F(VoiceTest, SpeakingAndListeningExcludeEachOther) {
    m_model.speak(text("read this"));
    const int stops = m_synthesizer.stops;
    m_model.toggleMicrophone();
    EXPECT_FALSE(m_model.speaking());
    EXPECT_GT(m_synthesizer.stops, stops);

    m_model.toggleMicrophone();
    listen();
    m_model.speak(text("read that"));
    EXPECT_FALSE(m_model.listening());
    EXPECT_TRUE(m_model.speaking());
    m_model.shutdown();
    EXPECT_FALSE(m_model.speaking());
}

TEST_F(VoiceTest, TheEndOfAnOlderTextLeavesTheNewerAlone) {
    m_model.speak(text("one"));
    const auto first = m_synthesizer.finished;
    m_model.speak(text("two"));
    first({});
    deliver();
    EXPECT_TRUE(m_model.speaking());
    m_synthesizer.finished(tl::unexpected(broken));
    deliver();
    EXPECT_FALSE(m_model.speaking());
    EXPECT_EQ(m_model.message(), text("it broke"));
    m_model.speak(text("three"));
    m_model.stopSpeech();
    m_synthesizer.finished(tl::unexpected(broken));
    deliver();
    EXPECT_NE(m_model.message(), text("it broke")) << "nobody waits for a text that was stopped";
}

}  // namespace
}  // namespace orvo::test
