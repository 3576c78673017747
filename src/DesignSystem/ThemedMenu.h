// SPDX-License-Identifier: MIT
#pragma once

#include <QMenu>

/// A menu in the colours of the view that it belongs to, which as a window of its own it would not
/// inherit.
class ThemedMenu final : public QMenu {
    Q_OBJECT

public:
    explicit ThemedMenu(QWidget *owner);

protected:
    void showEvent(QShowEvent *event) override;
};
