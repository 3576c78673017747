// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Gives the widget the identifier by which tests find it: its object name, which Qt passes on to
/// those outside from 6.9 on. No screen reader speaks it.
template <class Widget>
void setIdentifier(Widget *widget, const QString &identifier)
{
    widget->setObjectName(identifier);
    if constexpr (requires { widget->setAccessibleIdentifier(identifier); })
        widget->setAccessibleIdentifier(identifier);
}

/// The widget, by now with that identifier.
template <class Widget>
[[nodiscard]] Widget *named(const QString &identifier, Widget *widget)
{
    setIdentifier(widget, identifier);
    return widget;
}
