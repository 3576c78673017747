// SPDX-License-Identifier: MIT
// Renders a drawing in its own size, one unit a pixel, as a PNG file. Runs in the build, is no part
// of the program:
//
//   RenderIcon 16.svg 16.png
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>
#include <cstdlib>

int main(int argc, char **argv)
{
    if (argc != 3) {
        std::fputs("usage: RenderIcon IN.svg OUT.png\n", stderr);
        return EXIT_FAILURE;
    }
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    if (!drawing.isValid()) {
        std::fprintf(stderr, "%s cannot be drawn.\n", argv[1]);
        return EXIT_FAILURE;
    }
    QImage picture(drawing.defaultSize(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    drawing.render(&painter);
    painter.end();
    if (!picture.save(QString::fromLocal8Bit(argv[2]), "PNG")) {
        std::fprintf(stderr, "%s cannot be written.\n", argv[2]);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
