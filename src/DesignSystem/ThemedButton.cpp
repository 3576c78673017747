// SPDX-License-Identifier: MIT
#include "ThemedButton.h"

#include "FocusRing.h"

#include <QEvent>
#include <QKeyEvent>

namespace {

/// Return with Control or Super belongs to the screen, which saves with it.
bool isPlainReturn(const QKeyEvent &event)
{
    const bool isReturn = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    return isReturn && !(event.modifiers() & ~Qt::KeypadModifier);
}

} // namespace

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
    if (!isPlainReturn(*event))
        QAbstractButton::keyPressEvent(event);
    else if (!event->isAutoRepeat())
        click();
}
