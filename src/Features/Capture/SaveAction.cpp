// SPDX-License-Identifier: MIT
#include "SaveAction.h"

#include <QAction>
#include <QWidget>

QAction *makeSaveAction(QWidget *view)
{
    auto *action = new QAction(view);
    action->setShortcuts({Qt::CTRL | Qt::Key_Return, Qt::CTRL | Qt::Key_Enter,
                          Qt::META | Qt::Key_Return, Qt::META | Qt::Key_Enter});
    action->setShortcutContext(Qt::WindowShortcut);
    action->setAutoRepeat(false);
    view->addAction(action);
    return action;
}
