// SPDX-License-Identifier: MIT
#pragma once

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

    /// Asks the window manager to activate it; a program that has quit meanwhile is passed over.
    virtual void activate(const RunningApplication &application) = 0;
};

/// Through the window manager (EWMH). Does nothing on another platform than X11.
class X11ApplicationFocus final : public ApplicationFocus {
public:
    [[nodiscard]] std::optional<RunningApplication> frontmost() const override;
    void activate(const RunningApplication &application) override;
};
