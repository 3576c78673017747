// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

/// The style of the application: Fusion, the one that takes all its colours from the palette, dark
/// or light, with tooltips in the look of the menus.
class ProgramStyle final : public QProxyStyle {
    Q_OBJECT

public:
    ProgramStyle();

    using QProxyStyle::polish;
    void polish(QWidget *widget) override;

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returned) const override;
};
