// SPDX-License-Identifier: MIT
#include "AccessibleRole.h"

#include "AccessibleFocus.h"

#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace {

constexpr auto roleProperty = "accessibleRole";
constexpr auto modalProperty = "accessiblyModal";

class PlainInterface final : public QAccessibleWidget {
public:
    using QAccessibleWidget::QAccessibleWidget;

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.modal = widget()->property(modalProperty).toBool();
        if (widget()->focusProxy())
            state.focused = false;
        return state;
    }
};

QAccessibleInterface *makeInterface(const QString &className, QObject *object)
{
    auto *const widget = qobject_cast<QWidget *>(object);
    if (!widget)
        return nullptr;
    const QVariant role = widget->property(roleProperty);
    if (role.isValid())
        return new PlainInterface(widget, static_cast<QAccessible::Role>(role.toInt()));
    // What scrolls is a plain widget that hands the keyboard on to what it is a part of.
    const bool handsOn = className == QLatin1String("QWidget") && widget->focusProxy();
    return handsOn ? new PlainInterface(widget, QAccessible::Client) : nullptr;
}

} // namespace

void setAccessibleRole(QWidget *widget, QAccessible::Role role)
{
    // Qt keeps each factory once, however often it is installed.
    QAccessible::installFactory(makeInterface);
    AccessibleFocus::tellOnce();
    widget->setProperty(roleProperty, static_cast<int>(role));
}

void setAccessiblyModal(QWidget *widget)
{
    widget->setProperty(modalProperty, true);
}

void setAccessibleText(QWidget *widget, const QString &name)
{
    if (widget->accessibleName() != name)
        widget->setAccessibleName(name);
}

void setAccessibleText(QWidget *widget, const QString &name, const QString &description)
{
    setAccessibleText(widget, name);
    if (widget->accessibleDescription() != description)
        widget->setAccessibleDescription(description);
}
