#include "appearance/ControlFixture.h"
#include "appearance/controls/ElidedLabel.h"
#include "appearance/controls/FlowGrid.h"
#include "appearance/controls/InfoCard.h"
#include "appearance/controls/Paragraph.h"
#include "appearance/controls/ScrollPage.h"
#include "appearance/controls/lineText.h"

#include <QHelpEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextLayout>
#include <QToolTip>
#include <QVBoxLayout>

namespace orvo {
namespace {

using Layout = test::ControlFixture;

const QString sentence =
    QStringLiteral("Each assistant gets its own project copy. Compare results and apply some.");

TEST_F(Layout, AParagraphIsAsHighAsItsLinesAtTheirPitch) {
    const Paragraph text(sentence);
    EXPECT_EQ(text.heightForWidth(2000), 20);
    int last = 20;
    for (int width = 600; width >= 40; width -= 7) {
        const int height = text.heightForWidth(width);
        EXPECT_EQ(height % 20, 0);
        EXPECT_GE(height, last) << "narrower is never lower, width " << width;
        last = height;
    }
    EXPECT_GT(last, 20 * 8);
    EXPECT_EQ(Paragraph(QStringLiteral("one\ntwo\n\nfour")).heightForWidth(500), 4 * 20);
    EXPECT_EQ(Paragraph(QString(400, u'w')).heightForWidth(100) % 20, 0)
        << "a word wider than the line breaks";
    EXPECT_EQ(Paragraph(QString()).heightForWidth(100), 20);
}

/// The number of lines that Qt breaks a text into, asked anew.
int linesOf(const QString& text, const QFont& font, int width) {
    QTextLayout layout(QString(text).replace(u'\n', QChar::LineSeparator), font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    int lines = 0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine(), ++lines)
        line.setLineWidth(width);
    layout.endLayout();
    return lines;
}

// What is remembered of earlier widths must never show.
TEST_F(Layout, AParagraphIsTheSameWhateverWidthsWereAskedBefore) {
    const QString mixed =
        sentence + QStringLiteral("\n/srv/a-very-long-name/without-a-space/anywhere ") + sentence;
    const QString hebrew = QStringLiteral("\u05e9\u05dc\u05d5\u05dd \u05e2\u05d5\u05dc\u05dd ").repeated(9);
    for (const QString& words : {sentence, mixed, hebrew}) {
        for (const Qt::Alignment side : {Qt::AlignLeft, Qt::AlignHCenter}) {
            Paragraph text(words);
            text.setAlignment(side);
            // Down by one, so that every width where a line breaks anew is met just before and just after.
            for (int step = 0; step < 700; ++step) {
                const int width = step < 600 ? 640 - step : 30 + step * 97 % 700;
                ASSERT_EQ(text.heightForWidth(width), 20 * linesOf(words, text.font(), width)) << width;
                if (step % 23 != 0) continue;
                Paragraph fresh(words);
                fresh.setAlignment(side);
                text.resize(width, text.heightForWidth(width));
                fresh.resize(text.size());
                ASSERT_EQ(text.grab().toImage(), fresh.grab().toImage()) << width;
            }
        }
    }
}

TEST_F(Layout, AParagraphPaintsNothingOutsideItsHeight) {
    Paragraph text(sentence, TypeRole::Caption);
    text.resize(180, text.heightForWidth(180) + 40);
    const QImage image = text.grab().toImage();
    const QColor paper = image.pixelColor(0, image.height() - 1);
    for (int x = 0; x < image.width(); ++x) {
        ASSERT_EQ(image.pixelColor(x, text.heightForWidth(180)), paper);
    }
}

TEST_F(Layout, AnElidedLabelTellsTheWholeTextOnlyWhileItIsCut) {
    ElidedLabel label(QStringLiteral("/home/mara/.local/bin/claude"));
    label.setParent(&window);
    showWindow();
    const auto tipAt = [&](int width) {
        QToolTip::hideText();
        label.setGeometry(0, 0, width, 18);
        label.show();
        QHelpEvent help(QEvent::ToolTip, QPoint(5, 5), label.mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(&label, &help);
        return QToolTip::isVisible() ? QToolTip::text() : QString();
    };
    const int needed = label.fontMetrics().horizontalAdvance(label.text());
    EXPECT_EQ(tipAt(needed + 10), QString());
    EXPECT_FALSE(label.isElided());
    EXPECT_EQ(tipAt(needed - 10), label.text());
    EXPECT_TRUE(label.isElided());
    EXPECT_EQ(nameOf(&label), label.text()) << "the name stays whole";
    EXPECT_LE(label.minimumSizeHint().width(), 24);
}

TEST_F(Layout, ALineIsPaintedWholeInItsOwnWidthAndShortenedInLess) {
    const QFont font = fontOf(TypeRole::Control);
    const auto inked = [&](const QString& text, int width, Qt::TextElideMode elide) {
        QImage image(400, 20, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setFont(font);
        paintText(painter, QRectF(0, 0, width, 20), Qt::AlignVCenter, text, elide);
        painter.end();
        return image;
    };
    for (const QString& text : {QStringLiteral("Open project"), QStringLiteral("R&D & <b>more</b>"),
                                QStringLiteral("two\nlines,\ta tab"),
                                QStringLiteral("e\u0301 \u6f22\u5b57 \u05e9\u05dc\u05d5\u05dd")}) {
        const int width = measureText(font, text);
        const QString spaced = QString(text).replace(u'\n', u' ').replace(u'\t', u' ');
        EXPECT_NEAR(width, QFontMetrics(font).horizontalAdvance(spaced), 1);
        EXPECT_EQ(inked(text, width, Qt::ElideRight), inked(text, width, Qt::ElideNone)) << qPrintable(text);
        const QImage shortened = inked(text, width * 2 / 3, Qt::ElideRight);
        EXPECT_NE(shortened, inked(text, width, Qt::ElideNone)) << qPrintable(text);
        for (int x = width * 2 / 3 + 1; x < shortened.width(); ++x)
            ASSERT_EQ(shortened.pixelColor(x, 10), QColor(Qt::white)) << qPrintable(text);
    }
    EXPECT_EQ(measureText(font, QString()), 0);
}

TEST_F(Layout, TooltipsShowMarkupAsItStands) {
    EXPECT_EQ(plainToolTip(QStringLiteral("a < b & c")), u"a < b & c");
    const QString tip = plainToolTip(QStringLiteral("<b>bold</b> & <img src=x>"));
    EXPECT_TRUE(tip.contains(u"&lt;b&gt;bold&lt;/b&gt; &amp; &lt;img"));
}

TEST_F(Layout, AGridHasAsManyColumnsAsFit) {
    const FlowGrid grid(280, 12);
    const struct {
        int width, columns;
    } rows[] = {{100, 1}, {280, 1}, {571, 1}, {572, 2}, {863, 2}, {864, 3}, {2000, 6}};
    for (const auto& row : rows)
        EXPECT_EQ(grid.columnsFor(row.width), row.columns) << row.width;
}

TEST_F(Layout, AGridFillsItsWidthWithEquallyWideCellsAndEquallyHighRows) {
    QWidget host;
    auto* grid = new FlowGrid(200, 12, &host);
    std::vector<InfoCard*> cards;
    for (int i = 0; i < 5; ++i) {
        cards.push_back(new InfoCard({}, QStringLiteral("Title"), sentence.repeated(1 + i % 2)));
        grid->addWidget(cards.back());
    }
    for (const int width : {640, 641, 643, 900}) {
        SCOPED_TRACE(width);
        host.resize(width, grid->heightForWidth(width));
        host.show();
        QApplication::processEvents();
        const int columns = grid->columnsFor(width);
        EXPECT_EQ(cards[static_cast<std::size_t>(columns - 1)]->geometry().right(), width - 1);
        EXPECT_EQ(cards[0]->height(), cards[1]->height());
        EXPECT_NEAR(cards[0]->width(), cards[1]->width(), 1);
        EXPECT_EQ(cards[1]->x() - cards[0]->geometry().right(), 13);
        EXPECT_EQ(cards.back()->geometry().bottom(), host.height() - 1);
    }
    cards[0]->hide();
    host.layout()->activate();
    EXPECT_EQ(cards[1]->pos(), QPoint(0, 0)) << "hidden cells leave no hole";
}

TEST_F(Layout, APageCentresItsColumnAndScrollsWhatDoesNotFit) {
    ScrollPage page;
    page.column().addWidget(new Paragraph(sentence.repeated(40)));
    page.column().addStretch();
    QWidget* column = page.column().parentWidget();
    const struct {
        int window, width;
    } rows[] = {{948, 900}, {1208, 1160}, {2328, 1160}};
    for (const auto& row : rows) {
        page.resize(row.window, 300);
        page.show();
        QApplication::processEvents();
        EXPECT_EQ(column->width(), row.width);
        EXPECT_NEAR(column->x(), (row.window - row.width) / 2.0, 1);
    }
    page.resize(400, 120);
    QApplication::processEvents();
    EXPECT_GT(page.verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(page.viewport()->width(), 400) << "the scroll bar lies over the page";
}

}  // namespace
}  // namespace orvo
