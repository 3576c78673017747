// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>
#include <QtGlobal>
#include <optional>

/// A program's window that has, or had, the keyboard.
struct RunningApplication {
    quint32 window = 0;
    /// 0 when the window does not say.
    qint64 processId = 0;

    friend bool operator==(const RunningApplication &, const RunningApplication &) = default;
};

/// Who has the keyboard, and giving it back. An interface, so that the panels are tested without a
/// window manager.
class ApplicationFocus {
public:
    ApplicationFocus() = default;
    ApplicationFocus(const ApplicationFocus &) = delete;
    ApplicationFocus &operator=(const ApplicationFocus &) = delete;
    virtual ~ApplicationFocus() = default;

    /// Nothing when no X11 window is active, as under a native Wayland window.
    [[nodiscard]] virtual std::optional<RunningApplication> frontmost() const = 0;

    /// The last one that was frontmost since then and does not belong to this process.
    [[nodiscard]] virtual std::optional<RunningApplication> lastWorkedIn() const = 0;

    /// Gives it the keyboard. A program that has quit meanwhile is passed over, and so is a window
    /// that is minimised or on another workspace, which would come back or change the workspace.
    virtual void activate(const RunningApplication &application) = 0;
};

/// Through the window manager (EWMH), or the X server itself where there is none. Does nothing on
/// another platform than X11.
class X11ApplicationFocus final : public ApplicationFocus, public QAbstractNativeEventFilter {
public:
    X11ApplicationFocus();
    ~X11ApplicationFocus() override;

    [[nodiscard]] std::optional<RunningApplication> frontmost() const override;
    [[nodiscard]] std::optional<RunningApplication> lastWorkedIn() const override;
    void activate(const RunningApplication &application) override;

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

private:
    std::optional<RunningApplication> m_lastWorkedIn;
};
