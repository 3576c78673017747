// SPDX-License-Identifier: MIT
#include "ProgramStyle.h"

#include "GlassSurface.h"
#include "Metrics.h"
#include "TextStyle.h"

#include <QStyleOption>
#include <QWidget>

using namespace Qt::Literals::StringLiterals;

ProgramStyle::ProgramStyle()
    : QProxyStyle("Fusion"_L1)
{
}

void ProgramStyle::polish(QWidget *widget)
{
    QProxyStyle::polish(widget);
    // Qt's own class, which has no other name; here its window is not made yet.
    if (!widget->inherits("QTipLabel"))
        return;
    widget->setAttribute(Qt::WA_TranslucentBackground);
    widget->setWindowFlag(Qt::NoDropShadowWindowHint);
    const QWidget *const owner = widget->parentWidget();
    widget->setFont(TextStyles::tooltip.font(owner ? owner->locale() : QLocale()));
}

void ProgramStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option,
                                 QPainter *painter, const QWidget *widget) const
{
    if (element == PE_PanelTipLabel)
        GlassSurface::paintPanel(*painter, option->rect, Metrics::tooltipRadius, option->palette,
                                 QPalette::ToolTipBase);
    else
        QProxyStyle::drawPrimitive(element, option, painter, widget);
}

int ProgramStyle::pixelMetric(PixelMetric metric, const QStyleOption *option,
                              const QWidget *widget) const
{
    return metric == PM_ToolTipLabelFrameWidth ? Metrics::tooltipPadding
                                               : QProxyStyle::pixelMetric(metric, option, widget);
}

int ProgramStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                            QStyleHintReturn *returned) const
{
    if (hint != SH_ToolTip_Mask)
        return QProxyStyle::styleHint(hint, option, widget, returned);
    const QRegion mask = GlassSurface::windowMask(option->rect, Metrics::tooltipRadius, widget);
    if (auto *const answer = qstyleoption_cast<QStyleHintReturnMask *>(returned))
        answer->region = mask;
    return mask.isEmpty() ? 0 : 1;
}
