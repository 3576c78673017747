// SPDX-License-Identifier: MIT
#include "AccessibleFocus.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QWidget>
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

bool isOfText(QAccessible::Event type)
{
    switch (type) {
    case QAccessible::TextCaretMoved:
    case QAccessible::TextInserted:
    case QAccessible::TextRemoved:
    case QAccessible::TextSelectionChanged:
    case QAccessible::TextUpdated:
        return true;
    default:
        return false;
    }
}

/// The text of a screen that is only being made is no news: a reader would read it out, and then
/// take for known what gets the keyboard.
bool isOfHiddenText(const QAccessibleEvent &event)
{
    const auto *const widget = qobject_cast<const QWidget *>(event.object());
    return isOfText(event.type()) && widget && !widget->isVisible();
}

void tell(QAccessibleEvent *event)
{
    if (isOfHiddenText(*event))
        return;
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
