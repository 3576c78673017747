// SPDX-License-Identifier: MIT
#include "ThemedMenu.h"

#include "TextStyle.h"

ThemedMenu::ThemedMenu(QWidget *owner)
    : QMenu(owner)
{
}

void ThemedMenu::showEvent(QShowEvent *event)
{
    if (const QWidget *owner = parentWidget()) {
        // The owner's palette itself would not do: it has inherited its colours, and inherited
        // ones are not handed on.
        const QPalette &palette = owner->palette();
        setPalette(
            NoteTheme::palette(NoteTheme::colorScheme(palette), NoteTheme::contrast(palette)));
        setLocale(owner->locale());
        setFont(TextStyles::environment.font(owner->locale()));
    }
    QMenu::showEvent(event);
}
