// SPDX-License-Identifier: MIT
#include "Symbol.h"
#include "Pixels.h"
#include "SymbolTable.h"
#include "SymbolView.h"

#include <QDir>
#include <QSvgRenderer>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

class SymbolTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void drawsEverySymbolOfTheViews();
    void drawsWhatItsFileShows_data();
    void drawsWhatItsFileShows();
    void isCentredAndCrisp_data();
    void isCentredAndCrisp();
    void drawsInTheColorGiven();
    void drawsThickerBesideHeavierText();
    void drawsNothingForAnUnknownName();
    void scalesInAnAnimation();
    void takesItsColorFromThePalette();
};

namespace {

QImage symbol(const QString &name, int pixelSize, double ratio = 1,
              QFont::Weight weight = QFont::Normal, QSize room = {60, 60})
{
    QImage image(room * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    Symbol::paint(painter, QRectF({}, room), name, pixelSize, Qt::black, weight);
    return image;
}

double ink(const QImage &image)
{
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            sum += image.pixelColor(x, y).alphaF();
    }
    return sum;
}

} // namespace

void SymbolTest::drawsEverySymbolOfTheViews()
{
    for (const QString &name :
         {u"plus"_s, u"square.and.pencil"_s, u"slider.horizontal.3"_s, u"minus"_s,
          u"exclamationmark.triangle"_s, u"exclamationmark.circle"_s, u"checkmark.circle"_s,
          u"checkmark"_s, u"internaldrive"_s, u"arrow.up.right"_s, u"chevron.left"_s,
          u"doc.on.doc"_s, u"trash"_s, u"magnifyingglass"_s, u"xmark.circle.fill"_s, u"sparkle"_s})
        QVERIFY2(ink(symbol(name, 13)) > 0, qPrintable(name));
}

void SymbolTest::drawsWhatItsFileShows_data()
{
    QTest::addColumn<QString>("file");

    const QFileInfoList files =
        QDir(QStringLiteral(SYMBOLS_FOLDER)).entryInfoList({u"*.svg"_s}, QDir::Files);
    QCOMPARE(files.size(), static_cast<qsizetype>(symbolDrawings().size()));
    for (const QFileInfo &file : files)
        QTest::newRow(qPrintable(file.completeBaseName())) << file.filePath();
}

void SymbolTest::drawsWhatItsFileShows()
{
    QFETCH(QString, file);
    const QString name = QFileInfo(file).completeBaseName();
    constexpr int size = 50;
    constexpr int scale = 2;
    const int side = scale * Symbol::extent(size);
    QImage expected(side, side, QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::transparent);
    QImage drawn = expected;
    QPainter expectedPainter(&expected);
    QSvgRenderer(file).render(&expectedPainter);
    expectedPainter.end();

    // Scaled, where nothing is moved onto pixels, and in the weight of the files.
    QPainter painter(&drawn);
    painter.scale(scale, scale);
    Symbol::paint(painter, QRect(0, 0, side / scale, side / scale), name, size, Qt::black,
                  QFont::Medium);
    painter.end();

    // Qt Svg flattens curves before it scales them, so that the rims of bends may lie elsewhere.
    constexpr float half = 0.5F;
    int different = 0;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const float change =
                drawn.pixelColor(x, y).alphaF() - expected.pixelColor(x, y).alphaF();
            different += std::abs(change) > half;
        }
    }
    QVERIFY2(different < ink(expected) / 50, qPrintable(QString::number(different)));
    QVERIFY(std::abs(ink(drawn) / ink(expected) - 1) < 0.02);
}

void SymbolTest::isCentredAndCrisp_data()
{
    QTest::addColumn<int>("pixelSize");
    QTest::addColumn<double>("ratio");
    QTest::addColumn<QFont::Weight>("weight");

    for (const int pixelSize : {10, 11, 12, 13, 15, 17, 23, 30}) {
        for (const double ratio : {1.0, 1.5, 2.0}) {
            for (const QFont::Weight weight : {QFont::Light, QFont::Normal, QFont::Medium}) {
                QTest::addRow("%d px, %.1f, weight %d", pixelSize, ratio, weight)
                    << pixelSize << ratio << weight;
            }
        }
    }
}

void SymbolTest::isCentredAndCrisp()
{
    QFETCH(int, pixelSize);
    QFETCH(double, ratio);
    QFETCH(QFont::Weight, weight);

    const QImage image = symbol(u"plus"_s, pixelSize, ratio, weight);

    const QRect bounds = Pixels::inkBounds(image);
    QVERIFY(!bounds.isEmpty());
    QCOMPARE(bounds.width(), bounds.height());
    // The room has an even number of pixels; a plus with an odd number may stand half of one away.
    QVERIFY(std::abs(bounds.left() + bounds.right() - (image.width() - 1)) <= 1);
    QVERIFY(std::abs(bounds.top() + bounds.bottom() - (image.height() - 1)) <= 1);

    // Across the upright: the same on both sides, and at least one pixel of full or, in strokes
    // thinner than a pixel, of as much ink as the stroke has.
    const int row = bounds.top() + bounds.height() / 4;
    float darkest = 0;
    float all = 0;
    for (int x = bounds.left(); x <= bounds.right(); ++x) {
        const float alpha = image.pixelColor(x, row).alphaF();
        const float opposite = image.pixelColor(bounds.left() + bounds.right() - x, row).alphaF();
        QVERIFY(std::abs(alpha - opposite) < 0.02F);
        darkest = std::max(darkest, alpha);
        all += alpha;
    }
    QVERIFY2(darkest >= std::min(1.0F, all) * 0.75F, qPrintable(QString::number(darkest)));
}

void SymbolTest::drawsInTheColorGiven()
{
    QImage image(40, 40, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    for (const QColor &color : {QColor(Qt::red), QColor(Qt::blue)}) {
        Symbol::paint(painter, image.rect(), u"xmark.circle.fill"_s, 20, color);
        const QPoint besideTheCross(image.width() / 2, image.height() / 2 - 9);
        QCOMPARE(image.pixelColor(besideTheCross), color);
    }
}

void SymbolTest::drawsThickerBesideHeavierText()
{
    double last = 0;
    for (const QFont::Weight weight :
         {QFont::Light, QFont::Normal, QFont::Medium, QFont::DemiBold}) {
        const double now = ink(symbol(u"checkmark.circle"_s, 13, 2, weight));
        QVERIFY(now > last);
        last = now;
    }
}

void SymbolTest::drawsNothingForAnUnknownName()
{
    QCOMPARE(ink(symbol(u"no.such.symbol"_s, 13)), 0.0);
}

void SymbolTest::scalesInAnAnimation()
{
    QImage image(80, 80, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.translate(40, 40);
    painter.scale(2, 2);
    Symbol::paint(painter, QRectF(-20, -20, 40, 40), u"plus"_s, 23, Qt::black, QFont::Light);

    const QRect bounds = Pixels::inkBounds(image);
    const QRect unscaled = Pixels::inkBounds(symbol(u"plus"_s, 23, 1, QFont::Light));
    QVERIFY(std::abs(bounds.width() - 2 * unscaled.width()) <= 3);
    QVERIFY(std::abs(bounds.left() + bounds.right() - 79) <= 1);
}

void SymbolTest::takesItsColorFromThePalette()
{
    SymbolView view(u"xmark.circle.fill"_s, TextStyles::clearSearch);
    QPalette palette;
    palette.setColor(NoteTheme::role(Tone::secondary), Qt::green);
    view.setPalette(palette);
    view.resize(40, 40);
    const QPoint onTheDisc(20, 14);

    QCOMPARE(Pixels::draw(view).pixelColor(onTheDisc), QColor(Qt::green));
}

QTEST_MAIN(SymbolTest)
#include "SymbolTest.moc"
