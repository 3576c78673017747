// SPDX-License-Identifier: MIT
#include "SymbolView.h"

#include "Symbol.h"

#include <QPainter>

SymbolView::SymbolView(const QString &name, const TextStyle &style, QWidget *parent)
    : QWidget(parent)
    , m_name(name)
    , m_style(style)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void SymbolView::setSymbol(const QString &name)
{
    if (m_name == name)
        return;
    m_name = name;
    update();
}

QSize SymbolView::sizeHint() const
{
    return Symbol::size(m_style.pixelSize);
}

void SymbolView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    Symbol::paint(painter, rect(), m_name, m_style.pixelSize,
                  NoteTheme::color(palette(), m_style.tone), m_style.weight);
}
