// SPDX-License-Identifier: MIT
#include "QuietIconButton.h"

#include "AccessibleRole.h"
#include "FocusRing.h"
#include "Metrics.h"
#include "Symbol.h"

#include <QPainter>

QuietIconButton::QuietIconButton(const QString &symbol, QWidget *parent)
    : QuietIconButton(symbol, TextStyles::quietIcon.pixelSize, parent)
{
}

QuietIconButton::QuietIconButton(const QString &symbol, int pixelSize, QWidget *parent)
    : ThemedButton({pixelSize, TextStyles::quietIcon.weight, TextStyles::quietIcon.tone}, parent)
    , m_symbol(symbol)
{
}

void QuietIconButton::setSymbol(const QString &symbol)
{
    if (m_symbol == symbol)
        return;
    m_symbol = symbol;
    update();
}

void QuietIconButton::setLabel(const QString &label)
{
    setToolTip(label);
    setAccessibleText(this, label);
}

QSize QuietIconButton::sizeHint() const
{
    return Metrics::quietIconButton;
}

void QuietIconButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setOpacity(isEnabled() ? 1 : Metrics::disabledOpacity);
    Symbol::paint(painter, rect(), m_symbol, textStyle().pixelSize,
                  NoteTheme::color(palette(), textStyle().tone), textStyle().weight);
    FocusRing::paint(painter, this, rect(), Metrics::focusRingRadius);
}
