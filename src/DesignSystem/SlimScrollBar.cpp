// SPDX-License-Identifier: MIT
#include "SlimScrollBar.h"

#include "Metrics.h"
#include "NoteTheme.h"

#include <QPainter>
#include <QProxyStyle>
#include <QStyleOptionSlider>

namespace {

/// Geometry and look together, so that the mouse finds the thumb where it is drawn.
class SlimScrollBarStyle final : public QProxyStyle {
public:
    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override
    {
        switch (metric) {
        case PM_ScrollBarExtent:
            return Metrics::scrollBarWidth;
        case PM_ScrollBarSliderMin:
            return Metrics::scrollThumbMinimum;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }

    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                         const QWidget *widget) const override
    {
        const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
        if (control != CC_ScrollBar || !bar)
            return QProxyStyle::subControlRect(control, option, part, widget);

        const QRect groove = bar->rect;
        const int range = bar->maximum - bar->minimum;
        const int length = range == 0
                               ? groove.height()
                               : std::max(Metrics::scrollThumbMinimum,
                                          static_cast<int>(qint64(groove.height()) * bar->pageStep /
                                                           (qint64(range) + bar->pageStep)));
        const int top =
            groove.top() + sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition,
                                                   groove.height() - length);
        switch (part) {
        case SC_ScrollBarGroove:
            return groove;
        case SC_ScrollBarSlider:
            return {groove.left(), top, groove.width(), length};
        case SC_ScrollBarSubPage:
            return {groove.topLeft(), QPoint(groove.right(), top - 1)};
        case SC_ScrollBarAddPage:
            return {QPoint(groove.left(), top + length), groove.bottomRight()};
        default:
            return {};
        }
    }

    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                            QPainter *painter, const QWidget *widget) const override
    {
        const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
        if (control != CC_ScrollBar || !bar) {
            QProxyStyle::drawComplexControl(control, option, painter, widget);
            return;
        }
        if (bar->minimum == bar->maximum)
            return;
        const bool isHeld = bar->state & (State_MouseOver | State_Sunken);
        const QRectF thumb = QRectF(subControlRect(control, option, SC_ScrollBarSlider, widget))
                                 .marginsRemoved(QMarginsF(Metrics::scrollThumbInset, 0,
                                                           Metrics::scrollThumbInset, 0));
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(NoteTheme::color(bar->palette, Tone::primary,
                                           isHeld ? Metrics::scrollThumbHeldOpacity
                                                  : Metrics::scrollThumbOpacity));
        painter->drawRoundedRect(thumb, thumb.width() / 2, thumb.width() / 2);
        painter->restore();
    }
};

} // namespace

SlimScrollBar::SlimScrollBar(QWidget *parent)
    : QScrollBar(Qt::Vertical, parent)
{
    auto *slim = new SlimScrollBarStyle;
    slim->setParent(this);
    setStyle(slim);
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    setAttribute(Qt::WA_Hover);
}
