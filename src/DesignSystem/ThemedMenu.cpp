// SPDX-License-Identifier: MIT
#include "ThemedMenu.h"

#include <QLocale>

ThemedMenu::ThemedMenu(QWidget *owner)
    : QMenu(owner)
{
}

void ThemedMenu::showEvent(QShowEvent *event)
{
    if (const QWidget *owner = parentWidget()) {
        setPalette(owner->palette());
        setLocale(owner->locale());
    }
    QMenu::showEvent(event);
}
