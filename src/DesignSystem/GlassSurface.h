// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QPainterPath;

/// The frosted rounded surface under the launcher and the workspace. Fills the space it is given;
/// put the content into it or over it. Opaque when the environment reduces transparency.
class GlassSurface : public QWidget
{
    Q_OBJECT

public:
    static constexpr double cornerRadius = 26;

    explicit GlassSurface(QWidget *parent = nullptr);

    /// A rounded rectangle with continuous corners.
    [[nodiscard]] static QPainterPath outline(const QRectF &rect, double radius = cornerRadius);

protected:
    void paintEvent(QPaintEvent *event) override;
};
