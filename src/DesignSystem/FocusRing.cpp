// SPDX-License-Identifier: MIT
#include "FocusRing.h"

#include "Metrics.h"
#include "NoteTheme.h"

#include <QPainter>
#include <QWidget>

bool FocusRing::isWanted(const QWidget *view)
{
    return view->hasFocus() && view->window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

void FocusRing::paint(QPainter &painter, const QWidget *view, const QRectF &rect, double radius,
                      const QColor &color)
{
    if (!isWanted(view))
        return;
    constexpr double inset = Metrics::focusRingWidth / 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(color.isValid() ? color : NoteTheme::color(view->palette(), Tone::accent),
                        Metrics::focusRingWidth));
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius - inset,
                            radius - inset);
    painter.restore();
}
