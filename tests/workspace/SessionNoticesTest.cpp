#include "workspace/SessionNotices.h"

#include "platform/fake/FakeDesktopNotifications.h"
#include "workspace/WorkspaceTestCase.h"

namespace orvo {
namespace {

using namespace std::chrono_literals;

class SessionNoticesTest : public test::WorkspaceTestCase {
protected:
    SessionNoticesTest() {
        makeWorkspace();
        m_notices = std::make_unique<SessionNotices>(
            *workspace, clock, preferences, m_desktop,
            [this](const QByteArray& token) { m_windowShownWith.append(token); });
    }

    /// A session that asks each time a line is typed, as its text says, and until then only waits.
    std::shared_ptr<TerminalSession> startAsking(const char* request) {
        const QByteArray command = QByteArray("while read -r line; do printf '") + request + "'; done";
        return run(command.constData());
    }
    [[nodiscard]] static bool asks(TerminalSession& session) {
        session.send(QStringLiteral("\r"));
        return test::waitFor([&] { return session.mark() == Attention::Mark::WantsYou; });
    }
    QString shownTitle() const { return m_desktop.shown() ? m_desktop.shown()->title : QString(); }

    FakeDesktopNotifications m_desktop;
    QList<QByteArray> m_windowShownWith;
    // Goes before the workspace, which the base class owns.
    std::unique_ptr<SessionNotices> m_notices;
};

TEST_F(SessionNoticesTest, sessionsThatAskTogetherAreToldOfTogetherAndShownNewestFirst) {
    const auto first = startAsking("\\a");
    const auto second = startAsking("\\033]9;Which port?\\007");
    const auto third = startAsking("\\a");
    ASSERT_TRUE(asks(*second));
    ASSERT_TRUE(asks(*first));
    EXPECT_TRUE(m_desktop.history().isEmpty());
    clock.advance(1s);
    ASSERT_EQ(m_desktop.history().size(), 1);
    EXPECT_EQ(shownTitle(), u"2 sessions want you");
    EXPECT_EQ(m_desktop.shown()->body.toStdString(),
              (first->title() + QStringLiteral(": bell\n") + second->title() +
               QStringLiteral(": message “Which port?”"))
                  .toStdString());

    // Asking again is no news.
    const int revision = first->revision();
    ASSERT_TRUE(asks(*first));
    ASSERT_TRUE(test::waitFor([&] { return first->revision() > revision; }));
    clock.advance(1s);
    EXPECT_EQ(m_desktop.history().size(), 1);

    workspace->setDestination(Destination::Settings);
    m_desktop.choose("token");
    EXPECT_EQ(m_windowShownWith, QList<QByteArray>{"token"});
    EXPECT_EQ(workspace->activeSessionID(), first->id());
    EXPECT_EQ(workspace->destination(), Destination::Workspace);
}

TEST_F(SessionNoticesTest, theNoticeGoesWhenItsSessionsWereLookedAtOrAreGone) {
    const auto first = startAsking("\\a");
    const auto second = startAsking("\\a");
    ASSERT_TRUE(asks(*first));
    ASSERT_TRUE(asks(*second));
    clock.advance(1s);
    ASSERT_TRUE(m_desktop.shown());
    first->setInFront(true);
    EXPECT_TRUE(m_desktop.shown());
    // Its end alone is not seen by anybody.
    second->stop();
    ASSERT_TRUE(test::waitFor([&] { return !second->running(); }));
    EXPECT_TRUE(m_desktop.shown());
    workspace->closeSession(second);
    EXPECT_FALSE(m_desktop.shown());
    m_desktop.choose();
    EXPECT_EQ(m_windowShownWith.size(), 1);
}

TEST_F(SessionNoticesTest, nothingIsToldOfASessionInFrontNorWhenSwitchedOff) {
    const auto session = startAsking("\\a");
    session->setInFront(true);
    session->send(QStringLiteral("\r"));
    const int before = session->revision();
    ASSERT_TRUE(test::waitFor([&] { return session->revision() > before + 1; }));
    clock.advance(1s);
    EXPECT_TRUE(m_desktop.history().isEmpty());
    // Looked at before the others were gathered.
    session->setInFront(false);
    ASSERT_TRUE(asks(*session));
    session->setInFront(true);
    clock.advance(1s);
    EXPECT_TRUE(m_desktop.history().isEmpty());

    ASSERT_TRUE(preferences.setValue(preference::notifications, false));
    session->setInFront(false);
    ASSERT_TRUE(asks(*session));
    clock.advance(1s);
    EXPECT_TRUE(m_desktop.history().isEmpty());
    EXPECT_EQ(askingText(*workspace), session->title() + QStringLiteral(": bell 0 s ago"));
}

}  // namespace
}  // namespace orvo
