// SPDX-License-Identifier: MIT
#include "Divider.h"

#include "Metrics.h"
#include "NoteTheme.h"

#include <QPainter>

Divider::Divider(QWidget *parent)
    : QWidget(parent)
{
    setFixedHeight(Metrics::dividerThickness);
}

void Divider::paintEvent(QPaintEvent *)
{
    QPainter(this).fillRect(rect(),
                            NoteTheme::color(palette(), Tone::primary, Metrics::dividerOpacity));
}
