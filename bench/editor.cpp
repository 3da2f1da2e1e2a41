// Prints what one key costs in the largest text that the editor colours, from the key to the painted line,
// beside what finding the colours of the whole text with regular expressions costs. Processor time of the
// thread, in milliseconds. Then what listing a folder of 5,000 files costs, beside sorting their names by a
// collator that is asked for each pair.
#include "appearance/Theme.h"
#include "appearance/controls/OrvoStyle.h"
#include "files/ProjectFiles.h"
#include "files/listEntries.h"
#include "files/ui/CodeEditor.h"
#include "platform/fake/FakeDialogs.h"
#include "tests/files/codePatterns.h"

#include <QApplication>
#include <QCollator>
#include <QFile>
#include <QKeyEvent>
#include <QTemporaryDir>
#include <QTextBlock>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <random>
#include <vector>

namespace orvo::bench {
namespace {

constexpr int keysAPlace = 300;
constexpr int rounds = 25;

double processorMilliseconds() {
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

/// Lines as code has them, of all four colours; the same at every run.
QString largestColoredText() {
    const QStringList lines = {
        QStringLiteral("def load(path, limit=250):\n"),
        QStringLiteral("    with open(path, newline=\"\") as handle:\n"),
        QStringLiteral("        rows = [r for r in csv.DictReader(handle) if r['height'] > 3.14]\n"),
        QStringLiteral("        return rows  # newest last\n"),
        QStringLiteral("    if (!needle) return notes; // nothing to find\n"),
        QStringLiteral("\n"),
    };
    std::mt19937 random(20261123);
    QString text;
    while (text.size() < CodeColoring::longestText - 1)
        text += lines[static_cast<qsizetype>(random() % static_cast<unsigned>(lines.size()))];
    text.truncate(CodeColoring::longestText - 1);
    return text;
}

struct Times {
    std::vector<double> values;

    void print(const char* name) {
        std::ranges::sort(values);
        std::printf("%-44s %9.2f %9.2f\n", name, values[values.size() / 2], values.back());
    }
};

/// A window's editor on a model, as the Files page joins them.
class Desk {
public:
    Desk() {
        m_editor.resize(900, 620);
        m_editor.show();
        QObject::connect(&m_editor, &CodeEditor::textEdited, &m_files,
                         [this] { m_files.setEditorText(m_editor.text()); });
        QObject::connect(&m_files, &ProjectFiles::editorTextChanged, &m_editor,
                         [this] { m_editor.setText(m_files.editorText()); });
        const QString text = largestColoredText();
        m_files.restoreUnsaved(std::nullopt, text, text);
        m_editor.open(text);
        QCoreApplication::processEvents();
    }

    /// `keys` over and over from line `number` on; each is taken back, so that the text stays under the
    /// limit.
    Times type(int number, const QString& keys) {
        m_editor.goToLine(number);
        QCoreApplication::processEvents();
        Times times;
        for (int index = 0; index < keysAPlace; ++index) {
            const QChar key = keys[index % keys.size()];
            press(Qt::Key_Delete, {});
            times.values.push_back(press(key == u'\n' ? Qt::Key_Return : Qt::Key_A, key));
        }
        return times;
    }

    int lines() const { return m_editor.lastLine(); }

private:
    double press(int key, QChar character) {
        const double start = processorMilliseconds();
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier,
                        character.isNull() ? QString() : QString(character));
        QCoreApplication::sendEvent(&m_editor, &event);
        QCoreApplication::processEvents();
        return processorMilliseconds() - start;
    }

    FakeDialogs m_dialogs;
    ProjectFiles m_files{m_dialogs, [](const QString&) {
                         }};
    CodeEditor m_editor{QStringLiteral("Code")};
};

Times matchEverything() {
    const QString text = largestColoredText();
    Times times;
    qsizetype units = 0;
    for (int round = 0; round < rounds; ++round) {
        const double start = processorMilliseconds();
        for (const QRegularExpression& rule : test::codePatterns()) {
            for (auto matches = rule.globalMatch(text); matches.hasNext();)
                units += matches.next().capturedLength();
        }
        times.values.push_back(processorMilliseconds() - start);
    }
    if (units == 0) std::puts("the patterns have found nothing");
    return times;
}

/// Names such as a test's outputs have, in no order.
QStringList names() {
    QStringList names;
    for (int number = 0; number < 5000; ++number)
        names.append(QStringLiteral("Output %1 of run %2.txt").arg(number * 7919 % 5000).arg(number % 97));
    return names;
}

void listFolder() {
    const QTemporaryDir folder;
    for (const QString& name : names()) {
        QFile file(folder.filePath(name));
        (void)file.open(QIODevice::WriteOnly);
    }
    Times listing;
    Times pairwise;
    for (int round = 0; round < rounds; ++round) {
        double begin = processorMilliseconds();
        const auto entries = listEntries(FilePath::fromString(folder.path()));
        listing.values.push_back(processorMilliseconds() - begin);
        if (!entries || entries->size() != 5000) std::abort();

        QStringList sorted = names();
        QCollator collator{QLocale(QLocale::English)};
        collator.setNumericMode(true);
        begin = processorMilliseconds();
        std::ranges::sort(sorted, collator);
        pairwise.values.push_back(processorMilliseconds() - begin);
    }
    listing.print("reading and sorting a folder of 5,000 files");
    pairwise.print("5,000 names sorted pair by pair");
}

}  // namespace
}  // namespace orvo::bench

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    orvo::Theme theme(nullptr);
    orvo::applyTheme(theme);
    std::printf("%-44s %9s %9s\n", "199,999 characters, ms of processor time", "median", "worst");
    orvo::bench::Desk desk;
    const QString words = QStringLiteral("value = 12 ");
    desk.type(1, words).print("a key in the first line");
    desk.type(desk.lines() / 2, words).print("a key in the middle");
    desk.type(desk.lines(), words).print("a key in the last line");
    desk.type(desk.lines() / 2, QStringLiteral("x\n")).print("half of the keys are Return");
    // Each quote turns every string after it into code and all code into strings.
    desk.type(1, QStringLiteral("\"x")).print("half of the keys are quotes, in the first line");
    orvo::bench::matchEverything().print("all colours by regular expressions");
    orvo::bench::listFolder();
    return 0;
}
