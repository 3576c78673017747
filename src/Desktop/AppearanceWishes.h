// SPDX-License-Identifier: MIT
#pragma once

#include "ColorScheme.h"

#include <optional>

/// What one source says about the user's wishes for the whole desktop. What it leaves open is for
/// the next one to say.
struct AppearanceWishes {
    std::optional<ColorScheme> colorScheme;
    bool reduceMotion = false;
    bool highContrast = false;

    friend bool operator==(const AppearanceWishes &, const AppearanceWishes &) = default;
};
