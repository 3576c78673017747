// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractButton>

/// A symbol of 13 points in a 30 × 30 square that takes clicks everywhere; no bezel.
/// The label is its tooltip and its accessible name.
class QuietIconButton final : public QAbstractButton
{
    Q_OBJECT

public:
    QuietIconButton(const QString &symbol, int pixelSize = 13, QWidget *parent = nullptr);

    void setSymbol(const QString &symbol);

    /// Already translated.
    void setLabel(const QString &label);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_symbol;
    int m_pixelSize;
};
