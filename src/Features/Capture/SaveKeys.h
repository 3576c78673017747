// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QKeyEvent;
class QWidget;

/// The keys that save, wherever in the view's window the keyboard is: Ctrl+Return and
/// Super+Return, also with the Enter key of the keypad. Holding them saves once.
///
/// Not a QShortcut: while assistive technology is in use Qt holds each letter back until that has
/// answered, but lets shortcuts pass. Half a thought would be saved. Keys keep their order.
class SaveKeys final : public QObject {
    Q_OBJECT

public:
    explicit SaveKeys(QWidget *view);

    void setEnabled(bool isEnabled) noexcept { m_isEnabled = isEnabled; }

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void pressed();

private:
    QWidget *const m_view;
    bool m_isEnabled = true;
};
