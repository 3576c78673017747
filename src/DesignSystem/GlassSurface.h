// SPDX-License-Identifier: MIT
#pragma once

#include <QPixmap>
#include <QWidget>

class QPainterPath;
enum class ColorScheme;

/// The frosted rounded surface under the launcher and the workspace. Fills the space it is given;
/// put the content into it or over it. Opaque when the environment reduces transparency.
///
/// Behind the tint lies, in place of a live blur, a translucent backdrop: dense enough that every
/// text of the program can be read over any wallpaper.
class GlassSurface : public QWidget {
    Q_OBJECT

public:
    static constexpr double cornerRadius = 26;

    explicit GlassSurface(QWidget *parent = nullptr);

    /// A rounded rectangle with continuous corners: see ContinuousCorners.h.
    [[nodiscard]] static QPainterPath outline(const QRectF &rect, double radius = cornerRadius);

    /// Draws a surface anywhere, for views that scale it.
    static void paint(QPainter &painter, const QRectF &rect, ColorScheme scheme, bool isOpaque);

    /// What all layers together leave on the screen inside the border; translucent unless opaque.
    [[nodiscard]] static QColor fill(ColorScheme scheme, bool isOpaque);
    [[nodiscard]] static QColor border(ColorScheme scheme);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    /// The surface at the size of its corners; the rest is stretched from its middle.
    QPixmap m_corners;
    qint64 m_cornersKey = -1;
};
