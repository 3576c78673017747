// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QTimer>
#include <chrono>

class QWidget;

/// Notices that a window which is meant to be on the screen is not: minimised, unmapped, destroyed,
/// left behind on another workspace or beside every screen, or wholly under another program's.
///
/// Sleeps until the X server tells of a change. Silent while the widget is hidden, and on another
/// platform than X11.
class PresenceWatch final : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    /// Windows come and go for a moment while they are shown, restacked, or taken over by another
    /// window manager. What lasts as long as this is no such moment.
    static constexpr std::chrono::milliseconds patience{1000};

    enum class Care {
        /// Nobody else shows or hides the window: when it is gone, that will not pass.
        unmanaged,
        managed,
    };

    /// The widget is the window, and the parent.
    PresenceWatch(QWidget &window, Care care);
    ~PresenceWatch() override;

    bool eventFilter(QObject *receiver, QEvent *event) override;
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

Q_SIGNALS:
    /// Shown, as far as the widget knows, and not on the screen: at once when it was minimised, or
    /// else after the patience. Told again when that lasts after a next change.
    void lost();

    /// The X window does not exist any more. The widget does not know.
    void windowDestroyed();

private:
    enum class Presence { here, away, minimised };

    void scheduleCheck();
    void check(bool isPatienceOver);
    [[nodiscard]] Presence presence() const;

    QWidget &m_window;
    const Care m_care;
    QTimer m_patience;
    bool m_isCheckScheduled = false;
    bool m_isAway = false;
    /// Since it was last shown.
    bool m_hadKeyboard = false;
};
