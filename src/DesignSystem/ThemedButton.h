// SPDX-License-Identifier: MIT
#pragma once

#include "TextStyle.h"

#include <QAbstractButton>

/// What all buttons of the program share: a click leaves the keyboard where it is, Tab reaches
/// them, Space and Return press them.
class ThemedButton : public QAbstractButton {
    Q_OBJECT

public:
    explicit ThemedButton(const TextStyle &style, QWidget *parent = nullptr);

    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    /// Of the text, and of the symbol beside it.
    [[nodiscard]] const TextStyle &textStyle() const noexcept { return m_style; }

    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    TextStyle m_style;
};
