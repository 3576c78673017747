// SPDX-License-Identifier: MIT
#pragma once

#include <QMenu>

/// A menu in the program's own look and in the colours of the view that it belongs to, which as a
/// window of its own it would not inherit. Follows that view while it is open.
///
/// It has its look before it is placed, so that it comes onto the screen in its real size.
class ThemedMenu final : public QMenu {
    Q_OBJECT

public:
    explicit ThemedMenu(QWidget *owner);

    bool eventFilter(QObject *receiver, QEvent *event) override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void takeLook();
};
