// SPDX-License-Identifier: MIT
#pragma once

#include "ViewEnvironment.h"

class AppPreferences;

/// Hands the preferences to a view tree: locale and palette through Qt, the preferences object
/// through preferences(). A change of language or appearance reaches open views at once.
class AppEnvironment final : public ViewEnvironment
{
    Q_OBJECT

public:
    AppEnvironment(AppPreferences &preferences, SystemAppearance &system, QWidget *parent = nullptr);

    /// Fills the environment with the view, in place of an earlier one, which is deleted.
    void setContent(QWidget *content);

    [[nodiscard]] AppPreferences &preferences() const noexcept { return m_preferences; }

    [[nodiscard]] ColorScheme colorScheme() const override;
    [[nodiscard]] bool reduceMotion() const override;
    [[nodiscard]] bool reduceTransparency() const override;

private:
    AppPreferences &m_preferences;
    SystemAppearance &m_system;
};
