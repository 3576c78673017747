// SPDX-License-Identifier: MIT
#include "TintedFrame.h"
#include "Pixels.h"

#include <QTest>
#include <numbers>

class TintedFrameTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isFilledWithItsToneAtItsOpacity();
    void hasCornersOfItsRadius_data();
    void hasCornersOfItsRadius();
};

void TintedFrameTest::isFilledWithItsToneAtItsOpacity()
{
    for (const double opacity : {0.07, 0.5, 1.0}) {
        for (const Tone tone : {Tone::failure, Tone::primary}) {
            TintedFrame frame(tone, opacity, 12);
            frame.setPalette(NoteTheme::palette(ColorScheme::light));
            frame.resize(100, 60);

            const QImage image = Pixels::draw(frame, 1, Qt::white);

            QColor fill = NoteTheme::color(frame.palette(), tone);
            fill.setAlphaF(static_cast<float>(opacity));
            for (const QPoint point :
                 {QPoint(50, 30), QPoint(50, 0), QPoint(0, 30), QPoint(99, 30)})
                QVERIFY(Pixels::isAlike(image.pixelColor(point), Pixels::over(fill, Qt::white), 1));
        }
    }
}

void TintedFrameTest::hasCornersOfItsRadius_data()
{
    QTest::addColumn<double>("radius");

    QTest::newRow("of the banner") << 12.0;
    QTest::newRow("of a row") << 15.0;
}

void TintedFrameTest::hasCornersOfItsRadius()
{
    QFETCH(const double, radius);
    TintedFrame frame(Tone::primary, 1, radius);
    frame.setPalette(NoteTheme::palette(ColorScheme::light));
    frame.resize(100, 60);

    const QImage image = Pixels::draw(frame, 40);

    // On the diagonal a corner of that radius begins this far from both edges.
    const double cut = radius * (1 - 1 / std::numbers::sqrt2);
    for (const bool isRight : {false, true}) {
        for (const bool isBottom : {false, true}) {
            const double begins = Pixels::cornerCut(image, isRight, isBottom);
            QVERIFY2(std::abs(begins - cut) < 0.05, qPrintable(QString::number(begins)));
        }
    }
}

QTEST_MAIN(TintedFrameTest)
#include "TintedFrameTest.moc"
