// SPDX-License-Identifier: MIT
#include "ThemedButton.h"

#include <QKeyEvent>

namespace {

/// Return with Control or Super belongs to the screen, which saves with it.
bool isPlainReturn(const QKeyEvent &event)
{
    const bool isReturn = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    return isReturn && !(event.modifiers() & ~Qt::KeypadModifier);
}

} // namespace

ThemedButton::ThemedButton(QWidget *parent)
    : QAbstractButton(parent)
{
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ThemedButton::keyPressEvent(QKeyEvent *event)
{
    if (!isPlainReturn(*event))
        QAbstractButton::keyPressEvent(event);
    else if (!event->isAutoRepeat())
        click();
}
