// SPDX-License-Identifier: MIT
#include "NotePrimaryButton.h"

#include "FocusRing.h"
#include "Metrics.h"
#include "Symbol.h"
#include "TextStyle.h"

#include <QPainter>
#include <QStyle>

namespace {

constexpr TextStyle labelStyle = TextStyles::primaryButton;

} // namespace

NotePrimaryButton::NotePrimaryButton(const QString &symbol, QWidget *parent)
    : ThemedButton(parent)
    , m_symbol(symbol)
{
    setFont(labelStyle.font());
}

QSize NotePrimaryButton::sizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    const int symbolWidth =
        m_symbol.isEmpty() ? 0
                           : Metrics::primaryButtonSpacing + Symbol::extent(labelStyle.pixelSize);
    const QSize label(metrics.horizontalAdvance(text()) + symbolWidth, metrics.height());
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
    const double ratio = devicePixelRatioF();
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
    QColor capsule = NoteTheme::accent();
    capsule.setAlphaF(isDown() ? static_cast<float>(Metrics::primaryButtonPressed) : 1.0F);
    const double radius = height() / 2.0;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(capsule);
    painter.drawRoundedRect(rect(), radius, radius);

    const QColor white = NoteTheme::color(palette(), labelStyle.tone);
    const QRect label = rect().marginsRemoved(Metrics::primaryButtonPadding);
    painter.setFont(font());
    painter.setPen(white);
    painter.drawText(label, Qt::AlignLeading | Qt::AlignVCenter, text());
    if (!m_symbol.isEmpty()) {
        const int extent = Symbol::extent(labelStyle.pixelSize);
        QRect place(0, 0, extent, height());
        place.moveRight(label.right());
        Symbol::paint(painter, QStyle::visualRect(layoutDirection(), rect(), place), m_symbol,
                      labelStyle.pixelSize, white, labelStyle.weight);
    }
    FocusRing::paint(painter, this, QRectF(rect()).marginsRemoved(QMarginsF(2, 2, 2, 2)),
                     radius - 2, white);
}
