#include "files/ui/CodeEditor.h"

#include "appearance/Theme.h"
#include "appearance/codeColors.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/painting.h"
#include "files/codePatterns.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QTest>
#include <QTextBlock>
#include <QVBoxLayout>

#include <random>

namespace orvo {
namespace {

using namespace test;

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

class CodeEditorTest : public testing::Test {
protected:
    CodeEditorTest() {
        applyTheme(m_theme);
        m_editor = std::make_unique<CodeEditor>(text("Code"));
        m_editor->resize(800, 4000);
        m_editor->show();
        QObject::connect(m_editor.get(), &CodeEditor::textEdited, [this] { ++m_edits; });
    }

    /// The text with the caret as "|", and a selection between "[" and "]".
    QString shown() const {
        QString lines = m_editor->toPlainText();
        const QTextCursor cursor = m_editor->textCursor();
        if (!cursor.hasSelection()) return lines.insert(cursor.position(), u'|');
        return lines.insert(cursor.selectionEnd(), u']').insert(cursor.selectionStart(), u'[');
    }
    void show(QString marked) {
        const qsizetype start = marked.indexOf(QRegularExpression(QStringLiteral("[\\[|]")));
        const qsizetype end = marked.lastIndexOf(QRegularExpression(QStringLiteral("[\\]|]")));
        const bool isCaret = start == end;
        marked.remove(QRegularExpression(QStringLiteral("[\\[\\]|]")));
        m_editor->open(marked);
        QTextCursor cursor = m_editor->textCursor();
        cursor.setPosition(static_cast<int>(start));
        if (!isCaret) cursor.setPosition(static_cast<int>(end - 1), QTextCursor::KeepAnchor);
        m_editor->setTextCursor(cursor);
    }

    /// The colours on the lines as they are laid out.
    Picture colors() const {
        static const CodeColors all;
        const std::pair<Rgb, CodeToken> tokens[] = {{all.keyword, CodeToken::Keyword},
                                                    {all.number, CodeToken::Number},
                                                    {all.string, CodeToken::String},
                                                    {all.comment, CodeToken::Comment}};
        Picture picture = plain(m_editor->toPlainText());
        for (QTextBlock block = m_editor->document()->begin(); block.isValid(); block = block.next()) {
            for (const auto& range : block.layout()->formats()) {
                for (const auto& [color, token] : tokens) {
                    if (range.format.foreground().color() == toQColor(color))
                        paint(picture, block.position() + range.start, range.length, letterOf(token));
                }
            }
        }
        return picture;
    }

    Theme m_theme{nullptr};
    std::unique_ptr<CodeEditor> m_editor;
    int m_edits = 0;
};

TEST_F(CodeEditorTest, everyTextIsKeptUnitForUnit) {
    QString units;
    for (char16_t unit = 0; unit < 0x180; ++unit)
        units += QChar(unit);
    // Characters by which documents are structured inside, and invisible ones.
    units += QString::fromUtf16(u"\u200B\u2028\u2029\xFDD0\xFDD1\xFDEF\uFFFC\uFFFD\xFFFE\uFEFF");
    for (const QString& whole :
         {units, text("\uFEFFa\r\nb\nc\rd"), text("a\u00a0b\u2028c\u2029d"), QString()}) {
        m_editor->open(whole);
        EXPECT_EQ(m_editor->text(), whole);
        QTest::keyClick(m_editor.get(), Qt::Key_X);
        EXPECT_NE(m_editor->text(), whole);
        m_editor->undo();
        EXPECT_EQ(m_editor->text(), whole);
        // Copied through the clipboard, too; line ends become line feeds, which is what others expect.
        m_editor->open(text("a\u00a0b\r\nc\rd"));
        m_editor->selectAll();
        m_editor->copy();
        EXPECT_EQ(QApplication::clipboard()->text(), text("a\u00a0b\nc\nd"));
    }
    EXPECT_EQ(m_edits, 8);
}

TEST_F(CodeEditorTest, afterThousandsOfEditsEveryLineHasItsColours) {
    const QStringList pieces = codePieces();
    std::mt19937 random(20261123);
    const auto below = [&](int limit) {
        return std::uniform_int_distribution(0, limit - 1)(random);
    };
    for (int edit = 0; edit < 4000; ++edit) {
        QTextDocument& document = *m_editor->document();
        QTextCursor cursor(&document);
        const int length = document.characterCount() - 1;
        const bool isLong = length > 600 || document.blockCount() > 90;
        cursor.setPosition(below(length + 1));
        switch (below(8)) {
            case 0:
                m_editor->undo();
                break;
            case 1:
                m_editor->redo();
                break;
            case 2:
            case 3:
                cursor.setPosition(std::min(length, cursor.position() + below(isLong ? 300 : 9)),
                                   QTextCursor::KeepAnchor);
                cursor.removeSelectedText();
                break;
            default:
                cursor.insertText(pieces[below(static_cast<int>(pieces.size()))]);
        }
        const QString whole = m_editor->toPlainText();
        ASSERT_EQ(m_editor->text(), whole);
        ASSERT_LT(document.blockCount(), 150) << "all lines are in view";
        ASSERT_EQ(colors(), byPatterns(whole)) << "edit " << edit << ":\n" << qPrintable(whole);
    }
}

TEST_F(CodeEditorTest, linesAreColouredWhenTheyComeIntoView) {
    m_editor->open(text("\"open\n") + text("x\n").repeated(3000) + text("return 1"));
    const auto lastColors = [this] {
        return colors().right(8);
    };
    EXPECT_EQ(lastColors(), "........");
    m_editor->moveCursor(QTextCursor::End);
    EXPECT_EQ(lastColors(), "kkkkkk.n");
    // Closing the string far above changes what is shown here.
    QTest::keyClicks(m_editor.get(), text("\""));
    EXPECT_EQ(colors().right(9), "sssssssss");
    EXPECT_EQ(colors()[0], '.') << "out of view, and so not worked out";
    m_editor->moveCursor(QTextCursor::Start);
    EXPECT_EQ(colors()[0], 's');
}

TEST_F(CodeEditorTest, longTextsAndLongLinesStayPlainAndSaySo) {
    const QString code = text("return 1\n");
    QString whole = code.repeated(CodeColoring::longestText / code.size() + 1);
    whole.truncate(CodeColoring::longestText - 1);
    m_editor->open(whole);
    EXPECT_EQ(colors().left(8), "kkkkkk.n");
    EXPECT_EQ(m_editor->plainReason(), QString());
    m_editor->moveCursor(QTextCursor::Start);
    QTest::keyClicks(m_editor.get(), text(" "));
    EXPECT_EQ(colors().left(8), "........");
    EXPECT_EQ(m_editor->plainReason(), text("No colours: the text has 200,000 characters or more."));
    m_editor->undo();
    EXPECT_EQ(colors().left(8), "kkkkkk.n");

    m_editor->open(text("return 1\n") + QString(20'001, u'x'));
    EXPECT_EQ(colors().left(8), "........");
    EXPECT_EQ(m_editor->plainReason(), text("No colours: a line is longer than 20,000 characters."));
}

TEST_F(CodeEditorTest, aLineOfNearlyTwoMillionCharactersOpensAndIsTypedIn) {
    const QString longLine = text("first\n") + QString(1'900'000, u'x') + text("\nlast");
    QElapsedTimer timer;
    timer.start();
    m_editor->open(longLine);
    m_editor->moveCursor(QTextCursor::End);
    m_editor->goToLine(2);
    QTest::keyClicks(m_editor.get(), text("abc"));
    // Laid out as one line, each of these keys would take seconds.
    EXPECT_LT(timer.elapsed(), 5000);
    EXPECT_EQ(m_editor->text(), text("first\nabc") + longLine.sliced(6));
    EXPECT_EQ(m_editor->lastLine(), 3);
    for (const auto& line : m_editor->visibleLines())
        EXPECT_LE(line.number, 2) << "the pieces of the line bear no numbers";

    // At a break that is only shown, the keys take what is in the text.
    QTextCursor cursor(m_editor->document()->findBlockByNumber(2));
    m_editor->setTextCursor(cursor);
    QTest::keyClick(m_editor.get(), Qt::Key_Backspace);
    EXPECT_EQ(m_editor->text().size(), longLine.size() + 2);
    m_editor->undo();
    EXPECT_EQ(m_editor->text(), text("first\nabc") + longLine.sliced(6));
    m_editor->selectAll();
    m_editor->copy();
    EXPECT_EQ(QApplication::clipboard()->text(), m_editor->text());
    m_editor->open(text("a\r\nb"));
    m_editor->moveCursor(QTextCursor::End);
    m_editor->paste();
    EXPECT_EQ(m_editor->text(), text("a\r\nbfirst\r\nabc") + longLine.sliced(6).replace(u'\n', text("\r\n")));
    m_editor->undo();
    EXPECT_EQ(m_editor->text(), text("a\r\nb"));
    m_editor->redo();
    EXPECT_EQ(m_editor->text().size(), longLine.size() + 3 + 3 + 1 + 2);
}

TEST_F(CodeEditorTest, keysIndentAsTheTextDoes) {
    struct Case {
        const char* before;
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        const char* after;
    };
    const Case cases[] = {
        {"    if x:|", Qt::Key_Return, {}, "    if x:\n    |"},
        {"    |", Qt::Key_Return, {}, "    \n    |"},
        {"  |  x", Qt::Key_Return, {}, "  \n  |  x"},
        {"\tx[yz]\n", Qt::Key_Enter, Qt::KeypadModifier, "\tx\n\t|\n"},
        {"x|y", Qt::Key_Return, Qt::ShiftModifier, "x\n|y"},
        {"x|", Qt::Key_Tab, {}, "x   |"},
        {"|", Qt::Key_Tab, {}, "    |"},
        {"a\n  b\n|", Qt::Key_Tab, {}, "a\n  b\n  |"},
        {"a\n\tb\n|", Qt::Key_Tab, {}, "a\n\tb\n\t|"},
        {"a[b]c", Qt::Key_Tab, {}, "a   |c"},
        {"[a\n\n  b]\nc", Qt::Key_Tab, {}, "[  a\n\n    b]\nc"},
        {"[a\nb\n]c", Qt::Key_Tab, {}, "[    a\n    b\n]c"},
        {"    a|", Qt::Key_Backtab, Qt::ShiftModifier, "a|"},
        {" a|", Qt::Key_Backtab, Qt::ShiftModifier, "a|"},
        {"[\ta\n      b\nc]", Qt::Key_Backtab, Qt::ShiftModifier, "[a\n  b\nc]"},
        {"|a", Qt::Key_Backtab, Qt::ShiftModifier, "|a"},
    };
    for (const Case& each : cases) {
        show(text(each.before));
        const QString before = m_editor->text();
        QTest::keyClick(m_editor.get(), each.key, each.modifiers);
        EXPECT_EQ(shown(), text(each.after)) << each.before;
        if (m_editor->text() == before) continue;
        m_editor->undo();
        EXPECT_EQ(m_editor->text(), before) << "one step to undo: " << each.before;
    }
}

TEST_F(CodeEditorTest, controlTabLeavesTheEditor) {
    QWidget window;
    auto* const column = new QVBoxLayout(&window);
    auto* const field = new QLineEdit;
    column->addWidget(m_editor.get());
    column->addWidget(field);
    window.show();
    m_editor->setFocus();
    QTest::keyClick(m_editor.get(), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(window.focusWidget(), field);
    EXPECT_EQ(m_editor->text(), QString());
    m_editor->setParent(nullptr);
}

TEST_F(CodeEditorTest, aTextOfTheModelLeavesCaretAndUndoAlone) {
    show(text("on|e\ntwo"));
    QTest::keyClicks(m_editor.get(), text("1"));
    m_editor->setText(m_editor->text());
    EXPECT_EQ(shown(), text("on1|e\ntwo"));
    m_editor->setText(text("zero\non1e\ntwo"));
    EXPECT_EQ(shown(), text("zero\non1|e\ntwo"));
    EXPECT_EQ(m_edits, 1) << "only what the person does is told";
    m_editor->undo();
    m_editor->undo();
    EXPECT_EQ(m_editor->text(), text("one\ntwo"));
    m_editor->open(text("other"));
    EXPECT_FALSE(m_editor->document()->isUndoAvailable());
}

TEST_F(CodeEditorTest, goesToLinesAndNumbersThem) {
    m_editor->resize(800, 400);
    m_editor->setFontSize(13);
    m_editor->open(text("x\n").repeated(300) + QString(500, u'y'));
    EXPECT_EQ(m_editor->visibleLines().first().number, 1);
    EXPECT_EQ(m_editor->visibleLines().first().top, 15) << "the inset";
    EXPECT_EQ(m_editor->visibleLines().at(1).top, 35) << "one and a half times the size of the font";
    m_editor->goToLine(150);
    EXPECT_EQ(m_editor->currentLine(), 150);
    EXPECT_TRUE(
        std::ranges::any_of(m_editor->visibleLines(), [](const auto& line) { return line.number == 150; }));
    m_editor->goToLine(9'999);
    EXPECT_EQ(m_editor->currentLine(), 301);
    EXPECT_EQ(m_editor->lastLine(), 301) << "a wrapped line is one line";
    m_editor->goToLine(-4);
    EXPECT_EQ(m_editor->currentLine(), 1);
}

TEST_F(CodeEditorTest, findsInEitherDirectionAndRoundTheEnd) {
    using Search = CodeEditor::Search;
    show(text("aXa |xaX b\n\nx"));
    const auto found = [this](const char* what, Search search) {
        return m_editor->find(text(what), search) ? shown() : QString();
    };
    EXPECT_EQ(found("x", Search::Here), text("aXa [x]aX b\n\nx"));
    EXPECT_EQ(found("xA", Search::Here), text("aXa [xa]X b\n\nx")) << "stays while the text grows";
    EXPECT_EQ(found("x", Search::Next), text("aXa xa[X] b\n\nx"));
    EXPECT_EQ(found("x", Search::Next), text("aXa xaX b\n\n[x]"));
    EXPECT_EQ(m_editor->matches(text("x")).count, 4);
    EXPECT_EQ(m_editor->matches(text("x")).current, 4);
    EXPECT_EQ(found("x", Search::Next), text("a[X]a xaX b\n\nx"));
    EXPECT_EQ(m_editor->matches(text("X")).current, 1);
    EXPECT_EQ(m_editor->matches(text("Xa")).current, 0);
    EXPECT_EQ(found("x", Search::Previous), text("aXa xaX b\n\n[x]"));
    EXPECT_EQ(found("y", Search::Next), QString());
    EXPECT_EQ(found("", Search::Here), QString());
    EXPECT_EQ(shown(), text("aXa xaX b\n\n[x]")) << "what is not there moves nothing";
    m_editor->setSearched(text("a"));
    EXPECT_EQ(m_editor->extraSelections().size(), 3);
}

TEST_F(CodeEditorTest, zoomsWithinLimitsAndBack) {
    m_editor->setFontSize(13);
    const auto size = [this] {
        return m_editor->font().pixelSize();
    };
    QTest::keyClick(m_editor.get(), Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_EQ(size(), 14);
    m_editor->setFontSize(20);
    EXPECT_EQ(size(), 21) << "zoom stays when the theme's size changes";
    for (int press = 0; press < 60; ++press)
        QTest::keyClick(m_editor.get(), Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_EQ(size(), 8);
    QTest::keyClick(m_editor.get(), Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(size(), 20);
    EXPECT_EQ(m_editor->text(), QString());
}

}  // namespace
}  // namespace orvo
