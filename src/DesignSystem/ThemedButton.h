// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractButton>

/// What all buttons of the program share: a click leaves the keyboard where it is, Tab reaches
/// them, Space and Return press them.
class ThemedButton : public QAbstractButton {
    Q_OBJECT

public:
    explicit ThemedButton(QWidget *parent = nullptr);

    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void keyPressEvent(QKeyEvent *event) override;
};
