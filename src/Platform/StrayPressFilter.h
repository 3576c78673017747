// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointF>
#include <QPointer>

class QMouseEvent;
class QWidget;
class QWindow;

/// Keeps the second press of a double click from what only the first one brought under the pointer:
/// from the editor that opened in the place of the launcher, from the row beneath a button that
/// saved. It was meant for what was there before.
///
/// Watches all windows of the program.
class StrayPressFilter final : public QObject {
    Q_OBJECT

public:
    explicit StrayPressFilter(QObject *parent = nullptr);

    bool eventFilter(QObject *receiver, QEvent *event) override;

private:
    [[nodiscard]] bool isStray(const QMouseEvent &press, const QWidget *pressed) const;

    /// The last press that was no stray one: when, where, and on what.
    quint64 m_time = 0;
    QPointF m_place;
    QPointer<QWidget> m_pressed;
    bool m_hasPress = false;
    /// What follows a stray press, up to its release, is not for anybody either.
    bool m_isStray = false;
};
