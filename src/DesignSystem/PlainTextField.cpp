// SPDX-License-Identifier: MIT
#include "PlainTextField.h"

PlainTextField::PlainTextField(const TextStyle &style, QWidget *parent)
    : QLineEdit(parent)
{
    setFrame(false);
    setFont(style.font());
    setTextMargins(0, 0, 0, 0);
    // QLineEdit fills itself with Base, which a view tree shares with menus and alerts.
    QPalette clear;
    clear.setColor(QPalette::Base, Qt::transparent);
    setPalette(clear);
}
