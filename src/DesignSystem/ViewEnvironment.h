// SPDX-License-Identifier: MIT
#pragma once

#include "ColorScheme.h"

#include <QWidget>

/// What surrounds a view tree and every view in it may ask: colour scheme, motion, transparency.
///
/// The widget at the root of the tree. Colours and locale go down by themselves, as Qt's palette
/// and locale; the rest is found with of() and announced by changed().
class ViewEnvironment : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    [[nodiscard]] virtual ColorScheme colorScheme() const = 0;
    [[nodiscard]] virtual bool reduceMotion() const = 0;

    /// Surfaces are opaque.
    [[nodiscard]] virtual bool reduceTransparency() const = 0;

    /// The environment above a view; none for a view that stands alone.
    [[nodiscard]] static ViewEnvironment *of(const QWidget *view);

Q_SIGNALS:
    void changed();
};
