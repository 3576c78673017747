// SPDX-License-Identifier: MIT
#pragma once

#include "ThemedButton.h"

/// One answer of an alert: text on a capsule, both in the tone of the style.
class AlertButton final : public ThemedButton {
    Q_OBJECT

public:
    explicit AlertButton(const TextStyle &style, QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};
