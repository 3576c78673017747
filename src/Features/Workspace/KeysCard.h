// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QWidget>

class AppPreferences;
class QGridLayout;

/// The keys of the program, over the whole of a window until any key or click.
class KeysCard final : public QWidget {
    Q_OBJECT

public:
    /// Shows itself; deletes itself when it is closed, and gives the keyboard back.
    KeysCard(const AppPreferences &preferences, QWidget *window);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void fill();
    void close();

    const AppPreferences &m_preferences;
    const QPointer<QWidget> m_hadFocus;
    QWidget *const m_card;
};
