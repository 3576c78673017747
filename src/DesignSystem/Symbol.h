// SPDX-License-Identifier: MIT
#pragma once

#include "TextStyle.h"

#include <QColor>
#include <QFont>
#include <QIcon>
#include <QString>
#include <QStringList>
#include <QWidget>

class QPainter;

/// The program's symbols, one drawing per name ("plus", "square.and.pencil"), in one grid and one
/// stroke, coloured where they are used.
namespace Symbol {

/// Every name that can be drawn.
[[nodiscard]] QStringList names();

/// The side of the square that a symbol beside text of that pixel size takes.
[[nodiscard]] int extent(int pixelSize);

/// Draws the symbol centred in the rectangle, as tall as a symbol beside text of that pixel size,
/// in strokes that suit text of that weight.
void paint(QPainter &painter, const QRectF &rect, const QString &name, int pixelSize,
           const QColor &color, QFont::Weight weight = QFont::Normal);

/// An icon in that colour: normal, and dimmed when disabled.
[[nodiscard]] QIcon icon(const QString &name, int pixelSize, const QColor &color);

} // namespace Symbol

/// A symbol as a view of its own, in the tone of its style or in a colour of its own.
class SymbolView final : public QWidget {
    Q_OBJECT

public:
    SymbolView(const QString &name, const TextStyle &style, QWidget *parent = nullptr);
    SymbolView(const QString &name, int pixelSize, QWidget *parent = nullptr);

    void setSymbol(const QString &name);
    [[nodiscard]] const QString &symbol() const noexcept { return m_name; }

    /// An invalid colour: the palette's colour for the style's tone.
    void setColor(const QColor &color);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_name;
    TextStyle m_style;
    QColor m_color;
};
