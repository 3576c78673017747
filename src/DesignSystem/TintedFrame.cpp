// SPDX-License-Identifier: MIT
#include "TintedFrame.h"

#include "ContinuousCorners.h"

#include <QPainter>

TintedFrame::TintedFrame(Tone tone, double opacity, double radius, QWidget *parent)
    : QWidget(parent)
    , m_tone(tone)
    , m_opacity(opacity)
    , m_radius(radius)
{
}

void TintedFrame::paint(QPainter &painter, const QRectF &rect, const QColor &fill, double radius)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(ContinuousCorners::path(rect, radius), fill);
    painter.restore();
}

void TintedFrame::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paint(painter, rect(), NoteTheme::color(palette(), m_tone, m_opacity), m_radius);
}
