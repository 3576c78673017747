// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The widget, by now under the object name by which tests and assistive tools find it.
template <class Widget>
[[nodiscard]] Widget *named(const QString &name, Widget *widget)
{
    widget->setObjectName(name);
    return widget;
}
