// SPDX-License-Identifier: MIT
#include "Announcement.h"

#include "AccessibleRole.h"

Announcement::Announcement(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("announcement"));
    setAccessibleRole(this, QAccessible::Notification);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    // Readers pass over what has no place on the screen.
    setFixedSize(1, 1);
    hide();
}

void Announcement::say(const QString &text)
{
    hide();
    setAccessibleText(this, text);
    show();
}

void Announcement::sayNews(const QString &text)
{
    if (text != accessibleName())
        say(text);
}

void Announcement::forget()
{
    hide();
    setAccessibleText(this, {});
}
