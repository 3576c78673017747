// SPDX-License-Identifier: MIT
#include "AlertButton.h"

#include "FocusRing.h"
#include "Metrics.h"
#include "TextLine.h"

#include <QPainter>

AlertButton::AlertButton(const TextStyle &style, QWidget *parent)
    : ThemedButton(style, parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize AlertButton::sizeHint() const
{
    return TextLine::size(fontMetrics(), text()).grownBy(Metrics::alertButtonPadding);
}

void AlertButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);

    const QColor color = NoteTheme::color(palette(), textStyle().tone);
    QColor fill = color;
    fill.setAlphaF(
        static_cast<float>(isDown() ? Metrics::alertButtonPressedFill : Metrics::alertButtonFill));
    const QRectF capsule(rect());
    const double radius = capsule.height() / 2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(capsule, radius, radius);

    painter.setPen(color);
    TextLine::paint(painter, capsule, text(), Qt::AlignHCenter);
    FocusRing::paint(painter, this, capsule, radius);
}
