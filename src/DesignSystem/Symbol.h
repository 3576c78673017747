// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QFont>
#include <QIcon>
#include <QString>
#include <QWidget>

class QPainter;

/// The program's symbols, one drawing per name ("plus", "square.and.pencil"), in one grid and one
/// stroke, coloured where they are used.
namespace Symbol {

/// Draws the symbol centred in the rectangle, as tall as a symbol beside text of that pixel size.
void paint(QPainter &painter, const QRectF &rect, const QString &name, int pixelSize,
           const QColor &color);

/// An icon that takes its colours from the palette given: normal, and dimmed when disabled.
[[nodiscard]] QIcon icon(const QString &name, int pixelSize, const QColor &color);

} // namespace Symbol

/// A symbol as a view of its own, in the palette's colour or one of its own.
class SymbolView final : public QWidget
{
    Q_OBJECT

public:
    SymbolView(const QString &name, int pixelSize, QWidget *parent = nullptr);

    void setSymbol(const QString &name);
    /// An invalid colour: the palette's WindowText.
    void setColor(const QColor &color);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_name;
    int m_pixelSize;
    QColor m_color;
};
