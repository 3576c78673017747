// SPDX-License-Identifier: MIT
#include "NoteTheme.h"

#include "Metrics.h"

#include <QFontDatabase>

using namespace Qt::Literals::StringLiterals;

namespace {

/// What differs between light and dark. Warm greys, so that the accent stays the only colour.
struct Colors {
    QColor primary;
    QColor secondary;
    QColor tertiary;
    QColor failure;
    QColor window;
    QColor base;
    QColor raised;
};

Colors colors(ColorScheme scheme)
{
    if (scheme == ColorScheme::dark)
        return {.primary = QColor(245, 242, 238),
                .secondary = QColor(186, 180, 173),
                .tertiary = QColor(142, 136, 129),
                .failure = QColor(255, 138, 122),
                .window = QColor(38, 36, 34),
                .base = QColor(28, 27, 25),
                .raised = QColor(52, 50, 47)};
    return {.primary = QColor(30, 27, 25),
            .secondary = QColor(88, 82, 77),
            .tertiary = QColor(120, 113, 106),
            .failure = QColor(168, 28, 20),
            .window = QColor(246, 242, 236),
            .base = QColor(255, 253, 250),
            .raised = QColor(233, 228, 221)};
}

/// Black on white and white on black; what tells the tones apart is small.
Colors highContrastColors(ColorScheme scheme)
{
    if (scheme == ColorScheme::dark)
        return {.primary = QColor(255, 255, 255),
                .secondary = QColor(230, 226, 221),
                .tertiary = QColor(205, 200, 194),
                .failure = QColor(255, 170, 158),
                .window = QColor(0, 0, 0),
                .base = QColor(0, 0, 0),
                .raised = QColor(38, 36, 34)};
    return {.primary = QColor(0, 0, 0),
            .secondary = QColor(43, 39, 36),
            .tertiary = QColor(66, 61, 57),
            .failure = QColor(128, 10, 4),
            .window = QColor(255, 255, 255),
            .base = QColor(255, 255, 255),
            .raised = QColor(233, 228, 221)};
}

/// The accent, and what is written on it.
struct AccentColors {
    QColor accent;
    QColor onAccent;
};

AccentColors accentColors(ColorScheme scheme, Contrast contrast)
{
    if (contrast == Contrast::normal)
        return {NoteTheme::accent(), Qt::white};
    if (scheme == ColorScheme::dark)
        return {QColor(245, 165, 130), Qt::black};
    return {QColor(124, 45, 16), Qt::white};
}

/// The common fonts of that script, of those that are installed.
const QStringList &simplifiedChineseFamilies()
{
    static const QStringList families = [] {
        QStringList installed;
        for (const QString &family :
             {u"Noto Sans CJK SC"_s, u"Noto Sans SC"_s, u"Source Han Sans SC"_s,
              u"Source Han Sans CN"_s, u"WenQuanYi Micro Hei"_s, u"WenQuanYi Zen Hei"_s}) {
            if (QFontDatabase::hasFamily(family))
                installed.append(family);
        }
        return installed;
    }();
    return families;
}

} // namespace

const QColor &NoteTheme::accent()
{
    static const QColor color = QColor::fromRgbF(0.77F, 0.34F, 0.19F);
    return color;
}

QPalette NoteTheme::palette(ColorScheme scheme, Contrast contrast)
{
    const Colors c = contrast == Contrast::high ? highContrastColors(scheme) : colors(scheme);
    const auto [accent, onAccent] = accentColors(scheme, contrast);
    QPalette palette(c.raised, c.window);
    for (const auto textRole :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        palette.setColor(textRole, c.primary);
    palette.setColor(QPalette::Disabled, QPalette::WindowText, c.tertiary);
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, c.tertiary);
    // A disabled editor still shows text that someone wants to read.
    palette.setColor(QPalette::Disabled, QPalette::Text, c.secondary);
    palette.setColor(QPalette::Base, c.base);
    palette.setColor(QPalette::AlternateBase, c.window);
    palette.setColor(QPalette::ToolTipBase, c.base);
    palette.setColor(QPalette::Link, accent);
    palette.setColor(role(Tone::secondary), c.secondary);
    palette.setColor(role(Tone::tertiary), c.tertiary);
    palette.setColor(role(Tone::accent), accent);
    palette.setColor(role(Tone::failure), c.failure);
    palette.setColor(role(Tone::onAccent), onAccent);
    return palette;
}

ColorScheme NoteTheme::colorScheme(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() <
                   palette.color(QPalette::WindowText).lightness()
               ? ColorScheme::dark
               : ColorScheme::light;
}

Contrast NoteTheme::contrast(const QPalette &palette)
{
    const QColor window = highContrastColors(colorScheme(palette)).window;
    return palette.color(QPalette::Window) == window ? Contrast::high : Contrast::normal;
}

QPalette::ColorRole NoteTheme::role(Tone tone)
{
    switch (tone) {
    case Tone::primary:
        return QPalette::WindowText;
    case Tone::secondary:
        return QPalette::LinkVisited;
    case Tone::tertiary:
        return QPalette::PlaceholderText;
    case Tone::accent:
        return QPalette::Highlight;
    case Tone::failure:
        return QPalette::BrightText;
    case Tone::onAccent:
        return QPalette::HighlightedText;
    }
    Q_UNREACHABLE();
}

QColor NoteTheme::color(const QPalette &palette, Tone tone)
{
    return palette.color(role(tone));
}

QColor NoteTheme::color(const QPalette &palette, Tone tone, double opacity)
{
    QColor color = NoteTheme::color(palette, tone);
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

QFont NoteTheme::font(int pixelSize, QFont::Weight weight, const QLocale &locale)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    if (locale.language() == QLocale::Chinese)
        font.setFamilies(font.families() + simplifiedChineseFamilies());
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    return font;
}

QFont NoteTheme::serifFont(int pixelSize, QFont::Weight weight)
{
    QFont font(u"serif"_s);
    font.setStyleHint(QFont::Serif);
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    return font;
}
