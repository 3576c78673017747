// SPDX-License-Identifier: MIT
#include "Dot.h"
#include "Pixels.h"

#include <QTest>

class DotTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isACircleOfItsDiameterInItsTone();
};

void DotTest::isACircleOfItsDiameterInItsTone()
{
    Dot dot(3, Tone::secondary);
    dot.setPalette(NoteTheme::palette(ColorScheme::light));
    QCOMPARE(dot.size(), QSize(3, 3));

    constexpr int ratio = 20;
    const QImage image = Pixels::draw(dot, ratio);

    const QColor color = NoteTheme::color(NoteTheme::palette(ColorScheme::light), Tone::secondary);
    QCOMPARE(Pixels::inkBounds(image), QRect(0, 0, 3 * ratio, 3 * ratio));
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const double distance = std::hypot(x + 0.5 - 30, y + 0.5 - 30);
            if (distance < 29)
                QVERIFY(Pixels::isAlike(image.pixelColor(x, y), color));
            else if (distance > 31)
                QCOMPARE(image.pixelColor(x, y).alpha(), 0);
        }
    }
}

QTEST_MAIN(DotTest)
#include "DotTest.moc"
