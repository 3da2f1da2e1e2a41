#include "support/WaitFor.h"
#include "terminal/Attention.h"
#include "terminal/TerminalSession.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

using namespace std::chrono_literals;
using Mark = Attention::Mark;
using test::waitFor;

constexpr Attention::Time start{1h};

TEST(Attention, OutputMeansWorkForAMomentAndThenQuiet) {
    Attention attention;
    attention.started(start);
    attention.outputArrived(start + 1s);
    EXPECT_EQ(attention.mark(start + 2s), Mark::Working);
    EXPECT_EQ(attention.nextChange(start + 2s), start + 2500ms);
    EXPECT_EQ(attention.mark(start + 2500ms), Mark::Quiet);
    EXPECT_EQ(attention.nextChange(start + 2500ms), std::nullopt) << "nothing wakes an idle session";
    EXPECT_EQ(attention.evidence(start + 13s), QStringLiteral("output 12 s ago"));
}

TEST(Attention, ARequestStandsUntilThePersonLooks) {
    Attention attention;
    attention.started(start);
    attention.asked(Attention::Cause::Bell, {}, start + 1s);
    attention.outputArrived(start + 2s);
    EXPECT_EQ(attention.mark(start + 2s), Mark::WantsYou);
    EXPECT_EQ(attention.evidence(start + 13s), QStringLiteral("bell 12 s ago"));
    attention.asked(Attention::Cause::Message, QStringLiteral("Done"), start + 20s);
    EXPECT_EQ(attention.evidence(start + 20s + 130s), QStringLiteral("message “Done” 2 min ago"));
    attention.setInFront(true);
    EXPECT_EQ(attention.mark(start + 30s), Mark::Quiet);
    attention.asked(Attention::Cause::Bell, {}, start + 31s);
    EXPECT_EQ(attention.mark(start + 31s), Mark::Quiet) << "nobody has to be called who is there";
}

TEST(Attention, WhatEndedUnseenIsSeenOnceLookedAt) {
    Attention attention;
    attention.started(start);
    attention.asked(Attention::Cause::Bell, {}, start);
    attention.ended(start + 1s);
    EXPECT_EQ(attention.mark(start + 2s), Mark::DoneUnseen);
    EXPECT_EQ(attention.evidence(start + 2h + 1s), QStringLiteral("ended 2 h ago"));
    attention.setInFront(true);
    attention.setInFront(false);
    EXPECT_EQ(attention.mark(start + 3s), Mark::Seen);

    Attention watched;
    watched.setInFront(true);
    watched.started(start);
    watched.ended(start + 1s);
    watched.setInFront(false);
    EXPECT_EQ(watched.mark(start + 2s), Mark::Seen);
}

struct Session : TerminalSession {
    explicit Session(const char* command)
        : TerminalSession(QStringLiteral("shell"), QStringLiteral("Title"), QString::fromUtf8(command),
                          FilePath("/")) {}
};

TEST(SessionAttention, ASessionTellsWhatItsProgramAsks) {
    Session session("printf '\\033]2;my program\\007\\033]9;ready\\007'; read line");
    int marks = 0;
    QObject::connect(&session, &TerminalSession::markChanged, [&marks] { ++marks; });
    session.start();
    ASSERT_TRUE(waitFor([&] { return session.mark() == Mark::WantsYou; }));
    EXPECT_TRUE(session.evidence().startsWith(QStringLiteral("message “ready” ")));
    EXPECT_EQ(session.programTitle(), QStringLiteral("my program"));
    EXPECT_EQ(session.title(), QStringLiteral("Title"));
    session.setInFront(true);
    session.setInFront(false);
    ASSERT_TRUE(waitFor([&] { return session.mark() == Mark::Quiet; }));
    session.send(QStringLiteral("\r"));
    ASSERT_TRUE(waitFor([&] { return session.mark() == Mark::DoneUnseen; }));
    session.setInFront(true);
    EXPECT_EQ(session.mark(), Mark::Seen);
    EXPECT_GE(marks, 4);
}

TEST(SessionAttention, TheClipboardIsWrittenWithConsentOnly) {
    Session session(
        "printf '\\033]52;c;aGVsbG8=\\007\\033]52;c;!!\\007'; read line; "
        "printf '\\033]52;c;bW9yZQ==\\007refused'; read line");
    session.start();
    ASSERT_TRUE(waitFor([&] { return session.clipboardText().has_value(); }));
    EXPECT_EQ(session.clipboardAccess(), TerminalSession::ClipboardAccess::Unknown);
    EXPECT_EQ(session.clipboardText(), QStringLiteral("hello")) << "what is not base64 is dropped";
    session.setClipboardAccess(TerminalSession::ClipboardAccess::Refused);
    EXPECT_FALSE(session.clipboardText().has_value());
    int told = 0;
    QObject::connect(&session, &TerminalSession::clipboardTextChanged, [&told] { ++told; });
    session.send(QStringLiteral("\r"));
    ASSERT_TRUE(waitFor([&] { return session.screen().plainText().find("refused") != std::string::npos; }));
    EXPECT_FALSE(session.clipboardText().has_value());
    EXPECT_EQ(told, 0);
}

}  // namespace
}  // namespace orvo
