// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>
#include <array>
#include <optional>

/// The language of the interface, in the order of the menu.
enum class AppLanguage { system, english, chinese };

inline constexpr std::array allAppLanguages{AppLanguage::system, AppLanguage::english,
                                            AppLanguage::chinese};

/// As stored: "system", "en", "zh-Hans".
[[nodiscard]] QString rawValue(AppLanguage language);
[[nodiscard]] std::optional<AppLanguage> appLanguage(QStringView rawValue);

/// The choice in the menu, before translation.
[[nodiscard]] QString label(AppLanguage language);
