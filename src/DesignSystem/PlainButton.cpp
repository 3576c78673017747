// SPDX-License-Identifier: MIT
#include "PlainButton.h"

#include "FocusRing.h"
#include "Metrics.h"
#include "Symbol.h"
#include "TextLine.h"

#include <QPainter>
#include <QStyle>

PlainButton::PlainButton(const TextStyle &style, const QString &symbol, QWidget *parent)
    : ThemedButton(style, parent)
    , m_symbol(symbol)
{
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
    QSize label = TextLine::size(fontMetrics(), text());
    if (!m_symbol.isEmpty()) {
        const QSize symbol = Symbol::size(textStyle().pixelSize);
        const int between = text().isEmpty() ? 0 : Metrics::plainButtonSpacing;
        label.rwidth() += symbol.width() + between;
        label.setHeight(std::max(label.height(), symbol.height()));
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
        painter.setBrush(NoteTheme::color(palette(), Tone::primary, Metrics::tabFill));
        painter.drawRoundedRect(rect(), radius, radius);
    }

    const Tone tone = isCheckable() && !isChecked() ? Tone::secondary : textStyle().tone;
    const QColor color = NoteTheme::color(palette(), tone);
    painter.setOpacity(isEnabled() ? 1 : Metrics::disabledOpacity);
    QRect label = rect().marginsRemoved(m_padding);
    if (!m_symbol.isEmpty()) {
        const int symbolWidth = Symbol::size(textStyle().pixelSize).width();
        const QRect place(label.left(), 0, symbolWidth, height());
        Symbol::paint(painter, QStyle::visualRect(layoutDirection(), rect(), place), m_symbol,
                      textStyle().pixelSize, color, textStyle().weight);
        label.setLeft(label.left() + symbolWidth + Metrics::plainButtonSpacing);
    }
    painter.setFont(font());
    painter.setPen(color);
    TextLine::paint(painter, QStyle::visualRect(layoutDirection(), rect(), label), text());
    FocusRing::paint(painter, this, rect(), std::min(radius, Metrics::focusRingRadius));
}
