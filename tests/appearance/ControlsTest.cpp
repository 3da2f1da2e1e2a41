#include "appearance/ControlFixture.h"
#include "appearance/controls/ActionCard.h"
#include "appearance/controls/CheckRow.h"
#include "appearance/controls/Eyebrow.h"
#include "appearance/controls/ListRow.h"
#include "appearance/controls/NavRow.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/Paragraph.h"
#include "appearance/controls/SegmentedControl.h"
#include "appearance/controls/SelectableText.h"
#include "appearance/controls/SessionTab.h"
#include "appearance/controls/StatusPill.h"
#include "appearance/controls/Switch.h"
#include "appearance/controls/TaskEditor.h"
#include "support/WaitFor.h"

#include <QClipboard>
#include <QHBoxLayout>
#include <QHoverEvent>
#include <QSignalSpy>
#include <QTest>

#include <functional>
#include <memory>

namespace orvo {
namespace {

using Controls = test::ControlFixture;

struct Maker {
    const char* what;
    std::function<Pressable*(QWidget*)> make;
};

template <class Control, class... Arguments>
Maker maker(const char* what, const Arguments&... arguments) {
    return {what, [=](QWidget* window) {
                return new Control(arguments..., window);
            }};
}

const std::vector<Maker>& pressables() {
    static const QString title = QStringLiteral("Files & <b>runner");
    static const QString icon = QStringLiteral("hammer");
    constexpr Rgb color{1, 2, 3};
    constexpr auto size = OrvoButton::Size{};
    static const std::vector<Maker> makers{
        maker<OrvoButton>("button", title, icon, OrvoButton::Kind::Outlined, size),
        maker<OrvoButton>("primary", title, icon, OrvoButton::Kind::Primary, size),
        maker<OrvoButton>("icon button", title, icon, OrvoButton::Kind::Icon, size),
        maker<ActionCard>("card", icon, title, QString()),
        maker<NavRow>("entry", icon, title),
        maker<ListRow>("row", title),
        maker<SessionTab>("tab", icon, color, title),
        maker<Switch>("switch", title),
        maker<CheckRow>("check row", icon, color, title),
    };
    return makers;
}

TEST_F(Controls, AreNamedByTheirVisibleTextToTheLetter) {
    for (const Maker& maker : pressables()) {
        Pressable* const control = maker.make(&window);
        EXPECT_EQ(nameOf(control), u"Files & <b>runner") << maker.what;
        EXPECT_TRUE(control->shortcut().isEmpty()) << maker.what << ": an ampersand makes no mnemonic";
    }
    EXPECT_EQ(nameOf(new Eyebrow(QStringLiteral("Recent projects"), &window)), u"Recent projects");
    EXPECT_EQ(nameOf(new StatusPill(QStringLiteral("Exit 0"), Ink::Muted, &window)), u"Exit 0");
    EXPECT_EQ(nameOf(new Paragraph(QStringLiteral("A & B\n<i>"), TypeRole::Body, Ink::Muted, &window)),
              u"A & B\n<i>");
}

TEST_F(Controls, ArePressedByKeyboardMouseAndAssistiveTechnology) {
    showWindow();
    for (const Maker& maker : pressables()) {
        SCOPED_TRACE(maker.what);
        Pressable* control = maker.make(&window);
        control->resize(control->sizeHint());
        control->show();
        QSignalSpy clicks(control, &QAbstractButton::clicked);
        control->setFocus(Qt::TabFocusReason);
        press(control, Qt::Key_Space);
        EXPECT_EQ(clicks.size(), 1);
        click(control);
        EXPECT_EQ(clicks.size(), 2);
        press(control, Qt::Key_Return);
        EXPECT_EQ(clicks.size(), control->isCheckable() ? 2 : 3);

        QAccessibleActionInterface* actions = interfaceOf(control)->actionInterface();
        ASSERT_NE(actions, nullptr);
        QSignalSpy toggles(control, &QAbstractButton::toggled);
        const qsizetype before = clicks.size() + toggles.size();
        actions->doAction(control->isCheckable() ? QAccessibleActionInterface::toggleAction()
                                                 : QAccessibleActionInterface::pressAction());
        // Qt shows a press for a moment before it counts.
        EXPECT_TRUE(test::waitFor([&] { return clicks.size() + toggles.size() == before + 1; }));

        control->setEnabled(false);
        clicks.clear();
        toggles.clear();
        press(control, Qt::Key_Space);
        click(control);
        EXPECT_TRUE(clicks.isEmpty());
        EXPECT_TRUE(interfaceOf(control)->state().disabled);
        delete control;
    }
}

TEST_F(Controls, ShowFocusOnlyWhenTheKeyboardBroughtIt) {
    showWindow();
    for (const Maker& maker : pressables()) {
        SCOPED_TRACE(maker.what);
        Pressable* control = maker.make(&window);
        control->show();
        const auto visibleAfter = [&](Qt::FocusReason reason) {
            control->clearFocus();
            control->setFocus(reason);
            return control->isFocusVisible();
        };
        EXPECT_TRUE(visibleAfter(Qt::TabFocusReason));
        EXPECT_TRUE(visibleAfter(Qt::BacktabFocusReason));
        EXPECT_TRUE(visibleAfter(Qt::ShortcutFocusReason));
        EXPECT_FALSE(visibleAfter(Qt::MouseFocusReason));
        EXPECT_FALSE(visibleAfter(Qt::OtherFocusReason));
        control->clearFocus();
        control->setFocus(Qt::TabFocusReason);
        click(control);
        EXPECT_FALSE(control->isFocusVisible()) << "a click hides the ring";
        delete control;
    }
}

TEST_F(Controls, LookDifferentInEveryState) {
    showWindow();
    for (const Maker& maker : pressables()) {
        SCOPED_TRACE(maker.what);
        Pressable* control = maker.make(&window);
        // Away from the corner, where the pointer of a bare session rests.
        control->setGeometry(QRect(QPoint(300, 300), control->sizeHint().expandedTo({160, 28})));
        control->show();
        QApplication::processEvents();
        const QImage rest = control->grab().toImage();
        QHoverEvent enter(QEvent::HoverEnter, QPointF(3, 3), QPointF(3, 3), QPointF(-1, -1));
        QApplication::sendEvent(control, &enter);
        const QImage hover = control->grab().toImage();
        EXPECT_NE(hover, rest) << "hover";
        QHoverEvent leave(QEvent::HoverLeave, QPointF(-1, -1), QPointF(-1, -1), QPointF(3, 3));
        QApplication::sendEvent(control, &leave);
        EXPECT_EQ(control->grab().toImage(), rest) << "back at rest";
        control->takeVisibleFocus();
        EXPECT_NE(control->grab().toImage(), rest) << "focus";
        control->clearFocus();
        control->setEnabled(false);
        EXPECT_NE(control->grab().toImage(), rest) << "disabled";
        delete control;
    }
}

TEST_F(Controls, ButtonsAreAsWideAsTheirTextSoThatNothingIsCut) {
    OrvoButton shorter(QStringLiteral("Stop"), {}, OrvoButton::Kind::Outlined);
    OrvoButton longer(QStringLiteral("Stop all sessions of this project"), {}, OrvoButton::Kind::Outlined);
    EXPECT_GE(longer.minimumSizeHint().width(),
              longer.fontMetrics().horizontalAdvance(longer.title()) + 2 * 12);
    EXPECT_GT(longer.minimumSizeHint().width(), shorter.minimumSizeHint().width());
    OrvoButton icon(QStringLiteral("Session menu"), QStringLiteral("ellipsis"), OrvoButton::Kind::Icon,
                    OrvoButton::Size::Small);
    EXPECT_EQ(icon.sizeHint(), QSize(28, 28));
    EXPECT_EQ(icon.toolTip(), u"Session menu");
}

TEST_F(Controls, ANavigationEntryDescribesItsCountAndTellsWhetherItIsCurrent) {
    NavRow entry(QStringLiteral("square.grid.2x2"), QStringLiteral("Workspace"));
    entry.setCount(3);
    entry.setCurrent(true);
    QAccessibleInterface* tree = interfaceOf(&entry);
    EXPECT_EQ(tree->text(QAccessible::Name), u"Workspace");
    EXPECT_EQ(tree->text(QAccessible::Description), u"3");
    EXPECT_EQ(tree->role(), QAccessible::Button);
    EXPECT_TRUE(tree->state().selected);
    entry.setCount(0);
    entry.setCurrent(false);
    EXPECT_TRUE(tree->text(QAccessible::Description).isEmpty());
    EXPECT_FALSE(tree->state().selected);
}

TEST_F(Controls, ARowThatIsNotReadyAsksForSetupAndNeverShowsACheck) {
    CheckRow row(QStringLiteral("asterisk"), {1, 2, 3}, QStringLiteral("Claude Code"));
    QSignalSpy chosen(&row, &CheckRow::chosen);
    QSignalSpy setup(&row, &CheckRow::setupRequested);
    row.setState(true, true);
    EXPECT_TRUE(chosen.isEmpty()) << "showing the model's state is no choice";
    QAccessibleInterface* tree = interfaceOf(&row);
    EXPECT_EQ(tree->role(), QAccessible::CheckBox);
    EXPECT_TRUE(tree->state().checkable);
    EXPECT_TRUE(tree->state().checked);
    tree->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    ASSERT_EQ(chosen.size(), 1);
    EXPECT_EQ(chosen.first().first().toBool(), false);

    row.setState(false, true);
    EXPECT_FALSE(row.isChecked()) << "chosen but not ready";
    row.click();
    tree->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_EQ(setup.size(), 2);
    EXPECT_FALSE(row.isChecked());
    EXPECT_EQ(chosen.size(), 1);
}

TEST_F(Controls, ASegmentedChoiceIsOneTabStopAndMovesWithTheArrows) {
    auto* layout = new QHBoxLayout(&window);
    auto* before = new OrvoButton(QStringLiteral("Before"));
    auto* choice = new SegmentedControl({QStringLiteral("Shared folder"), QStringLiteral("Separate copies")});
    auto* after = new OrvoButton(QStringLiteral("After"));
    for (QWidget* widget : std::initializer_list<QWidget*>{before, choice, after})
        layout->addWidget(widget);
    showWindow();
    QSignalSpy chosen(choice, &SegmentedControl::chosen);
    choice->setCurrentIndex(1);
    EXPECT_TRUE(chosen.isEmpty());
    EXPECT_EQ(choice->currentIndex(), 1);

    before->setFocus();
    press(before, Qt::Key_Tab);
    QWidget* segment = QApplication::focusWidget();
    ASSERT_EQ(segment->parentWidget(), choice);
    EXPECT_EQ(nameOf(segment), u"Separate copies");
    EXPECT_EQ(interfaceOf(segment)->role(), QAccessible::RadioButton);
    EXPECT_TRUE(interfaceOf(segment)->state().checked);
    press(segment, Qt::Key_Left);
    EXPECT_EQ(choice->currentIndex(), 0);
    ASSERT_EQ(chosen.size(), 1);
    EXPECT_EQ(chosen.first().first().toInt(), 0);
    press(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), after);

    choice->setOptionEnabled(1, false, QStringLiteral("Not here yet"));
    EXPECT_EQ(choice->currentIndex(), 0);
    QAbstractButton* off = choice->findChildren<QAbstractButton*>().at(1);
    off->click();
    EXPECT_EQ(choice->currentIndex(), 0);
    EXPECT_EQ(off->toolTip(), u"Not here yet");
}

TEST_F(Controls, TheTaskEditorGrowsWithItsTextAndThenScrolls) {
    TaskEditor editor(QStringLiteral("Task for selected assistants"),
                      QStringLiteral("What would you like to build?"));
    editor.resize(400, editor.height());
    editor.show();
    EXPECT_EQ(nameOf(&editor), u"Task for selected assistants");
    EXPECT_EQ(interfaceOf(&editor)->text(QAccessible::Description), u"What would you like to build?");
    EXPECT_EQ(editor.height(), 60);
    editor.setText(QStringLiteral("line\n").repeated(5));
    const int grown = editor.height();
    EXPECT_GT(grown, 60);
    EXPECT_LT(grown, 160);
    editor.setText(QStringLiteral("line\n").repeated(40));
    EXPECT_EQ(editor.height(), 160);
    editor.setText(QStringLiteral("word ").repeated(60));
    EXPECT_GT(editor.height(), 60) << "lines that wrap count too";
    editor.setText({});
    EXPECT_EQ(editor.height(), 60);
}

TEST_F(Controls, TheTaskEditorKeepsCaretAndUndoWhenTheModelEchoesItsText) {
    TaskEditor editor(QStringLiteral("Task"), {});
    editor.insertPlainText(QStringLiteral("one two"));
    editor.moveCursor(QTextCursor::Start);
    editor.setText(QStringLiteral("one two"));
    EXPECT_EQ(editor.textCursor().position(), 0);
    EXPECT_TRUE(editor.document()->isUndoAvailable());
}

TEST_F(Controls, RepaintInTheNewPaletteWhenTheThemeChanges) {
    OrvoButton button(QStringLiteral("Run task"), {}, OrvoButton::Kind::Primary);
    button.resize(button.sizeHint());
    const QPoint inside(4, 16);
    EXPECT_EQ(button.grab().toImage().pixelColor(inside), QColor(0x00, 0xD9, 0xFF));
    theme.setAccentHex(QStringLiteral("FF8800"));
    EXPECT_EQ(button.grab().toImage().pixelColor(inside), QColor(0xFF, 0x88, 0x00));
    EXPECT_EQ(QApplication::palette().color(QPalette::Link), QColor(0xFF, 0x88, 0x00));
}

TEST_F(Controls, TextIsSelectedByPointerAndCopiedAsItStands) {
    const QString text = QStringLiteral("low <tide>\n06:12 \u6f6e high");
    SelectableText paragraph(text);
    paragraph.resize(300, paragraph.heightForWidth(300));
    paragraph.show();
    const int second = paragraphPitch(TypeRole::Body) * 3 / 2;
    QTest::mousePress(&paragraph, Qt::LeftButton, {}, {0, 2});
    QTest::mouseMove(&paragraph, {290, second});
    QTest::mouseRelease(&paragraph, Qt::LeftButton, {}, {290, second});
    EXPECT_EQ(paragraph.selectedText(), text);
    QTest::mouseDClick(&paragraph, Qt::LeftButton, {}, {10, second});
    EXPECT_EQ(paragraph.selectedText(), u"06");
    QTest::keySequence(&paragraph, QKeySequence::Copy);
    EXPECT_EQ(QApplication::clipboard()->text(), u"06");
    QTest::keySequence(&paragraph, QKeySequence::SelectAll);
    EXPECT_EQ(paragraph.selectedText(), text);
}

}  // namespace
}  // namespace orvo
