// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

class QWidget;

/// Raises a window that no window manager cares for, whenever another window was activated or
/// restacked; under a question of the program itself it stays, right below that. Sleeps until the
/// window manager reports such a change; raising it reports none.
class KeepOnTop final : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    /// The widget is the window, and the parent.
    explicit KeepOnTop(QWidget &window);
    ~KeepOnTop() override;

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

private:
    QWidget &m_window;
};
