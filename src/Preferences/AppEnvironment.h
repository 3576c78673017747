// SPDX-License-Identifier: MIT
#pragma once

#include "ViewEnvironment.h"

class AppPreferences;
class SystemAppearance;

/// Hands the preferences to a view tree: locale, palette and font through Qt, the preferences
/// object through preferences(). A change of language or appearance, by the user or by the system,
/// reaches open views at once; they keep what they show.
class AppEnvironment final : public ViewEnvironment {
    Q_OBJECT

public:
    AppEnvironment(AppPreferences &preferences, SystemAppearance &system,
                   QWidget *parent = nullptr);

    /// Fills the environment with the view.
    void setContent(QWidget *content);

    [[nodiscard]] AppPreferences &preferences() const noexcept { return m_preferences; }

    [[nodiscard]] ColorScheme colorScheme() const override;
    [[nodiscard]] bool reduceMotion() const override;
    [[nodiscard]] bool reduceTransparency() const override;

protected:
    bool event(QEvent *event) override;

private:
    void apply();
    void announce();

    AppPreferences &m_preferences;
    SystemAppearance &m_system;
};
