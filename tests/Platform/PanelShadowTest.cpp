// SPDX-License-Identifier: MIT
#include "PanelShadow.h"

#include "GlassSurface.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QTest>
#include <QWindow>
#include <algorithm>

/// The picture alone; how it comes onto a screen is tried by tests/desktop/shadow.py.
class PanelShadowTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isEmptyWhereThePanelIs();
    void fadesToNothingWithinItsReach();
    void hasNoStepAnywhere();
    void isTheSameOnTheLeftAndOnTheRight();
    void fallsDownwards();
    void hasNoWindowWithoutADesktop();

private:
    static constexpr QSize panelSize{200, 160};
    /// A picture of the shadow with a border of one pixel around its reach, and the panel in it.
    const QRect m_panel{{PanelShadow::margins().left() + 1, PanelShadow::margins().top() + 1},
                        panelSize};
    const QImage m_picture = [this] {
        QImage picture(panelSize.grownBy(PanelShadow::margins()) + QSize(2, 2),
                       QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        PanelShadow::paint(painter, m_panel);
        return picture;
    }();

    [[nodiscard]] int density(QPoint at) const { return qAlpha(m_picture.pixel(at)); }
};

void PanelShadowTest::isEmptyWhereThePanelIs()
{
    const QPainterPath panel = GlassSurface::outline(m_panel.adjusted(2, 2, -2, -2));
    for (int y = 0; y < m_picture.height(); ++y) {
        for (int x = 0; x < m_picture.width(); ++x) {
            if (panel.contains(QPointF(x + 0.5, y + 0.5)))
                QCOMPARE(density({x, y}), 0);
        }
    }
}

void PanelShadowTest::fadesToNothingWithinItsReach()
{
    const QRect reach = m_picture.rect().adjusted(1, 1, -1, -1);
    for (int x = 0; x < m_picture.width(); ++x) {
        for (const int y : {0, m_picture.height() - 1})
            QCOMPARE(density({x, y}), 0);
        for (const int y : {reach.top(), reach.bottom()})
            QVERIFY(density({x, y}) <= 1);
    }
    for (int y = 0; y < m_picture.height(); ++y) {
        for (const int x : {0, m_picture.width() - 1})
            QCOMPARE(density({x, y}), 0);
        for (const int x : {reach.left(), reach.right()})
            QVERIFY(density({x, y}) <= 1);
    }
}

void PanelShadowTest::hasNoStepAnywhere()
{
    // Between neighbours outside the panel, where the pieces meet as well.
    const QPainterPath panel = GlassSurface::outline(m_panel.adjusted(-2, -2, 2, 2));
    int most = 0;
    for (int y = 1; y < m_picture.height(); ++y) {
        for (int x = 1; x < m_picture.width(); ++x) {
            if (panel.contains(QPointF(x, y)))
                continue;
            most = std::max({most, std::abs(density({x, y}) - density({x - 1, y})),
                             std::abs(density({x, y}) - density({x, y - 1}))});
        }
    }
    QVERIFY(most > 0);
    QVERIFY2(most <= 4, qPrintable(QString::number(most)));
}

void PanelShadowTest::isTheSameOnTheLeftAndOnTheRight()
{
    for (int y = 0; y < m_picture.height(); ++y) {
        for (int x = 0; x < m_picture.width() / 2; ++x) {
            const int difference = density({x, y}) - density({m_picture.width() - 1 - x, y});
            QVERIFY(std::abs(difference) <= 1);
        }
    }
}

void PanelShadowTest::fallsDownwards()
{
    const int middle = m_panel.center().x();
    const int above = density({middle, m_panel.top() - 2});
    const int beside = density({m_panel.left() - 2, m_panel.center().y()});
    const int below = density({middle, m_panel.bottom() + 2});

    QVERIFY(0 < above);
    QVERIFY(above < beside);
    QVERIFY(beside < below);
}

void PanelShadowTest::hasNoWindowWithoutADesktop()
{
    QWidget panel;
    PanelShadow shadow(panel);
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
    QCoreApplication::processEvents();

    const auto shown =
        std::ranges::count_if(QGuiApplication::topLevelWindows(),
                              [](const QWindow *window) { return window->isVisible(); });

    QCOMPARE(shown, 1);
}

QTEST_MAIN(PanelShadowTest)
#include "PanelShadowTest.moc"
