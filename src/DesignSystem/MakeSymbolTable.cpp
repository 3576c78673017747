// SPDX-License-Identifier: MIT
// Writes the paths of the symbols' SVG files as a C++ table. Runs in the build, is no part of the
// program:
//
//   MakeSymbolTable SymbolTable.cpp plus.svg minus.svg …
#include <QByteArrayList>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>
#include <QSvgRenderer>
#include <cstdio>
#include <cstdlib>

namespace {

/// Keeps what is drawn instead of drawing it, in the units of the file: what is stroked and what is
/// filled. Colours and pens are the program's choice.
class PathKeeper final : public QPaintEngine {
public:
    PathKeeper()
        : QPaintEngine(AllFeatures)
    {
    }

    bool begin(QPaintDevice *) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState &) override {}
    void drawPixmap(const QRectF &, const QPixmap &, const QRectF &) override {}
    [[nodiscard]] Type type() const override { return User; }

    void drawPath(const QPainterPath &path) override
    {
        if (state->pen().style() != Qt::NoPen)
            strokes.addPath(path);
        if (state->brush().style() != Qt::NoBrush)
            fills.addPath(path);
    }

    QPainterPath strokes;
    QPainterPath fills;
};

/// A page with a PathKeeper.
class Page final : public QPaintDevice {
public:
    explicit Page(PathKeeper &keeper)
        : m_keeper(keeper)
    {
    }

    [[nodiscard]] QPaintEngine *paintEngine() const override { return &m_keeper; }

protected:
    [[nodiscard]] int metric(PaintDeviceMetric metric) const override
    {
        constexpr int gridUnits = 24;
        constexpr int anyResolution = 72;
        switch (metric) {
        case PdmWidth:
        case PdmHeight:
            return gridUnits;
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(devicePixelRatioFScale());
        default:
            return anyResolution;
        }
    }

private:
    PathKeeper &m_keeper;
};

constexpr auto head = R"(// Written by the build from the files in resources/symbols.
#include "SymbolTable.h"

namespace {

constexpr auto move = QPainterPath::MoveToElement;
constexpr auto line = QPainterPath::LineToElement;
constexpr auto curve = QPainterPath::CurveToElement;
constexpr auto data = QPainterPath::CurveToDataElement;

)";

constexpr auto tail = R"(
} // namespace

std::span<const SymbolDrawing> symbolDrawings()
{
    return table;
}
)";

QByteArray source(const QPainterPath::Element &element)
{
    constexpr const char *types[]{"move", "line", "curve", "data"};
    const auto number = [](double value) {
        return QByteArray::number(value, 'g', QLocale::FloatingPointShortest);
    };
    return '{' + number(element.x) + ", " + number(element.y) + ", " + types[element.type] + "},\n";
}

/// Adds the elements of a path to those of the others, and says as C++ where they are.
QByteArray added(const QPainterPath &path, QByteArrayList &elements)
{
    const qsizetype first = elements.size();
    for (int i = 0; i < path.elementCount(); ++i)
        elements.append(source(path.elementAt(i)));
    return "{elements + " + QByteArray::number(first) + ", " +
           QByteArray::number(path.elementCount()) + '}';
}

} // namespace

int main(int argc, char **argv)
{
    QByteArrayList elements;
    QByteArrayList rows;
    for (int i = 2; i < argc; ++i) {
        const QString file = QFile::decodeName(argv[i]);
        PathKeeper keeper;
        Page page(keeper);
        QPainter painter(&page);
        QSvgRenderer(file).render(&painter);
        painter.end();
        if (keeper.strokes.isEmpty() && keeper.fills.isEmpty()) {
            std::fprintf(stderr, "%s: nothing to be seen\n", argv[i]);
            return EXIT_FAILURE;
        }
        const QByteArray name = QFileInfo(file).completeBaseName().toUtf8();
        const QByteArray strokes = added(keeper.strokes, elements);
        const QByteArray fills = added(keeper.fills, elements);
        rows.append("{\"" + name + "\", " + strokes + ", " + fills + "},\n");
    }

    const QByteArray table =
        head +
        ("constexpr QPainterPath::Element elements[] = {\n" + elements.join() + "};\n\n" +
         "constexpr SymbolDrawing table[] = {\n" + rows.join() + "};\n") +
        tail;
    QFile output(QFile::decodeName(argv[1]));
    const bool isWritten = output.open(QIODevice::WriteOnly) && output.write(table) == table.size();
    return isWritten ? EXIT_SUCCESS : EXIT_FAILURE;
}
