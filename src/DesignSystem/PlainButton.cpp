// SPDX-License-Identifier: MIT
#include "PlainButton.h"

#include "FocusRing.h"
#include "Metrics.h"
#include "Symbol.h"

#include <QPainter>
#include <QStyle>

PlainButton::PlainButton(const TextStyle &style, const QString &symbol, QWidget *parent)
    : ThemedButton(parent)
    , m_style(style)
    , m_symbol(symbol)
{
    setFont(style.font());
}

PlainButton *PlainButton::makeTab(QWidget *parent)
{
    auto *tab = new PlainButton(TextStyles::tab, {}, parent);
    tab->setCheckable(true);
    tab->setAutoExclusive(true);
    tab->m_padding = Metrics::tabPadding;
    return tab;
}

QSize PlainButton::sizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    QSize label(metrics.horizontalAdvance(text()), metrics.height());
    if (!m_symbol.isEmpty()) {
        const int extent = Symbol::extent(m_style.pixelSize);
        const int between = text().isEmpty() ? 0 : Metrics::plainButtonSpacing;
        label.rwidth() += extent + between;
        label.setHeight(std::max(label.height(), extent));
    }
    return label.grownBy(m_padding);
}

void PlainButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double radius = height() / 2.0;
    if (isChecked()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(NoteTheme::primary(palette(), Metrics::tabFill));
        painter.drawRoundedRect(rect(), radius, radius);
    }

    const Tone tone = isCheckable() && !isChecked() ? Tone::secondary : m_style.tone;
    const QColor color = NoteTheme::color(palette(), tone);
    painter.setOpacity(isEnabled() ? 1 : Metrics::disabledOpacity);
    QRect label = rect().marginsRemoved(m_padding);
    if (!m_symbol.isEmpty()) {
        const int extent = Symbol::extent(m_style.pixelSize);
        const QRect place(label.left(), 0, extent, height());
        Symbol::paint(painter, QStyle::visualRect(layoutDirection(), rect(), place), m_symbol,
                      m_style.pixelSize, color, m_style.weight);
        label.setLeft(label.left() + extent + Metrics::plainButtonSpacing);
    }
    painter.setFont(font());
    painter.setPen(color);
    painter.drawText(QStyle::visualRect(layoutDirection(), rect(), label),
                     Qt::AlignLeading | Qt::AlignVCenter, text());
    FocusRing::paint(painter, this, rect(), std::min(radius, Metrics::focusRingRadius));
}
