#include "appearance/ControlFixture.h"
#include "appearance/controls/AlertSheet.h"
#include "appearance/controls/Notice.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/Paragraph.h"
#include "appearance/controls/TextField.h"

#include <QAction>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTimer>
#include <QVBoxLayout>

namespace orvo {
namespace {

using Overlays = test::ControlFixture;

Alert stopAlert() {
    return {QStringLiteral("Stop this session?"),
            QStringLiteral("The assistant will stop."),
            {QStringLiteral("Stop session"), QStringLiteral("Cancel")},
            Alert::Default::LastButton};
}

QAbstractButton* buttonNamed(QWidget* within, const QString& title) {
    for (auto* button : within->findChildren<Pressable*>()) {
        if (button->title() == title) return button;
    }
    return nullptr;
}

/// Runs an alert and answers it by `act`, which gets the sheet once it is open.
template <class Act>
int answerWith(QWidget* window, const Alert& alert, Act act) {
    QTimer::singleShot(0, window, [&] {
        auto* sheet = window->findChild<AlertSheet*>();
        ASSERT_NE(sheet, nullptr);
        act(sheet);
    });
    return presentAlert(window, alert);
}

TEST_F(Overlays, AnAlertGivesTheIndexOfTheChosenButton) {
    showWindow();
    EXPECT_EQ(answerWith(&window, stopAlert(),
                         [](QWidget* s) { buttonNamed(s, QStringLiteral("Stop session"))->click(); }),
              0);
    EXPECT_EQ(answerWith(&window, stopAlert(),
                         [](QWidget* s) { buttonNamed(s, QStringLiteral("Cancel"))->click(); }),
              1);
    EXPECT_EQ(answerWith(&window, stopAlert(), [](QWidget* s) { press(s, Qt::Key_Escape); }), 1);
}

TEST_F(Overlays, ReturnPressesTheDefaultButtonOfAnAlert) {
    showWindow();
    Alert alert = stopAlert();
    const auto pressReturn = [](QWidget*) {
        press(QApplication::focusWidget(), Qt::Key_Return);
    };
    EXPECT_EQ(answerWith(&window, alert, pressReturn), 1);
    alert.defaultButton = Alert::Default::FirstButton;
    EXPECT_EQ(answerWith(&window, alert, pressReturn), 0);
    alert.buttons = {QStringLiteral("OK")};
    EXPECT_EQ(answerWith(&window, alert, pressReturn), 0);
}

TEST_F(Overlays, AnAlertShowsItsWordsAndPutsTheFirstButtonOutermost) {
    showWindow();
    answerWith(&window, stopAlert(), [&](AlertSheet* sheet) {
        QApplication::processEvents();
        QStringList texts;
        for (auto* paragraph : sheet->findChildren<Paragraph*>())
            texts << nameOf(paragraph);
        EXPECT_EQ(texts, (QStringList{QStringLiteral("Stop this session?"),
                                      QStringLiteral("The assistant will stop.")}));
        QAbstractButton* stop = buttonNamed(sheet, QStringLiteral("Stop session"));
        QAbstractButton* cancel = buttonNamed(sheet, QStringLiteral("Cancel"));
        EXPECT_GT(stop->mapTo(sheet, QPoint()).x(), cancel->mapTo(sheet, QPoint()).x());
        EXPECT_EQ(QApplication::focusWidget(), cancel);
        EXPECT_EQ(interfaceOf(sheet)->role(), QAccessible::AlertMessage);
        EXPECT_EQ(nameOf(sheet), u"Stop this session?");
        press(sheet, Qt::Key_Escape);
    });
}

TEST_F(Overlays, AnAlertWithoutAnswerCountsAsItsLastButton) {
    auto host = std::make_unique<QWidget>();
    host->resize(600, 400);
    EXPECT_EQ(answerWith(host.get(), stopAlert(), [&](QWidget*) { host.reset(); }), 1)
        << "the window is gone";
    QWidget closing;
    closing.resize(600, 400);
    EXPECT_EQ(answerWith(&closing, stopAlert(), [&](QWidget*) { closing.close(); }), 1)
        << "the window was closed";
}

TEST_F(Overlays, AQuestionWithinAQuestionIsAnsweredFirst) {
    showWindow();
    int inner = -1;
    const int outer = answerWith(&window, stopAlert(), [&](AlertSheet* first) {
        QTimer::singleShot(0, &window, [&, first] {
            for (auto* sheet : window.findChildren<AlertSheet*>()) {
                if (sheet != first) buttonNamed(sheet, QStringLiteral("Stop session"))->click();
            }
        });
        inner = presentAlert(&window, stopAlert());
        press(first, Qt::Key_Escape);
    });
    EXPECT_EQ(inner, 0);
    EXPECT_EQ(outer, 1);
}

class OpenSheet : public test::ControlFixture {
protected:
    OpenSheet() {
        behind->setGeometry(10, 10, 80, 32);
        auto* body = new QWidget;
        auto* column = new QVBoxLayout(body);
        for (TextField* field : fields)
            column->addWidget(field);
        sheet.setContent(new Paragraph(QStringLiteral("Add an assistant")), body, save);
        showWindow();
        behind->setFocus();
        sheet.open(fields.front());
        QApplication::processEvents();
    }

    OrvoButton* behind =
        new OrvoButton(QStringLiteral("Behind"), {}, OrvoButton::Kind::Outlined, {}, &window);
    std::vector<TextField*> fields{new TextField, new TextField, new TextField};
    OrvoButton* save = new OrvoButton(QStringLiteral("Save connector"));
    Sheet sheet{&window};
};

TEST_F(OpenSheet, KeepsTabWithinItself) {
    EXPECT_EQ(QApplication::focusWidget(), fields.front());
    std::vector<QWidget*> forth;
    for (int i = 0; i < 8; ++i) {
        press(QApplication::focusWidget(), Qt::Key_Tab);
        forth.push_back(QApplication::focusWidget());
    }
    const std::vector<QWidget*> ring{fields[1], fields[2], save, fields[0],
                                     fields[1], fields[2], save, fields[0]};
    EXPECT_EQ(forth, ring);
    press(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), save);
}

TEST_F(OpenSheet, EscapeDismissesItAndTheFocusGoesBack) {
    QSignalSpy dismissed(&sheet, &Sheet::dismissed);
    press(fields.front(), Qt::Key_Escape);
    EXPECT_EQ(dismissed.size(), 1);
    EXPECT_FALSE(sheet.isVisible());
    EXPECT_EQ(QApplication::focusWidget(), behind);
}

TEST_F(OpenSheet, HoldsBackTheShortcutsOfTheWindowBehind) {
    QAction action;
    action.setShortcut(QKeySequence(QStringLiteral("Ctrl+N")));
    window.addAction(&action);
    QSignalSpy triggered(&action, &QAction::triggered);
    QShortcutEvent shortcut(action.shortcut(), 1);
    QApplication::sendEvent(&action, &shortcut);
    EXPECT_TRUE(triggered.isEmpty());
    sheet.dismiss();
    QApplication::sendEvent(&action, &shortcut);
    EXPECT_EQ(triggered.size(), 1);
}

TEST_F(OpenSheet, CoversTheWindowAndScrollsItsBodyWhenTheWindowIsLow) {
    QWidget* panel = save->parentWidget();
    EXPECT_EQ(sheet.geometry(), window.rect());
    EXPECT_EQ(panel->width(), 560);
    window.resize(500, 200);
    QApplication::processEvents();
    EXPECT_EQ(sheet.geometry(), window.rect());
    EXPECT_LE(panel->width(), 500 - 48);
    EXPECT_LE(panel->height(), 200 - 48);
    auto* scroll = sheet.findChild<QScrollArea*>();
    EXPECT_GT(scroll->verticalScrollBar()->maximum(), 0);
    EXPECT_TRUE(panel->rect().contains(save->geometry())) << "the buttons stay in sight";
    EXPECT_EQ(interfaceOf(&sheet)->role(), QAccessible::Dialog);
}

TEST_F(Overlays, ANoticeStandsInTheMiddleOfItsColumnAndLetsClicksThrough) {
    QWidget column(&window);
    column.setGeometry(200, 50, 600, 500);
    Notice notice(&column);
    showWindow();
    notice.showText(QStringLiteral("Workspace refreshed."));
    EXPECT_TRUE(notice.isVisible());
    EXPECT_EQ(nameOf(&notice), u"Workspace refreshed.");
    EXPECT_NEAR(notice.geometry().center().x(), 500, 1);
    EXPECT_TRUE(notice.testAttribute(Qt::WA_TransparentForMouseEvents));
    column.setGeometry(0, 50, 800, 500);
    QApplication::processEvents();
    EXPECT_NEAR(notice.geometry().center().x(), 400, 1);
    const int oneLine = notice.height();
    notice.showText(QStringLiteral("A long notice that says what happened. ").repeated(5));
    EXPECT_GT(notice.height(), oneLine);
    notice.showText(QString(10'000, u'W'));
    EXPECT_LE(notice.width(), column.width());
    EXPECT_LE(notice.height(), column.height());
    EXPECT_EQ(nameOf(&notice).size(), 10'000);
    notice.dismiss();
    EXPECT_FALSE(notice.isVisible());
}

}  // namespace
}  // namespace orvo
