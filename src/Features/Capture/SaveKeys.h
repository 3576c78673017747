// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QKeyEvent;
class QWidget;

/// The keys that save, wherever in the view's window the keyboard is: Ctrl+Return and
/// Super+Return, also with the Enter key of the keypad. Holding them saves once.
///
/// Not a QShortcut: Qt hands those out as soon as they arrive from the X server, before the letters
/// that were typed ahead of them and still wait. On a busy computer it would save half a thought.
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
