// A window with one text field, which takes the keyboard. Ctrl+S saves its text to the file that is named.

#include <QApplication>
#include <QFile>
#include <QPlainTextEdit>
#include <QShortcut>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QPlainTextEdit editor;
    editor.setWindowTitle(QStringLiteral("Typing target"));
    editor.resize(500, 200);
    const QShortcut save(QKeySequence::Save, &editor);
    QObject::connect(&save, &QShortcut::activated, [&] {
        QFile file(application.arguments().at(1));
        if (file.open(QIODevice::WriteOnly)) file.write(editor.toPlainText().toUtf8());
    });
    editor.show();
    return QApplication::exec();
}
