// SPDX-License-Identifier: MIT
#pragma once

#include "ColorScheme.h"

#include <QWidget>

class QPainterPath;

/// The frosted rounded surface under the launcher and the workspace. Fills the space it is given;
/// put the content into it or over it. Opaque when the environment reduces transparency.
///
/// Under the tint lies, in place of a live blur, a translucent backdrop: dense enough that every
/// text of the program can be read over any wallpaper. What the layers give together is one
/// colour, so that repainting the inside, as at each key stroke, is a plain fill.
class GlassSurface : public QWidget {
    Q_OBJECT

public:
    static constexpr double cornerRadius = 26;

    explicit GlassSurface(QWidget *parent = nullptr);

    /// A rounded rectangle with continuous corners.
    [[nodiscard]] static QPainterPath outline(const QRectF &rect, double radius = cornerRadius);

    /// All layers inside the border as one colour.
    [[nodiscard]] static QColor fill(ColorScheme scheme, bool isOpaque);

    /// The same in the palette's scheme and contrast.
    [[nodiscard]] static QColor fill(const QPalette &palette, bool isOpaque);
    [[nodiscard]] static QColor border(ColorScheme scheme);

    /// Draws a surface anywhere, for views that scale it.
    static void paint(QPainter &painter, const QRectF &rect, const QPalette &palette,
                      bool isOpaque);

    /// The surface of a view: in the colours of its palette, opaque when its environment says so.
    static void paint(QPainter &painter, const QRectF &rect, const QWidget *view);

    /// The opaque surface of a small window: a menu, a tooltip.
    static void paintPanel(QPainter &painter, const QRect &rect, double radius,
                           const QPalette &palette, QPalette::ColorRole fill);

    /// What such a window is to be cut out to where nothing is composited, since what is
    /// translucent would be black there; empty where its corners can be. Of the view's environment.
    [[nodiscard]] static QRegion windowMask(const QRect &rect, double radius, const QWidget *view);

    /// An opaque card over a window that waits, which the cover darkens.
    static void paintCard(QWidget *cover, const QRect &card);

protected:
    void paintEvent(QPaintEvent *event) override;
};
