// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

/// A hairline across its width in the primary style at 6 %.
class Divider final : public QWidget {
    Q_OBJECT

public:
    explicit Divider(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};
