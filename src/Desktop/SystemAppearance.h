// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

/// Light or dark.
enum class ColorScheme { light, dark };

/// What the user asked of the whole desktop. Settings that the desktop does not offer have their
/// plain value. Never waits for another program: answers that arrive later are signalled.
class SystemAppearance final : public QObject
{
    Q_OBJECT

public:
    explicit SystemAppearance(QObject *parent = nullptr);

    [[nodiscard]] ColorScheme colorScheme() const noexcept { return m_colorScheme; }

    /// Animations are switched off.
    [[nodiscard]] bool reduceMotion() const noexcept { return m_reduceMotion; }

    /// High contrast is asked for: surfaces are to be opaque.
    [[nodiscard]] bool reduceTransparency() const noexcept { return m_reduceTransparency; }

    /// A compositing manager draws translucent windows. Without one corners must be cut out.
    [[nodiscard]] bool isComposited() const noexcept { return m_isComposited; }

Q_SIGNALS:
    void changed();

private:
    ColorScheme m_colorScheme = ColorScheme::light;
    bool m_reduceMotion = false;
    bool m_reduceTransparency = false;
    bool m_isComposited = true;
};
