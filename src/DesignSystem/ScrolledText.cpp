// SPDX-License-Identifier: MIT
#include "ScrolledText.h"

#include "FocusRing.h"
#include "Metrics.h"
#include "SlimScrollBar.h"
#include "TextLabel.h"

#include <QPainter>
#include <algorithm>

ScrolledText::ScrolledText(TextLabel *text, int mostLines, QWidget *parent)
    : QScrollArea(parent)
    , m_text(text)
    , m_mostLines(mostLines)
{
    m_text->setWraps(true);
    setWidget(m_text);
    setWidgetResizable(true);
    m_text->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    setFrameStyle(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBar(new SlimScrollBar(this));
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setFocusPolicy(Qt::NoFocus);
    FocusRing::watch(this);
    connect(verticalScrollBar(), &QScrollBar::rangeChanged, this,
            [this](int, int last) { setFocusPolicy(last > 0 ? Qt::TabFocus : Qt::NoFocus); });
}

void ScrolledText::showFromTop()
{
    verticalScrollBar()->setValue(0);
    updateGeometry();
}

int ScrolledText::heightOf(int lines) const
{
    return lines * m_text->fontMetrics().height() + (lines - 1) * Metrics::paragraphLineSpacing;
}

QSize ScrolledText::sizeHint() const
{
    return {m_text->sizeHint().width(), heightForWidth(m_text->sizeHint().width())};
}

QSize ScrolledText::minimumSizeHint() const
{
    return {0, heightOf(1)};
}

int ScrolledText::heightForWidth(int width) const
{
    const int height = m_text->heightForWidth(width);
    return std::min(height, heightOf(m_mostLines));
}

void ScrolledText::paintEvent(QPaintEvent *)
{
    QPainter painter(viewport());
    FocusRing::paint(painter, this, viewport()->rect(), Metrics::focusRingRadius);
}
