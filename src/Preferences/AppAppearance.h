// SPDX-License-Identifier: MIT
#pragma once

#include "ColorScheme.h"

#include <QString>
#include <QStringView>
#include <array>
#include <optional>

/// The look of the interface, in the order of the menu.
enum class AppAppearance { system, light, dark };

inline constexpr std::array allAppAppearances{AppAppearance::system, AppAppearance::light,
                                              AppAppearance::dark};

/// As stored: "system", "light", "dark".
[[nodiscard]] QString rawValue(AppAppearance appearance);
[[nodiscard]] std::optional<AppAppearance> appAppearance(QStringView rawValue);

/// The choice in the menu, before translation.
[[nodiscard]] QString label(AppAppearance appearance);

/// The user's choice, or the system's where the user leaves it to the system.
[[nodiscard]] ColorScheme colorScheme(AppAppearance appearance, ColorScheme ofSystem);
