// SPDX-License-Identifier: MIT
#include "SlimScrollBar.h"
#include "Metrics.h"
#include "NoteTheme.h"
#include "Pixels.h"

#include <QTest>

class SlimScrollBarTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void drawsNothingWhileEverythingFits();
    void showsWhichPartIsVisible();
    void followsTheMouse();
};

namespace {

std::unique_ptr<SlimScrollBar> makeBar(int maximum)
{
    auto bar = std::make_unique<SlimScrollBar>();
    bar->setPalette(NoteTheme::palette(ColorScheme::light));
    bar->setRange(0, maximum);
    bar->setPageStep(100);
    bar->resize(bar->sizeHint().width(), 200);
    return bar;
}

} // namespace

void SlimScrollBarTest::drawsNothingWhileEverythingFits()
{
    const auto bar = makeBar(0);

    QCOMPARE(bar->width(), Metrics::scrollBarWidth);
    QVERIFY(Pixels::inkBounds(Pixels::draw(*bar)).isEmpty());
}

void SlimScrollBarTest::showsWhichPartIsVisible()
{
    const auto bar = makeBar(100);

    const QRect atTop = Pixels::inkBounds(Pixels::draw(*bar));
    bar->setValue(100);
    const QRect atBottom = Pixels::inkBounds(Pixels::draw(*bar));

    QCOMPARE(atTop.top(), 0);
    QCOMPARE(atTop.height(), 100);
    QCOMPARE(atBottom.bottom(), 199);
    QVERIFY(Pixels::inkBounds(Pixels::draw(*makeBar(1'000'000))).height() >=
            Metrics::scrollThumbMinimum);
}

void SlimScrollBarTest::followsTheMouse()
{
    const auto bar = makeBar(100);
    bar->show();

    QTest::mousePress(bar.get(), Qt::LeftButton, {}, {4, 50});
    QTest::mouseMove(bar.get(), {4, 100});
    QTest::mouseRelease(bar.get(), Qt::LeftButton, {}, {4, 100});
    QCOMPARE(bar->value(), 50);

    QTest::mouseClick(bar.get(), Qt::LeftButton, {}, {4, 199});
    QCOMPARE(bar->value(), 100);
}

QTEST_MAIN(SlimScrollBarTest)
#include "SlimScrollBarTest.moc"
