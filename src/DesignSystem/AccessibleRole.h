// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>
#include <QString>

class QWidget;

/// Tells assistive tools what a plain widget is: an alert, a group. Its name stays the
/// accessibleName. It counts as focused when it has the keyboard itself, and not when it hands it
/// on to a part of it. Call it before the widget is shown.
void setAccessibleRole(QWidget *widget, QAccessible::Role role);

/// While it is shown, nothing else of its window can be used.
void setAccessiblyModal(QWidget *widget);

/// The name and the description for assistive tools, which hear of what has changed and of nothing
/// else; Qt itself would tell them of every call.
void setAccessibleText(QWidget *widget, const QString &name);
void setAccessibleText(QWidget *widget, const QString &name, const QString &description);
