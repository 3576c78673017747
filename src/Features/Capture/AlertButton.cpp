// SPDX-License-Identifier: MIT
#include "AlertButton.h"

#include "FocusRing.h"
#include "Metrics.h"

#include <QPainter>

AlertButton::AlertButton(const TextStyle &style, QWidget *parent)
    : ThemedButton(parent)
    , m_style(style)
{
    setFont(style.font());
}

QSize AlertButton::sizeHint() const
{
    const QSize textSize = fontMetrics().size(Qt::TextSingleLine, text());
    return textSize.grownBy(Metrics::alertButtonPadding);
}

void AlertButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);

    const QColor color = NoteTheme::color(palette(), m_style.tone);
    QColor fill = color;
    fill.setAlphaF(
        static_cast<float>(isDown() ? Metrics::alertButtonPressedFill : Metrics::alertButtonFill));
    const QRectF capsule(rect());
    const double radius = capsule.height() / 2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(capsule, radius, radius);

    painter.setPen(color);
    painter.drawText(capsule, Qt::AlignCenter | Qt::TextSingleLine, text());
    FocusRing::paint(painter, this, capsule, radius);
}
