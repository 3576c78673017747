// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
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

/// "en" or "zh-Hans". For AppLanguage::system the first of the system's languages decides: every
/// kind of Chinese gives "zh-Hans", everything else and none gives "en".
[[nodiscard]] QString resolvedLanguage(AppLanguage language, const QStringList &systemLanguages);

/// The languages of the user's system, the preferred one first. As for every other program none
/// where the locale of messages is C, whatever LANGUAGE says.
[[nodiscard]] QStringList systemLanguages();
