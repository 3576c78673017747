// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QWidget>
#include <algorithm>
#include <array>
#include <cmath>

/// What pixel tests measure: colours over each other, contrast, and what a view draws.
namespace Pixels {

/// Colours with an opacity in double precision, one over the other.
inline QColor over(const QColor &above, const QColor &below)
{
    const float rest = 1 - above.alphaF();
    return QColor::fromRgbF(above.redF() * above.alphaF() + below.redF() * rest,
                            above.greenF() * above.alphaF() + below.greenF() * rest,
                            above.blueF() * above.alphaF() + below.blueF() * rest);
}

/// The contrast ratio of WCAG 2 between two opaque colours, from 1 to 21.
inline double contrast(const QColor &one, const QColor &other)
{
    const auto luminance = [](const QColor &color) {
        const auto linear = [](double channel) {
            return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF());
    };
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

/// The view as it is drawn over nothing, or over a colour.
inline QImage draw(QWidget &view, double ratio = 1, const QColor &ground = Qt::transparent)
{
    QImage image(view.size() * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(ground);
    view.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

/// The smallest rectangle around all pixels that are drawn, in pixels of the image.
inline QRect inkBounds(const QImage &image)
{
    QRect bounds;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).alpha() > 0)
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

/// How far from both edges of the image, in points, a filled shape begins on the diagonal of one
/// corner. A corner of radius r begins at 0.293 r.
inline double cornerCut(const QImage &image, bool isRight, bool isBottom)
{
    int cut = 0;
    while (cut < image.width() && cut < image.height() &&
           image.pixelColor(isRight ? image.width() - 1 - cut : cut,
                            isBottom ? image.height() - 1 - cut : cut)
                   .alpha() == 0)
        ++cut;
    return cut / image.devicePixelRatio();
}

/// The same to within what rounding of 8-bit colours explains.
inline bool isAlike(const QColor &one, const QColor &other, int tolerance = 2)
{
    return std::abs(one.red() - other.red()) <= tolerance &&
           std::abs(one.green() - other.green()) <= tolerance &&
           std::abs(one.blue() - other.blue()) <= tolerance &&
           std::abs(one.alpha() - other.alpha()) <= tolerance;
}

} // namespace Pixels
