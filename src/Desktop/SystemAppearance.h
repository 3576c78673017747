// SPDX-License-Identifier: MIT
#pragma once

#include "ColorScheme.h"

#include <QObject>

/// What the user asked of the whole desktop, as the views see it.
///
/// This class only holds the values and announces their changes; DesktopAppearance keeps them like
/// the running desktop. On its own it stands for a desktop with the values it is given.
class SystemAppearance : public QObject {
    Q_OBJECT

public:
    struct Values {
        ColorScheme colorScheme = ColorScheme::light;
        /// Animations are switched off.
        bool reduceMotion = false;
        bool highContrast = false;
        /// A compositing manager draws translucent windows.
        bool isComposited = true;
        /// It also blurs what lies behind them.
        bool offersBlur = false;

        friend bool operator==(const Values &, const Values &) = default;
    };

    explicit SystemAppearance(QObject *parent = nullptr);

    [[nodiscard]] ColorScheme colorScheme() const noexcept { return m_values.colorScheme; }
    [[nodiscard]] bool reduceMotion() const noexcept { return m_values.reduceMotion; }

    /// Texts and captions are to stand out from what is under them.
    [[nodiscard]] bool highContrast() const noexcept { return m_values.highContrast; }

    /// Surfaces are to be opaque: high contrast is asked for, or nothing could show through them.
    [[nodiscard]] bool reduceTransparency() const noexcept
    {
        return m_values.highContrast || !m_values.isComposited;
    }

    /// Without a compositing manager the corners of a window must be cut out.
    [[nodiscard]] bool isComposited() const noexcept { return m_values.isComposited; }

    /// What lies behind translucent surfaces is to be blurred.
    [[nodiscard]] bool blursBehind() const noexcept
    {
        return m_values.offersBlur && !reduceTransparency();
    }

    [[nodiscard]] const Values &values() const noexcept { return m_values; }
    void setValues(const Values &values);

Q_SIGNALS:
    void changed();

private:
    Values m_values;
};
