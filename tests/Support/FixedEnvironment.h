// SPDX-License-Identifier: MIT
#pragma once

#include "NoteTheme.h"
#include "ViewEnvironment.h"

/// An environment with the values that a test gives it.
class FixedEnvironment final : public ViewEnvironment {
public:
    explicit FixedEnvironment(ColorScheme scheme, bool reducesTransparency = false)
        : m_scheme(scheme)
        , m_reducesTransparency(reducesTransparency)
    {
        setPalette(NoteTheme::palette(scheme));
    }

    [[nodiscard]] ColorScheme colorScheme() const override { return m_scheme; }
    [[nodiscard]] bool reduceMotion() const override { return false; }
    [[nodiscard]] bool reduceTransparency() const override { return m_reducesTransparency; }

private:
    ColorScheme m_scheme;
    bool m_reducesTransparency;
};
