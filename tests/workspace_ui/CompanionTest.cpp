#include "companion/ui/CompanionController.h"
#include "companion/ui/CompanionPanel.h"
#include "companion/ui/PetArt.h"
#include "companion/ui/PetInteractionView.h"
#include "companion/ui/deskScreens.h"
#include "companion/ui/floating.h"
#include "support/WaitFor.h"
#include "workspace_ui/ScreenFixture.h"

#include "appearance/controls/OrvoStyle.h"

#include <QApplication>
#include <QTest>

#include <cmath>
#include <set>

namespace orvo {
namespace {

using namespace std::chrono_literals;

class CompanionTest : public test::ScreenFixture {
protected:
    CompanionController& controller() {
        if (!m_controller) {
            m_controller =
                std::make_unique<CompanionController>(companion(), workspace(), m_theme, m_preferences,
                                                      CompanionActions{.showMain = [this] { ++m_shown; },
                                                                       .quit =
                                                                           [this] {
                                                                               ++m_quits;
                                                                           }});
        }
        return *m_controller;
    }
    ~CompanionTest() override {
        if (m_controller) m_controller->shutdown();
    }

    static CompanionPanel* panel(const QString& title) {
        for (QWidget* const window : QApplication::topLevelWidgets()) {
            if (window->windowTitle() == title) return qobject_cast<CompanionPanel*>(window);
        }
        return nullptr;
    }
    static CompanionPanel* pet() { return panel(QStringLiteral("Orvo desktop companion")); }
    static CompanionPanel* draft() { return panel(QStringLiteral("Orvo companion controls")); }
    static PetInteractionView* pointer() { return pet()->findChild<PetInteractionView*>(); }

    /// Presses on the pet, moves the pointer by these steps and lets go.
    static void drag(std::initializer_list<QPoint> steps) {
        const QPointF start(50, 50);
        const auto send = [&](QEvent::Type type, QPointF at, Qt::MouseButton button, Qt::MouseButtons held) {
            QMouseEvent event(type, start, start, start + at, button, held, {});
            QCoreApplication::sendEvent(pointer(), &event);
        };
        send(QEvent::MouseButtonPress, {}, Qt::LeftButton, Qt::LeftButton);
        QPoint at;
        for (const QPoint& step : steps) {
            at += step;
            send(QEvent::MouseMove, at, Qt::NoButton, Qt::LeftButton);
        }
        send(QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton);
    }

    void pressIn(QWidget& window, const QString& name) {
        auto* const button = test::find<QAbstractButton>(window, name);
        ASSERT_TRUE(button) << qPrintable(name);
        button->click();
    }

    std::unique_ptr<CompanionController> m_controller;
    int m_shown = 0;
    int m_quits = 0;
};

TEST_F(CompanionTest, thePetStandsInTheCornerAndComesBackWhereItWasLeft) {
    const DeskRect desk = deskScreens().first().visibleFrame;
    controller();
    EXPECT_TRUE(m_controller->isPetVisible());
    EXPECT_EQ(m_controller->origin(), QPointF(desk.maxX() - 176 - 28, desk.y + 30));
    EXPECT_EQ(pet()->geometry().bottomRight(), QPoint(int(desk.maxX()) - 29, int(desk.maxY()) - 31));

    drag({QPoint(-100, -60), QPoint(-20, -40)});
    const QPointF left(desk.maxX() - 176 - 28 - 120, desk.y + 30 + 100);
    EXPECT_EQ(m_controller->origin(), left);
    EXPECT_FALSE(m_controller->isDraftVisible());
    m_controller.reset();
    EXPECT_EQ(controller().origin(), left);

    // A place on a screen that is gone: the nearest one on the main screen.
    m_controller.reset();
    (void)m_preferences.setValue(preference::petX, -5000);
    (void)m_preferences.setValue(preference::petY, 100000);
    EXPECT_EQ(controller().origin(), QPointF(desk.x, desk.maxY() - 186));
    m_controller.reset();
    (void)m_preferences.setValue(preference::petX, std::nan(""));
    EXPECT_EQ(controller().origin(), QPointF(desk.maxX() - 176 - 28, desk.y + 30));
}

TEST_F(CompanionTest, aShortWayIsAClickAndIsNotRemembered) {
    controller();
    const QPointF stored = m_controller->origin();
    drag({QPoint(-1, -1)});
    EXPECT_TRUE(m_controller->isDraftVisible());
    EXPECT_EQ(m_controller->origin(), stored + QPointF(-1, 1));
    EXPECT_EQ(m_preferences.value(preference::petX), stored.x());
    // Near the right edge of the screen the draft opens to the left of the pet.
    EXPECT_LT(draft()->geometry().right(), pet()->geometry().left() + 48);
    drag({});
    EXPECT_FALSE(m_controller->isDraftVisible());
    // Assistive technology presses it like a button.
    pointer()->click();
    EXPECT_TRUE(m_controller->isDraftVisible());
    QTest::keyClick(draft(), Qt::Key_Escape);
    EXPECT_FALSE(m_controller->isDraftVisible());
}

TEST_F(CompanionTest, hidingTakesTheDraftAndTheVoiceAlong) {
    controller().showControls();
    companion().setDraft(QStringLiteral("half a thought"));
    pressIn(*draft(), QStringLiteral("Microphone"));
    EXPECT_TRUE(companion().requestingMicrophone());
    EXPECT_TRUE(test::shows(*draft(), QStringLiteral("Stop mic")));
    companion().setEnabled(false);
    EXPECT_FALSE(m_controller->isPetVisible());
    EXPECT_FALSE(m_controller->isDraftVisible());
    EXPECT_FALSE(companion().voiceBusy());
    EXPECT_EQ(companion().draft(), QStringLiteral("half a thought"));

    companion().findOnDesktop();
    EXPECT_TRUE(companion().enabled());
    EXPECT_TRUE(m_controller->isPetVisible());
    m_controller->quickDraft();
    pressIn(*draft(), QStringLiteral("Microphone"));
    pressIn(*draft(), QStringLiteral("Close quick draft"));
    EXPECT_FALSE(companion().voiceBusy());
    EXPECT_FALSE(m_controller->isDraftVisible());
}

TEST_F(CompanionTest, theDraftJoinsTheTask) {
    controller().showControls();
    workspace().setDestination(Destination::Settings);
    const auto use = [this](const QString& text) {
        companion().setDraft(text);
        pressIn(*draft(), QStringLiteral("Use draft in workspace"));
    };
    use(QStringLiteral(" \n "));
    EXPECT_EQ(workspace().prompt(), QString());
    EXPECT_EQ(workspace().destination(), Destination::Settings);
    EXPECT_TRUE(m_controller->isDraftVisible());

    use(QStringLiteral("  Tidy the notes\n"));
    EXPECT_EQ(workspace().prompt(), QStringLiteral("Tidy the notes"));
    EXPECT_EQ(workspace().destination(), Destination::Workspace);
    EXPECT_EQ(workspace().toast(),
              QStringLiteral("Companion draft added. Choose your assistants and run it when ready."));
    EXPECT_EQ(companion().draft(), QString());
    EXPECT_FALSE(m_controller->isDraftVisible());
    EXPECT_EQ(m_shown, 1);

    m_controller->showControls();
    workspace().setPrompt(QStringLiteral("Tidy the notes \n"));
    use(QStringLiteral("and the tests"));
    EXPECT_EQ(workspace().prompt(), QStringLiteral("Tidy the notes \n\n\nand the tests"));
}

TEST_F(CompanionTest, readsTheActiveSessionElseTheNewestHistory) {
    controller().showControls();
    companion().readOutput();
    EXPECT_EQ(companion().message(), QStringLiteral("There is no text to read yet."));
    startTerminal();
    const auto session = workspace().activeSession();
    session->send(QStringLiteral("echo hello-$((40+2))\n"));
    ASSERT_TRUE(
        test::waitFor([&] { return session->screen().plainText().find("hello-42") != std::string::npos; }));
    companion().readOutput();
    ASSERT_TRUE(companion().speaking());
    EXPECT_TRUE(m_synthesizer.spoken.last().text.contains(QStringLiteral("hello-42")));
}

TEST_F(CompanionTest, theDraftCanBecomeTheTaskOfAPlan) {
    companion();
    macActions();
    screen();
    workspace().setDestination(Destination::Mac);
    press(QStringLiteral("Use voice draft"));
    EXPECT_EQ(workspace().destination(), Destination::Companion);
    companion().setDraft(QStringLiteral("Note the tide"));
    workspace().setDestination(Destination::Mac);
    press(QStringLiteral("Use voice draft"));
    EXPECT_EQ(macActions().planner().task(), QStringLiteral("Note the tide"));
}

TEST_F(CompanionTest, pixelsStayHardAtAnySize) {
    QWidget host;
    PetArt art(companion(), PetArt::Motion::Still, &host);
    art.resize(201, 173);
    QImage picture(art.size(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    art.render(&picture, QPoint(), QRegion(), QWidget::DrawChildren);
    std::set<QRgb> colors;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            colors.insert(picture.pixel(x, y));
    }
    // Nothing but the drawing's own colours and clear: no edge was smoothed.
    EXPECT_GT(colors.size(), 8u);
    EXPECT_LE(colors.size(), 12u);
}

TEST_F(CompanionTest, thePetFloatsOnlyWhileItIsSeenAndMayMove) {
    applyTheme(m_theme);
    PetArt art(companion(), PetArt::Motion::Floating);
    art.resize(100, 100);
    const auto moves = [&art] {
        const int before = art.offset();
        return test::waitFor([&] { return art.offset() != before; }, 2s);
    };
    art.show();
    EXPECT_TRUE(moves());
    companion().setAnimate(false);
    EXPECT_EQ(art.offset(), 0);
    companion().setAnimate(true);
    EXPECT_TRUE(moves());
    qobject_cast<OrvoStyle*>(QApplication::style())->setMotion(Motion::Reduced);
    EXPECT_EQ(art.offset(), 0);
    qobject_cast<OrvoStyle*>(QApplication::style())->setMotion(Motion::Full);
    EXPECT_TRUE(moves());
    art.hide();
    EXPECT_EQ(art.offset(), 0);
}

TEST(Floating, visitsEveryStepOfAWholeCycleInOrder) {
    auto moment = 0ms;
    int steps = 0;
    int last = floating::offsetAt(moment);
    std::set<int> seen{last};
    while (moment < 3927ms) {
        const auto rest = floating::stepFrom(moment);
        EXPECT_GE(rest, floating::shortestStep);
        moment += rest;
        const int offset = floating::offsetAt(moment);
        EXPECT_EQ(std::abs(offset - last), 1);
        last = offset;
        seen.insert(offset);
        ++steps;
    }
    EXPECT_EQ(seen, (std::set{-3, -2, -1, 0, 1, 2, 3}));
    EXPECT_LE(steps, 13);
}

}  // namespace
}  // namespace orvo
