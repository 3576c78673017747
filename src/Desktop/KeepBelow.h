// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>
#include <QTimer>
#include <QWindow>

class QWidget;

/// Keeps a window that no window manager cares for right below a widget's window, however the
/// others are restacked. Sleeps until the window manager reports such a change, or the X server
/// that somebody moved the window.
///
/// Mutter insists on having such windows on top of all, and has its way in the end. Who is to be
/// kept below is better empty where the widget's window is.
class KeepBelow final : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    /// The lower window is the parent, and has been made.
    KeepBelow(QWindow &lower, const QWidget &upper);
    ~KeepBelow() override;

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

private:
    void restack();

    QWindow &m_lower;
    const QWidget &m_upper;
    int m_correctionsLeft;
    QTimer m_quiet;
};
