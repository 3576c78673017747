// SPDX-License-Identifier: MIT
#include "NotePrimaryButton.h"

#include "FocusRing.h"
#include "Metrics.h"
#include "Symbol.h"
#include "TextLine.h"

#include <QPainter>
#include <QStyle>

NotePrimaryButton::NotePrimaryButton(const QString &symbol, QWidget *parent)
    : ThemedButton(TextStyles::primaryButton, parent)
    , m_symbol(symbol)
{
}

QSize NotePrimaryButton::sizeHint() const
{
    QSize label = TextLine::size(fontMetrics(), text());
    if (!m_symbol.isEmpty())
        label.rwidth() +=
            Metrics::primaryButtonSpacing + Symbol::size(textStyle().pixelSize).width();
    return label.grownBy(Metrics::primaryButtonPadding);
}

void NotePrimaryButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (isEnabled()) {
        drawCapsule(painter);
        return;
    }
    // Dimmed as a whole: text that were dimmed by itself would let the capsule through.
    const double ratio = painter.device()->devicePixelRatio();
    QPixmap whole(size() * ratio);
    whole.setDevicePixelRatio(ratio);
    whole.fill(Qt::transparent);
    QPainter wholePainter(&whole);
    drawCapsule(wholePainter);
    wholePainter.end();
    painter.setOpacity(Metrics::disabledOpacity);
    painter.drawPixmap(0, 0, whole);
}

void NotePrimaryButton::drawCapsule(QPainter &painter) const
{
    const QColor capsule =
        NoteTheme::color(palette(), Tone::accent, isDown() ? Metrics::primaryButtonPressed : 1.0);
    const double radius = height() / 2.0;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(capsule);
    painter.drawRoundedRect(rect(), radius, radius);

    const QColor ink = NoteTheme::color(palette(), textStyle().tone);
    QRect label = rect().marginsRemoved(Metrics::primaryButtonPadding);
    if (!m_symbol.isEmpty()) {
        const int symbolWidth = Symbol::size(textStyle().pixelSize).width();
        const QRect place(label.right() + 1 - symbolWidth, 0, symbolWidth, height());
        Symbol::paint(painter, QStyle::visualRect(layoutDirection(), rect(), place), m_symbol,
                      textStyle().pixelSize, ink, textStyle().weight);
        label.setRight(place.left() - 1 - Metrics::primaryButtonSpacing);
    }
    painter.setFont(font());
    painter.setPen(ink);
    TextLine::paint(painter, QStyle::visualRect(layoutDirection(), rect(), label), text());

    constexpr int inset = Metrics::focusRingInset;
    FocusRing::paint(painter, this, rect().adjusted(inset, inset, -inset, -inset), radius - inset,
                     ink);
}
