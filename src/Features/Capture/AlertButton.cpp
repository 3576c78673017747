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

    const QRectF capsule(rect());
    const double radius = capsule.height() / 2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(
        NoteTheme::color(palette(), textStyle().tone,
                         isDown() ? Metrics::alertButtonPressedFill : Metrics::alertButtonFill));
    painter.drawRoundedRect(capsule, radius, radius);

    painter.setPen(NoteTheme::color(palette(), textStyle().tone));
    TextLine::paint(painter, capsule, text(), Qt::AlignHCenter);
    FocusRing::paint(painter, this, capsule, radius);
}
