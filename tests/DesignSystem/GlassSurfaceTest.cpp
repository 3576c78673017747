// SPDX-License-Identifier: MIT
#include "GlassSurface.h"
#include "FixedEnvironment.h"
#include "Pixels.h"

#include <QPainterPath>
#include <QTest>
#include <numbers>

Q_DECLARE_METATYPE(ColorScheme)

class GlassSurfaceTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void liesUnderItsTint_data();
    void liesUnderItsTint();
    void isOpaqueWithReducedTransparency_data();
    void isOpaqueWithReducedTransparency();
    void hasABorderInsideItsShape_data();
    void hasABorderInsideItsShape();
    void hasCornersOfRadiusTwentySix_data();
    void hasCornersOfRadiusTwentySix();
    void keepsItsCornersFree_data();
    void keepsItsCornersFree();
    void followsTheSchemeOfItsEnvironment();
    void repaintsItsInsideAlike();
};

namespace {

QImage surface(ColorScheme scheme, bool isOpaque, QSize size = {424, 560}, double ratio = 1)
{
    FixedEnvironment environment(scheme, isOpaque);
    GlassSurface surface(&environment);
    surface.resize(size);
    return Pixels::draw(surface, ratio);
}

void addSchemes()
{
    QTest::addColumn<ColorScheme>("scheme");

    QTest::newRow("light") << ColorScheme::light;
    QTest::newRow("dark") << ColorScheme::dark;
}

void addSchemesAndTransparency()
{
    QTest::addColumn<ColorScheme>("scheme");
    QTest::addColumn<bool>("isOpaque");

    QTest::newRow("light") << ColorScheme::light << false;
    QTest::newRow("light, opaque") << ColorScheme::light << true;
    QTest::newRow("dark") << ColorScheme::dark << false;
    QTest::newRow("dark, opaque") << ColorScheme::dark << true;
}

} // namespace

void GlassSurfaceTest::liesUnderItsTint_data()
{
    addSchemes();
}

/// The layers apart, as they are meant: the tint over the backdrop that stands for a blur.
void GlassSurfaceTest::liesUnderItsTint()
{
    QFETCH(ColorScheme, scheme);
    const bool isDark = scheme == ColorScheme::dark;
    const QColor backdrop = isDark ? QColor::fromRgbF(0.13F, 0.125F, 0.12F, 0.9F)
                                   : QColor::fromRgbF(0.885F, 0.875F, 0.86F, 0.88F);
    const QColor tint =
        isDark ? QColor::fromRgbF(0, 0, 0, 0.2F) : QColor::fromRgbF(1, 0.97F, 0.91F, 0.4F);
    const float rest = backdrop.alphaF() * (1 - tint.alphaF());
    const float opacity = tint.alphaF() + rest;
    const auto mixed = [&](float above, float below) {
        return (above * tint.alphaF() + below * rest) / opacity;
    };

    const QColor whole = GlassSurface::fill(scheme, false);

    constexpr float tolerance = 0.001F;
    QVERIFY(std::abs(whole.alphaF() - opacity) < tolerance);
    QVERIFY(std::abs(whole.redF() - mixed(tint.redF(), backdrop.redF())) < tolerance);
    QVERIFY(std::abs(whole.greenF() - mixed(tint.greenF(), backdrop.greenF())) < tolerance);
    QVERIFY(std::abs(whole.blueF() - mixed(tint.blueF(), backdrop.blueF())) < tolerance);
    QVERIFY(Pixels::isAlike(surface(scheme, false).pixelColor(212, 280), whole));
}

void GlassSurfaceTest::isOpaqueWithReducedTransparency_data()
{
    addSchemes();
}

void GlassSurfaceTest::isOpaqueWithReducedTransparency()
{
    QFETCH(ColorScheme, scheme);

    const QColor middle = surface(scheme, true).pixelColor(212, 280);

    QCOMPARE(middle, NoteTheme::palette(scheme).color(QPalette::Window));
    QCOMPARE(middle.alpha(), 255);
}

void GlassSurfaceTest::hasABorderInsideItsShape_data()
{
    addSchemesAndTransparency();
}

void GlassSurfaceTest::hasABorderInsideItsShape()
{
    QFETCH(ColorScheme, scheme);
    QFETCH(bool, isOpaque);
    const double opacity = scheme == ColorScheme::dark ? 0.13 : 0.65;
    QVERIFY(std::abs(GlassSurface::border(scheme).alphaF() - opacity) < 0.001);

    const QImage image = surface(scheme, isOpaque);

    const QColor inside = image.pixelColor(1, 280);
    QVERIFY(Pixels::isAlike(inside, GlassSurface::fill(scheme, isOpaque)));
    // White at that opacity over the surface, in exactly the outermost pixel of each edge.
    const auto mixed = [&](double channel, double alpha) {
        return qRound((255 * opacity + channel * alpha / 255 * (1 - opacity)) /
                      (opacity + alpha / 255 * (1 - opacity)));
    };
    for (const QPoint edge : {QPoint(0, 280), QPoint(423, 280), QPoint(212, 0), QPoint(212, 559)}) {
        const QColor border = image.pixelColor(edge);
        QVERIFY(std::abs(border.red() - mixed(inside.red(), inside.alpha())) <= 2);
        QVERIFY(std::abs(border.green() - mixed(inside.green(), inside.alpha())) <= 2);
        QVERIFY(std::abs(border.blue() - mixed(inside.blue(), inside.alpha())) <= 2);
    }
}

void GlassSurfaceTest::hasCornersOfRadiusTwentySix_data()
{
    addSchemesAndTransparency();
}

void GlassSurfaceTest::hasCornersOfRadiusTwentySix()
{
    QFETCH(ColorScheme, scheme);
    QFETCH(bool, isOpaque);
    QCOMPARE(GlassSurface::cornerRadius, 26.0);

    for (const QSize size : {QSize(200, 120), QSize(54, 54)}) {
        const QImage image = surface(scheme, isOpaque, size, 20);

        const double cut = 26 * (1 - 1 / std::numbers::sqrt2);
        for (const bool isRight : {false, true}) {
            for (const bool isBottom : {false, true}) {
                const double begins = Pixels::cornerCut(image, isRight, isBottom);
                QVERIFY2(std::abs(begins - cut) < 0.1, qPrintable(QString::number(begins)));
            }
        }
    }
}

void GlassSurfaceTest::keepsItsCornersFree_data()
{
    addSchemesAndTransparency();
}

void GlassSurfaceTest::keepsItsCornersFree()
{
    QFETCH(ColorScheme, scheme);
    QFETCH(bool, isOpaque);

    for (const QSize size : {QSize(424, 560), QSize(54, 54)}) {
        for (const double ratio : {1.0, 2.0}) {
            const QImage image = surface(scheme, isOpaque, size, ratio);
            const QPainterPath outline = GlassSurface::outline(QRectF({}, size), 26);
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const QPointF middle = QPointF(x + 0.5, y + 0.5) / ratio;
                    const QRectF pixel(QPointF(x, y) / ratio, QSizeF(1, 1) / ratio);
                    if (!outline.intersects(pixel.adjusted(-0.01, -0.01, 0.01, 0.01))) {
                        QCOMPARE(image.pixelColor(x, y).alpha(), 0);
                    } else if (outline.contains(middle) && outline.contains(pixel)) {
                        QVERIFY(image.pixelColor(x, y).alpha() >= 200);
                    }
                    if (x > 60 && x < image.width() - 60)
                        x = image.width() - 60;
                }
                if (y > 60 && y < image.height() - 60)
                    y = image.height() - 60;
            }
        }
    }
}

void GlassSurfaceTest::followsTheSchemeOfItsEnvironment()
{
    FixedEnvironment environment(ColorScheme::light);
    auto *surface = new GlassSurface(&environment);
    surface->resize(100, 100);

    environment.setPalette(NoteTheme::palette(ColorScheme::dark));

    QVERIFY(Pixels::isAlike(Pixels::draw(*surface).pixelColor(50, 50),
                            GlassSurface::fill(ColorScheme::dark, false)));
}

/// A part of the inside is filled without the shape; it must not show where it was.
void GlassSurfaceTest::repaintsItsInsideAlike()
{
    FixedEnvironment environment(ColorScheme::light);
    GlassSurface surface(&environment);
    surface.resize(424, 560);
    const QImage whole = Pixels::draw(surface);

    for (const QRect part : {QRect(26, 200, 372, 200), QRect(60, 1, 100, 30), QRect(1, 60, 30, 9),
                             QRect(0, 0, 50, 50), QRect(400, 500, 24, 60)}) {
        QImage image(whole.size(), whole.format());
        image.fill(Qt::transparent);
        surface.render(&image, part.topLeft(), part, QWidget::DrawChildren);
        QCOMPARE(image.copy(part), whole.copy(part));
    }
}

QTEST_MAIN(GlassSurfaceTest)
#include "GlassSurfaceTest.moc"
