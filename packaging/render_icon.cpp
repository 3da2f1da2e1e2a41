// Renders a drawing as square PNG icons. Usage: render_icon DRAWING.svg SIZE FILE.png [SIZE FILE.png...]

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

int main(int argc, char** argv) {
    if (argc < 4 || argc % 2 != 0) {
        std::fputs("Usage: render_icon DRAWING.svg SIZE FILE.png [SIZE FILE.png...]\n", stderr);
        return 2;
    }
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    for (int index = 2; index < argc; index += 2) {
        const int size = QByteArray(argv[index]).toInt();
        const QString file = QString::fromLocal8Bit(argv[index + 1]);
        if (!drawing.isValid() || size <= 0) {
            std::fprintf(stderr, "render_icon: cannot draw %s\n", argv[1]);
            return 1;
        }
        QImage icon(size, size, QImage::Format_ARGB32_Premultiplied);
        icon.fill(Qt::transparent);
        QPainter painter(&icon);
        painter.setRenderHint(QPainter::Antialiasing);
        drawing.render(&painter);
        painter.end();
        if (!icon.save(file, "PNG")) {
            std::fprintf(stderr, "render_icon: cannot write %s\n", argv[index + 1]);
            return 1;
        }
    }
    return 0;
}
