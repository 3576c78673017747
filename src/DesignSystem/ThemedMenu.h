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

    /// Makes it a window that is given the keyboard like others, in place of a popup, and closes
    /// when it loses it: for where a popup hears of no key and of no click elsewhere. Before it is
    /// shown.
    void becomeWindow();

    bool eventFilter(QObject *receiver, QEvent *event) override;

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void takeLook();
};
