// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

enum class ColorScheme;

/// Every colour, font and measure of the program. Views hold no number of their own.
///
/// Sizes are in points of the layout, which are Qt's device-independent pixels, so that the layout
/// holds on every display; fonts are set in pixels for the same reason.
namespace NoteTheme {

/// A warm terracotta: sRGB 0.77, 0.34, 0.19.
[[nodiscard]] const QColor &accent();

/// The colours of a view tree. Roles: WindowText is the primary style, PlaceholderText the
/// tertiary one, Window the opaque background; secondary() and tint() give the rest.
[[nodiscard]] QPalette palette(ColorScheme scheme);
[[nodiscard]] ColorScheme colorScheme(const QPalette &palette);

/// Text of lesser weight. At least 4.5:1 on the surface.
[[nodiscard]] QColor secondary(const QPalette &palette);

/// Prompts and marks of no importance.
[[nodiscard]] QColor tertiary(const QPalette &palette);

/// The primary style at an opacity from 0 to 1, for fills and lines.
[[nodiscard]] QColor primary(const QPalette &palette, double opacity);

/// The red of failures; readable as text on the surface.
[[nodiscard]] QColor failure(const QPalette &palette);

/// The system's interface font at a pixel size.
[[nodiscard]] QFont font(int pixelSize, QFont::Weight weight = QFont::Normal);

/// The serif design of the product title.
[[nodiscard]] QFont serifFont(int pixelSize, QFont::Weight weight = QFont::Normal);

} // namespace NoteTheme
