// SPDX-License-Identifier: MIT
#include "AccessibleRole.h"

#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace {

constexpr auto roleProperty = "accessibleRole";

QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    const QVariant role = object ? object->property(roleProperty) : QVariant();
    if (!role.isValid() || !object->isWidgetType())
        return nullptr;
    return new QAccessibleWidget(qobject_cast<QWidget *>(object),
                                 static_cast<QAccessible::Role>(role.toInt()));
}

} // namespace

void setAccessibleRole(QWidget *widget, QAccessible::Role role)
{
    // Qt keeps each factory once, however often it is installed.
    QAccessible::installFactory(makeInterface);
    widget->setProperty(roleProperty, static_cast<int>(role));
}
