// SPDX-License-Identifier: MIT
#pragma once

#include "TextStyle.h"

#include <QWidget>

/// A symbol as a view of its own, in the tone of its style or in a colour of its own.
class SymbolView final : public QWidget {
    Q_OBJECT

public:
    SymbolView(const QString &name, const TextStyle &style, QWidget *parent = nullptr);

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
