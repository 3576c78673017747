// SPDX-License-Identifier: MIT
#include "NoteTheme.h"

#include "Metrics.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <algorithm>

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
    QColor match;
};

constexpr QPalette::ColorRole matchRole = QPalette::Midlight; // Nothing else uses it.

Colors colors(ColorScheme scheme)
{
    if (scheme == ColorScheme::dark)
        return {.primary = QColor(245, 242, 238),
                .secondary = QColor(186, 180, 173),
                .tertiary = QColor(166, 160, 153),
                .failure = QColor(255, 154, 140),
                .window = QColor(38, 36, 34),
                .base = QColor(28, 27, 25),
                .raised = QColor(52, 50, 47),
                .match = QColor(96, 56, 38)};
    return {.primary = QColor(30, 27, 25),
            .secondary = QColor(82, 76, 71),
            .tertiary = QColor(92, 85, 78),
            .failure = QColor(160, 26, 18),
            .window = QColor(238, 233, 226),
            .base = QColor(255, 253, 250),
            .raised = QColor(226, 220, 212),
            .match = QColor(240, 187, 143)};
}

/// The accent, dark enough for white text: selected text is to be read, as any other.
QColor normalSelection()
{
    return QColor::fromRgbF(0.73F, 0.32F, 0.175F);
}

/// The common fonts of one way to write Chinese characters. Of those that are not installed no
/// notice is taken when a text is drawn; to ask which are would load all of them, also for a
/// launcher without a text.
struct CjkFamilies {
    QString language; ///< The beginning of its name.
    QStringList families;
};

const QList<CjkFamilies> &allCjkFamilies()
{
    static const QList<CjkFamilies> all = {
        {u"zh-Hant-HK"_s, {u"Noto Sans CJK HK"_s, u"Noto Sans HK"_s, u"Source Han Sans HC"_s}},
        {u"zh-Hant"_s, {u"Noto Sans CJK TC"_s, u"Noto Sans TC"_s, u"Source Han Sans TC"_s}},
        {u"zh"_s,
         {u"Noto Sans CJK SC"_s, u"Noto Sans SC"_s, u"Source Han Sans SC"_s,
          u"Source Han Sans CN"_s, u"WenQuanYi Micro Hei"_s, u"WenQuanYi Zen Hei"_s}},
        {u"ja"_s, {u"Noto Sans CJK JP"_s, u"Noto Sans JP"_s, u"Source Han Sans JP"_s}},
        {u"ko"_s, {u"Noto Sans CJK KR"_s, u"Noto Sans KR"_s, u"Source Han Sans KR"_s}}};
    return all;
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
                .raised = QColor(38, 36, 34),
                .match = QColor(112, 47, 20)};
    return {.primary = QColor(0, 0, 0),
            .secondary = QColor(43, 39, 36),
            .tertiary = QColor(66, 61, 57),
            .failure = QColor(128, 10, 4),
            .window = QColor(255, 255, 255),
            .base = QColor(255, 255, 255),
            .raised = QColor(233, 228, 221),
            .match = QColor(255, 178, 120)};
}

/// The accent, what is written on it, and what is behind selected text.
struct AccentColors {
    QColor accent;
    QColor onAccent;
    QColor selection;
};

AccentColors accentColors(ColorScheme scheme, Contrast contrast)
{
    if (contrast == Contrast::normal)
        return {NoteTheme::accent(), Qt::white, normalSelection()};
    const bool isDark = scheme == ColorScheme::dark;
    const QColor accent = isDark ? QColor(245, 165, 130) : QColor(124, 45, 16);
    return {accent, isDark ? Qt::black : Qt::white, accent};
}

const QStringList &simplifiedChineseFamilies()
{
    return allCjkFamilies().at(2).families;
}

/// Of the first of the languages that is written with Chinese characters.
QStringList preferredFamilies(const QStringList &languages)
{
    for (const QString &language : languages) {
        const QLocale locale(language);
        QString name = QLocale::languageToCode(locale.language());
        if (locale.language() == QLocale::Chinese &&
            locale.script() == QLocale::TraditionalHanScript)
            name += locale.territory() == QLocale::Taiwan ? "-Hant"_L1 : "-Hant-HK"_L1;
        for (const CjkFamilies &cjk : allCjkFamilies()) {
            if (cjk.language == name)
                return cjk.families;
        }
    }
    return simplifiedChineseFamilies();
}

bool isCjk(const QString &family)
{
    return std::any_of(allCjkFamilies().begin(), allCjkFamilies().end(),
                       [&family](const CjkFamilies &cjk) { return cjk.families.contains(family); });
}

} // namespace

QStringList NoteTheme::families(const QStringList &interface, const QLocale &locale,
                                const QStringList &systemLanguages)
{
    QStringList chinese = preferredFamilies(systemLanguages);
    // A view in Simplified Chinese is written so, whoever reads it.
    const bool isForeign = !systemLanguages.isEmpty() &&
                           QLocale(systemLanguages.first()).language() != QLocale::Chinese;
    if (locale.language() == QLocale::Chinese && isForeign)
        chinese = simplifiedChineseFamilies();
    for (const QString &family : simplifiedChineseFamilies()) {
        if (!chinese.contains(family))
            chinese.append(family);
    }
    // The interface font of another country has all characters, in its own forms.
    const bool hasOtherForms =
        std::any_of(interface.begin(), interface.end(),
                    [&](const QString &f) { return isCjk(f) && f != chinese.first(); });
    return hasOtherForms && locale.language() == QLocale::Chinese ? chinese + interface : interface + chinese;
}

const QColor &NoteTheme::accent()
{
    static const QColor color = QColor::fromRgbF(0.77F, 0.34F, 0.19F);
    return color;
}

QPalette NoteTheme::palette(ColorScheme scheme, Contrast contrast)
{
    const Colors c = contrast == Contrast::high ? highContrastColors(scheme) : colors(scheme);
    const auto [accent, onAccent, selection] = accentColors(scheme, contrast);
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
    palette.setColor(role(Tone::secondary), c.secondary);
    palette.setColor(role(Tone::tertiary), c.tertiary);
    palette.setColor(role(Tone::accent), accent);
    palette.setColor(QPalette::Highlight, selection);
    palette.setColor(matchRole, c.match);
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
        return QPalette::Link;
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

QColor NoteTheme::matchColor(const QPalette &palette)
{
    return palette.color(matchRole);
}

QFont NoteTheme::font(int pixelSize, QFont::Weight weight, const QLocale &locale)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    // The system's name for it may be no family's, as "Sans Serif", and would then be passed over.
    font.setFamilies(families({QFontInfo(font).family()}, locale, QLocale::system().uiLanguages()));
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    return font;
}

QStringList NoteTheme::emojiFamilies()
{
    return {u"Noto Color Emoji"_s, u"Twemoji"_s, u"Twitter Color Emoji"_s};
}

QFont NoteTheme::serifFont(int pixelSize, QFont::Weight weight)
{
    QFont font(u"serif"_s);
    font.setStyleHint(QFont::Serif);
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    return font;
}
