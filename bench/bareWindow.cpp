// The smallest Qt Widgets program with a window of the size of ours: what no start can be faster than.
#include <QApplication>
#include <QLabel>

int main(int count, char** arguments) {
    QApplication application(count, arguments);
    QLabel window(QStringLiteral("Hello"));
    window.setAlignment(Qt::AlignCenter);
    window.resize(1380, 860);
    window.show();
    return QApplication::exec();
}
