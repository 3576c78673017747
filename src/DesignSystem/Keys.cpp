// SPDX-License-Identifier: MIT
#include "Keys.h"

#include <QKeyEvent>

bool Keys::isReturn(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

Qt::KeyboardModifiers Keys::modifiers(const QKeyEvent &event)
{
    return event.modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier);
}
