// SPDX-License-Identifier: MIT
#pragma once

#include <QPainterPath>
#include <span>
#include <string_view>

/// One symbol in a grid of 24 units: the elements of the path that is stroked, and of the one that
/// is filled.
struct SymbolDrawing {
    std::string_view name;
    std::span<const QPainterPath::Element> strokes;
    std::span<const QPainterPath::Element> fills;
};

/// All symbols, in the order of their names. Written by the build from resources/symbols.
[[nodiscard]] std::span<const SymbolDrawing> symbolDrawings();
