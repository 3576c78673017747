// SPDX-License-Identifier: MIT
#pragma once

#include "TextStyle.h"

#include <QWidget>

/// A symbol as a view of its own in the tone of its style.
class SymbolView final : public QWidget {
    Q_OBJECT

public:
    SymbolView(const QString &name, const TextStyle &style, QWidget *parent = nullptr);

    void setSymbol(const QString &name);
    [[nodiscard]] const QString &symbol() const noexcept { return m_name; }

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_name;
    TextStyle m_style;
};
