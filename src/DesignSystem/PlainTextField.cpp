// SPDX-License-Identifier: MIT
#include "PlainTextField.h"

#include <QEvent>

PlainTextField::PlainTextField(const TextStyle &style, QWidget *parent)
    : QLineEdit(parent)
    , m_style(style)
{
    setFrame(false);
    setFont(style.font(locale()));
    setTextMargins(0, 0, 0, 0);
    // QLineEdit fills itself with Base, which a view tree shares with menus and alerts.
    QPalette clear;
    clear.setColor(QPalette::Base, Qt::transparent);
    setPalette(clear);
}

void PlainTextField::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LocaleChange)
        setFont(m_style.font(locale()));
    QLineEdit::changeEvent(event);
}
