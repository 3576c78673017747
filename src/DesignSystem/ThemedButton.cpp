// SPDX-License-Identifier: MIT
#include "ThemedButton.h"

#include "FocusRing.h"
#include "Keys.h"

#include <QEvent>
#include <QKeyEvent>

ThemedButton::ThemedButton(const TextStyle &style, QWidget *parent)
    : QAbstractButton(parent)
    , m_style(style)
{
    setFont(style.font(locale()));
    FocusRing::watch(this);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ThemedButton::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LocaleChange) {
        setFont(m_style.font(locale()));
        updateGeometry();
    }
    QAbstractButton::changeEvent(event);
}

void ThemedButton::keyPressEvent(QKeyEvent *event)
{
    // Return with Control or Super belongs to the screen, which saves with it.
    if (!Keys::isReturn(*event) || Keys::modifiers(*event))
        QAbstractButton::keyPressEvent(event);
    else if (!event->isAutoRepeat())
        click();
}
