// SPDX-License-Identifier: MIT
#include "NoteTheme.h"
#include "GlassSurface.h"
#include "Metrics.h"
#include "Pixels.h"
#include "TextStyle.h"

#include <QFontDatabase>
#include <QLocale>
#include <QTest>

Q_DECLARE_METATYPE(ColorScheme)

class NoteThemeTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hasOneAccentColor();
    void knowsTheSchemeOfItsPalettes();
    void keepsTextReadableOverEveryWallpaper_data();
    void keepsTextReadableOverEveryWallpaper();
    void keepsSelectedTextReadable();
    void makesEveryToneStandOutInHighContrast();
    void setsFontsInPixels();
    void prefersChineseFormsInAChineseView();
};

namespace {

constexpr double textContrast = 4.5;
constexpr double largeTextContrast = 3;
constexpr double highContrast = 7;

/// The corners of the colour cube and its middle. The contrast only falls towards the corners,
/// because every channel of the wallpaper moves the surface the same way.
QList<QColor> wallpapers()
{
    QList<QColor> colors{QColor(128, 128, 128)};
    for (const int red : {0, 255}) {
        for (const int green : {0, 255}) {
            for (const int blue : {0, 255})
                colors.append(QColor(red, green, blue));
        }
    }
    return colors;
}

} // namespace

void NoteThemeTest::hasOneAccentColor()
{
    const QColor accent = NoteTheme::accent();

    QCOMPARE(accent.spec(), QColor::Rgb);
    QVERIFY(std::abs(accent.redF() - 0.77F) < 0.0001F);
    QVERIFY(std::abs(accent.greenF() - 0.34F) < 0.0001F);
    QVERIFY(std::abs(accent.blueF() - 0.19F) < 0.0001F);
    QCOMPARE(accent.alphaF(), 1.0F);
    QCOMPARE(&NoteTheme::accent(), &NoteTheme::accent());
}

void NoteThemeTest::knowsTheSchemeOfItsPalettes()
{
    for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark}) {
        for (const Contrast contrast : {Contrast::normal, Contrast::high}) {
            const QPalette palette = NoteTheme::palette(scheme, contrast);
            QCOMPARE(NoteTheme::colorScheme(palette), scheme);
            QVERIFY(NoteTheme::contrast(palette) == contrast);
        }
    }
}

void NoteThemeTest::keepsTextReadableOverEveryWallpaper_data()
{
    QTest::addColumn<ColorScheme>("scheme");
    QTest::addColumn<bool>("isOpaque");

    QTest::newRow("light") << ColorScheme::light << false;
    QTest::newRow("light, opaque") << ColorScheme::light << true;
    QTest::newRow("dark") << ColorScheme::dark << false;
    QTest::newRow("dark, opaque") << ColorScheme::dark << true;
}

void NoteThemeTest::keepsTextReadableOverEveryWallpaper()
{
    QFETCH(ColorScheme, scheme);
    QFETCH(bool, isOpaque);
    const QPalette palette = NoteTheme::palette(scheme);
    const QColor primary = NoteTheme::color(palette, Tone::primary);
    const QColor failure = NoteTheme::color(palette, Tone::failure);

    for (const QColor &wallpaper : wallpapers()) {
        const QColor surface = Pixels::over(GlassSurface::fill(scheme, isOpaque), wallpaper);
        const QColor row =
            Pixels::over(NoteTheme::color(palette, Tone::primary, Metrics::rowHoverFill), surface);
        const QColor banner =
            Pixels::over(NoteTheme::color(palette, Tone::failure, Metrics::bannerFill), surface);

        for (const QColor &ground : {surface, row}) {
            QVERIFY(Pixels::contrast(primary, ground) >= textContrast);
            QVERIFY(Pixels::contrast(NoteTheme::color(palette, Tone::secondary), ground) >=
                    textContrast);
            QVERIFY(Pixels::contrast(NoteTheme::color(palette, Tone::tertiary), ground) >=
                    largeTextContrast);
        }
        QVERIFY(Pixels::contrast(failure, banner) >= textContrast);
        QVERIFY(Pixels::contrast(NoteTheme::accent(), surface) >= largeTextContrast);
    }
}

void NoteThemeTest::keepsSelectedTextReadable()
{
    for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark}) {
        const QPalette palette = NoteTheme::palette(scheme);
        for (const auto group : {QPalette::Active, QPalette::Inactive}) {
            QVERIFY(Pixels::contrast(palette.color(group, QPalette::HighlightedText),
                                     palette.color(group, QPalette::Highlight)) >=
                    largeTextContrast);
        }
        // A disabled editor still shows text that someone wants to read.
        QVERIFY(Pixels::contrast(palette.color(QPalette::Disabled, QPalette::Text),
                                 GlassSurface::fill(scheme, true)) >= textContrast);
    }
}

void NoteThemeTest::makesEveryToneStandOutInHighContrast()
{
    for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark}) {
        const QPalette palette = NoteTheme::palette(scheme, Contrast::high);
        const QColor surface = GlassSurface::fill(palette, true);
        for (const Tone tone :
             {Tone::primary, Tone::secondary, Tone::tertiary, Tone::accent, Tone::failure})
            QVERIFY(Pixels::contrast(NoteTheme::color(palette, tone), surface) >= highContrast);

        QVERIFY(Pixels::contrast(NoteTheme::color(palette, Tone::onAccent),
                                 NoteTheme::color(palette, Tone::accent)) >= highContrast);
        const QColor row =
            Pixels::over(NoteTheme::color(palette, Tone::primary, Metrics::rowHoverFill), surface);
        QVERIFY(Pixels::contrast(NoteTheme::color(palette, Tone::secondary), row) >= highContrast);
        const QColor banner =
            Pixels::over(NoteTheme::color(palette, Tone::failure, Metrics::bannerFill), surface);
        QVERIFY(Pixels::contrast(NoteTheme::color(palette, Tone::failure), banner) >= highContrast);
    }
}

void NoteThemeTest::setsFontsInPixels()
{
    QCOMPARE(TextStyles::screenTitle.font().pixelSize(), 27);
    QCOMPARE(TextStyles::screenTitle.font().weight(), QFont::DemiBold);
    QCOMPARE(TextStyles::productTitle.font().pixelSize(), 17);
    QCOMPARE(TextStyles::productTitle.font().styleHint(), QFont::Serif);
}

void NoteThemeTest::prefersChineseFormsInAChineseView()
{
    const QStringList english = TextStyles::editor.font(QLocale(QLocale::English)).families();
    const QStringList chinese = TextStyles::editor.font(QLocale(QLocale::Chinese)).families();

    QCOMPARE(chinese.first(), english.first());
    for (const QString &family : chinese.sliced(english.size())) {
        QVERIFY(QFontDatabase::hasFamily(family));
        QVERIFY(QFontDatabase::writingSystems(family).contains(QFontDatabase::SimplifiedChinese));
    }
}

QTEST_MAIN(NoteThemeTest)
#include "NoteThemeTest.moc"
