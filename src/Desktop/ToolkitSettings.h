// SPDX-License-Identifier: MIT
#pragma once

#include "AppearanceWishes.h"

#include <QString>

/// The settings that programs of the GTK toolkit follow, which desktops without a preference of
/// their own are set up with. What is empty was not said.
struct ToolkitSettings {
    /// As in "Adwaita-dark".
    QString theme;
    /// The dark variant of whatever theme.
    std::optional<bool> prefersDark;
    std::optional<bool> animates;

    /// With what another source says where this one says nothing.
    [[nodiscard]] ToolkitSettings completedBy(const ToolkitSettings &other) const;

    /// Themes are told apart by what their names have in common: dark ones have the word in it, and
    /// those of high contrast begin with "HighContrast" or "ContrastHigh", inverse ones being light
    /// on dark.
    [[nodiscard]] AppearanceWishes wishes() const;

    friend bool operator==(const ToolkitSettings &, const ToolkitSettings &) = default;
};
