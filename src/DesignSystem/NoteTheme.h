// SPDX-License-Identifier: MIT
#pragma once

#include "ColorScheme.h"

#include <QColor>
#include <QFont>
#include <QLocale>
#include <QPalette>

/// How strongly a text or a symbol speaks.
enum class Tone {
    primary,
    secondary, ///< Text of lesser weight. At least 4.5:1 on the surface.
    tertiary,  ///< Prompts and marks of no importance. At least 4.5:1 on the surface.
    accent,
    failure, ///< The red of failures; readable as text on the surface.
    onAccent
};

/// How far texts stand out from what is under them.
enum class Contrast {
    normal,
    high, ///< What is text stands out by 7:1 at least, in every tone.
};

/// Every colour and font of the program; Metrics.h and TextStyle.h have the measures. Views hold
/// no number of their own.
///
/// Sizes are in points of the layout, which are Qt's device-independent pixels, so that the layout
/// holds on every display; fonts are set in pixels for the same reason.
namespace NoteTheme {

/// A warm terracotta: sRGB 0.77, 0.34, 0.19.
[[nodiscard]] const QColor &accent();

/// The colours of a view tree. Besides the usual roles it carries every tone in a role of its
/// own, see role(), so that the tones go down a view tree and change with the scheme by themselves.
[[nodiscard]] QPalette palette(ColorScheme scheme, Contrast contrast = Contrast::normal);
[[nodiscard]] ColorScheme colorScheme(const QPalette &palette);
[[nodiscard]] Contrast contrast(const QPalette &palette);

/// The role of the palette that carries a tone: WindowText for the primary one, PlaceholderText
/// for the tertiary one, and roles that this program has no other use for.
[[nodiscard]] QPalette::ColorRole role(Tone tone);
[[nodiscard]] QColor color(const QPalette &palette, Tone tone);

/// The tone at an opacity from 0 to 1, for fills and lines.
[[nodiscard]] QColor color(const QPalette &palette, Tone tone, double opacity);

/// What a search found is marked with this, below its text. Opaque, so that text in the primary and
/// in the secondary tone keeps its contrast over it whatever is below.
[[nodiscard]] QColor matchColor(const QPalette &palette);

/// The system's interface font at a pixel size, see families().
[[nodiscard]] QFont font(int pixelSize, QFont::Weight weight = QFont::Normal,
                         const QLocale &locale = {});

/// The families of the interface font, and behind them those for Chinese characters that it lacks:
/// in the forms of the first of the system's languages that is written with them, else of
/// Simplified Chinese, which a view in Chinese always takes. The first font at hand would often
/// give them their Japanese form, in a weight that is not the text's.
[[nodiscard]] QStringList families(const QStringList &interface, const QLocale &locale,
                                   const QStringList &systemLanguages);

/// Fonts with emoji in colours, the preferred one first.
[[nodiscard]] QStringList emojiFamilies();

/// The serif design of the product title.
[[nodiscard]] QFont serifFont(int pixelSize, QFont::Weight weight = QFont::Normal);

} // namespace NoteTheme
