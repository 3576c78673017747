// SPDX-License-Identifier: MIT
#include "AccessibleFocus.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QWindow>

namespace {

class Teller final : public QObject {
public:
    Teller()
        : QObject(qGuiApp)
    {
        // Who comes back to a window is told again.
        connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this] { m_told = 0; });
    }

    /// What the event is about in the end; none when that is known, or is on its way out.
    [[nodiscard]] QAccessibleInterface *targetOf(const QAccessibleEvent &event)
    {
        QAccessibleInterface *target = event.accessibleInterface();
        if (!target)
            return nullptr;
        if (QAccessibleInterface *const part = target->focusChild())
            target = part;
        const QAccessible::Id id = QAccessible::uniqueId(target);
        if (id == m_told)
            return nullptr;
        m_told = id;
        return target;
    }

private:
    QAccessible::Id m_told = 0;
};

void tell(QAccessibleEvent *event);

void pass(QAccessibleEvent *event)
{
    QAccessible::installUpdateHandler(nullptr);
    QAccessible::updateAccessibility(event);
    QAccessible::installUpdateHandler(tell);
}

void tell(QAccessibleEvent *event)
{
    if (event->type() != QAccessible::Focus) {
        pass(event);
        return;
    }
    static auto *const teller = new Teller;
    if (QAccessibleInterface *const target = teller->targetOf(*event)) {
        QAccessibleEvent focus(target, QAccessible::Focus);
        pass(&focus);
    }
}

} // namespace

void AccessibleFocus::tellOnce()
{
    QAccessible::installUpdateHandler(tell);
}
