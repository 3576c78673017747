// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string_view>

/// One symbol as path data in a grid of 24 units: what is stroked, and what is filled.
struct SymbolDrawing {
    std::string_view name;
    std::string_view strokes;
    std::string_view fills;
};

/// All symbols, in the order of their names. Written by the build from resources/symbols.
[[nodiscard]] std::span<const SymbolDrawing> symbolDrawings();
