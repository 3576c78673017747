// SPDX-License-Identifier: MIT
#pragma once

#include "NoteTheme.h"

#include <QWidget>

/// A rounded rectangle behind its children, filled with a tone at an opacity: the error banner,
/// the search field.
class TintedFrame final : public QWidget {
    Q_OBJECT

public:
    TintedFrame(Tone tone, double opacity, double radius, QWidget *parent = nullptr);

    /// The same fill for views that draw themselves, such as the rows of a list.
    static void paint(QPainter &painter, const QRectF &rect, const QColor &fill, double radius);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Tone m_tone;
    double m_opacity;
    double m_radius;
};
