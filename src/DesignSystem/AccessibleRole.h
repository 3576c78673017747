// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>

class QWidget;

/// Tells assistive tools what a plain widget is: an alert, a group. Its name stays the
/// accessibleName. Call it before the widget is shown.
void setAccessibleRole(QWidget *widget, QAccessible::Role role);
