// render_icon <drawing.svg> <pixels> <picture.png>: a square picture of a drawing.

#include <QCoreApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        std::fputs("usage: render_icon drawing.svg pixels picture.png\n", stderr);
        return 2;
    }
    QSvgRenderer drawing(arguments[1]);
    const int size = arguments[2].toInt();
    if (!drawing.isValid() || size <= 0) {
        std::fprintf(stderr, "render_icon: cannot draw %s\n", argv[1]);
        return EXIT_FAILURE;
    }
    QImage picture(size, size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    drawing.render(&painter);
    painter.end();
    if (!picture.save(arguments[3], "PNG")) {
        std::fprintf(stderr, "render_icon: cannot write %s\n", argv[3]);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
