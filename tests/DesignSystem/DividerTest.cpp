// SPDX-License-Identifier: MIT
#include "Divider.h"
#include "NoteTheme.h"
#include "Pixels.h"

#include <QTest>

class DividerTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isALineOfOnePointAtSixPercent();
};

void DividerTest::isALineOfOnePointAtSixPercent()
{
    for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark}) {
        const QColor ground = scheme == ColorScheme::light ? Qt::white : Qt::black;
        QColor line = NoteTheme::palette(scheme).color(QPalette::WindowText);
        line.setAlphaF(0.06F);
        Divider divider;
        divider.setPalette(NoteTheme::palette(scheme));

        divider.resize(100, 20);

        QCOMPARE(divider.size(), QSize(100, 1));
        const QImage image = Pixels::draw(divider, 1, ground);
        for (int x = 0; x < 100; ++x)
            QVERIFY(Pixels::isAlike(image.pixelColor(x, 0), Pixels::over(line, ground), 1));
    }
}

QTEST_MAIN(DividerTest)
#include "DividerTest.moc"
