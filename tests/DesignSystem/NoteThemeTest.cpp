// SPDX-License-Identifier: MIT
#include "NoteTheme.h"
#include "GlassSurface.h"
#include "Metrics.h"
#include "Pixels.h"
#include "TextStyle.h"

#include <QFontDatabase>
#include <QLocale>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

Q_DECLARE_METATYPE(ColorScheme)

class NoteThemeTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hasOneAccentColor();
    void knowsTheSchemeOfItsPalettes();
    void keepsTextReadableOverEveryWallpaper_data();
    void keepsTextReadableOverEveryWallpaper();
    void keepsTextReadableInAlertsAndMenus();
    void keepsSelectedTextReadable();
    void keepsMarkedTextReadable();
    void makesEveryToneStandOutInHighContrast();
    void setsFontsInPixels();
    void drawsChineseAsTheUserReadsIt_data();
    void drawsChineseAsTheUserReadsIt();
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

    for (const QColor &wallpaper : wallpapers()) {
        const QColor surface = Pixels::over(GlassSurface::fill(scheme, isOpaque), wallpaper);
        const QColor row =
            Pixels::over(NoteTheme::color(palette, Tone::primary, Metrics::rowHoverFill), surface);
        const QColor banner =
            Pixels::over(NoteTheme::color(palette, Tone::failure, Metrics::bannerFill), surface);

        const QColor search =
            Pixels::over(NoteTheme::color(palette, Tone::primary, Metrics::searchFill), surface);
        const QColor tab =
            Pixels::over(NoteTheme::color(palette, Tone::primary, Metrics::tabFill), surface);

        const auto contrast = [&](Tone tone, const QColor &ground) {
            return Pixels::contrast(NoteTheme::color(palette, tone), ground);
        };
        for (const QColor &ground : {surface, row, search, tab})
            QVERIFY(contrast(Tone::primary, ground) >= textContrast);
        for (const QColor &ground : {surface, row})
            QVERIFY(contrast(Tone::secondary, ground) >= textContrast);
        // The placeholder and the prompt of the search.
        for (const QColor &ground : {surface, search})
            QVERIFY(contrast(Tone::tertiary, ground) >= textContrast);
        for (const QColor &ground : {surface, banner})
            QVERIFY(contrast(Tone::failure, ground) >= textContrast);
        QVERIFY(contrast(Tone::accent, surface) >= largeTextContrast);

        // The primary button's label is white over the accent, whatever that gives.
        QColor pressed = NoteTheme::accent();
        pressed.setAlphaF(static_cast<float>(Metrics::primaryButtonPressed));
        QVERIFY(contrast(Tone::onAccent, Pixels::over(pressed, surface)) >= largeTextContrast);
    }
}

void NoteThemeTest::keepsTextReadableInAlertsAndMenus()
{
    for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark}) {
        const QPalette palette = NoteTheme::palette(scheme);
        const QColor card = palette.color(QPalette::Window);
        for (const double fill : {0.0, Metrics::alertButtonFill, Metrics::alertButtonPressedFill}) {
            const QColor button =
                Pixels::over(NoteTheme::color(palette, Tone::primary, fill), card);
            for (const Tone tone : {Tone::primary, Tone::failure})
                QVERIFY(Pixels::contrast(NoteTheme::color(palette, tone), button) >= textContrast);
        }
        QVERIFY(Pixels::contrast(NoteTheme::color(palette, Tone::secondary), card) >= textContrast);
        QVERIFY(Pixels::contrast(palette.color(QPalette::ToolTipText),
                                 palette.color(QPalette::ToolTipBase)) >= textContrast);
        for (const QPalette::ColorRole ground :
             {QPalette::Base, QPalette::Window, QPalette::Button}) {
            QVERIFY(Pixels::contrast(palette.color(QPalette::WindowText), palette.color(ground)) >=
                    textContrast);
        }
    }
}

void NoteThemeTest::keepsSelectedTextReadable()
{
    for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark}) {
        const QPalette palette = NoteTheme::palette(scheme);
        for (const auto group : {QPalette::Active, QPalette::Inactive}) {
            QVERIFY(Pixels::contrast(palette.color(group, QPalette::HighlightedText),
                                     palette.color(group, QPalette::Highlight)) >= textContrast);
        }
        // A disabled editor still shows text that someone wants to read.
        QVERIFY(Pixels::contrast(palette.color(QPalette::Disabled, QPalette::Text),
                                 GlassSurface::fill(scheme, true)) >= textContrast);
    }
}

void NoteThemeTest::keepsMarkedTextReadable()
{
    for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark}) {
        for (const Contrast contrast : {Contrast::normal, Contrast::high}) {
            const QPalette palette = NoteTheme::palette(scheme, contrast);
            const QColor mark = NoteTheme::matchColor(palette);

            QCOMPARE(mark.alpha(), 255);
            const double least = contrast == Contrast::high ? highContrast : textContrast;
            for (const Tone tone : {Tone::primary, Tone::secondary})
                QVERIFY(Pixels::contrast(NoteTheme::color(palette, tone), mark) >= least);
            // The mark itself is seen, too, on the row of an opaque panel.
            constexpr double visible = 1.2;
            const QColor row =
                Pixels::over(NoteTheme::color(palette, Tone::primary, Metrics::rowHoverFill),
                             palette.color(QPalette::Window));
            QVERIFY(Pixels::contrast(mark, row) >= visible);
        }
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

void NoteThemeTest::drawsChineseAsTheUserReadsIt_data()
{
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QLocale>("view");
    QTest::addColumn<QStringList>("languages");
    QTest::addColumn<QStringList>("first");
    const QLocale english(QLocale::English);
    const QLocale chinese(u"zh-Hans"_s);
    const QString latin = u"DejaVu Sans"_s;

    QTest::newRow("English") << latin << english << QStringList{u"en-US"_s}
                             << QStringList{latin, u"Noto Sans CJK SC"_s};
    QTest::newRow("no language") << latin << english << QStringList{}
                                 << QStringList{latin, u"Noto Sans CJK SC"_s};
    QTest::newRow("Chinese") << latin << chinese << QStringList{u"zh-CN"_s}
                             << QStringList{latin, u"Noto Sans CJK SC"_s};
    QTest::newRow("Taiwan") << latin << chinese << QStringList{u"zh-TW"_s}
                            << QStringList{latin, u"Noto Sans CJK TC"_s};
    QTest::newRow("Japanese, then Chinese")
        << latin << english << QStringList{u"de-DE"_s, u"ja-JP"_s, u"zh-CN"_s}
        << QStringList{latin, u"Noto Sans CJK JP"_s};
    QTest::newRow("Korean") << latin << english << QStringList{u"ko-KR"_s}
                            << QStringList{latin, u"Noto Sans CJK KR"_s};
    QTest::newRow("Chinese view in Japan")
        << latin << chinese << QStringList{u"ja-JP"_s} << QStringList{latin, u"Noto Sans CJK SC"_s};
    QTest::newRow("Japanese interface font")
        << u"Noto Sans CJK JP"_s << chinese << QStringList{u"ja-JP"_s}
        << QStringList{u"Noto Sans CJK SC"_s};
}

void NoteThemeTest::drawsChineseAsTheUserReadsIt()
{
    QFETCH(QString, interface);
    QFETCH(QLocale, view);
    QFETCH(QStringList, languages);
    QFETCH(QStringList, first);

    const QStringList families = NoteTheme::families({interface}, view, languages);

    QCOMPARE(families.first(first.size()), first);
    QVERIFY(families.contains(interface));
    QVERIFY(families.contains(u"Noto Sans CJK SC"_s));
}

QTEST_MAIN(NoteThemeTest)
#include "NoteThemeTest.moc"
