// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QTimer>

class QWidget;

/// Sees to it that a window which was shown to write in is the one that hears the keys.
///
/// Where nobody has the keyboard a moment after the window was mapped it takes it: bspwm gives it
/// to nobody when the window is the first one on a workspace. And it makes a window active that got
/// the keyboard without Qt's noticing: Qt holds the loss of the keyboard back for 0.4 s. To a
/// window that is hidden and shown again within that time it never lost it, so that no widget in it
/// is told that it has the focus, and neither is a screen reader.
class FocusWatch final : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    /// The widget is the window, and the parent.
    explicit FocusWatch(QWidget &window);
    ~FocusWatch() override;

    /// The window was mapped just now, and the window manager may still give it the keyboard.
    [[nodiscard]] bool isWaiting() const noexcept { return m_mapped.isActive(); }

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

private:
    void takeUnclaimed();
    void activateUnnoticed();

    QWidget &m_window;
    QTimer m_mapped;
};
