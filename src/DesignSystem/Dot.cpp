// SPDX-License-Identifier: MIT
#include "Dot.h"

#include <QPainter>

Dot::Dot(int diameter, Tone tone, QWidget *parent)
    : QWidget(parent)
    , m_tone(tone)
{
    setFixedSize(diameter, diameter);
}

void Dot::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(NoteTheme::color(palette(), m_tone));
    painter.drawEllipse(rect());
}
