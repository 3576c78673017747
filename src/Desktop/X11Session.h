// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <optional>
#include <string>
#include <string_view>
#include <vector>
#include <xcb/xcb_ewmh.h>

class QWidget;

/// Qt's own connection to the X server with what this layer needs beside it. Internal to Desktop,
/// and part of the one application object, as that connection is.
///
/// Also keeps the time of the last key or button, in the server's clock: window managers allow a
/// window to take the keyboard only as the answer to something the user did.
class X11Session final : public QObject {
    Q_OBJECT

public:
    /// Null on another platform than X11. Lives as long as the application.
    [[nodiscard]] static X11Session *current();
    ~X11Session() override;

    [[nodiscard]] xcb_connection_t *connection() const noexcept { return m_ewmh.connection; }
    [[nodiscard]] xcb_window_t root() const noexcept;
    [[nodiscard]] xcb_ewmh_connection_t &ewmh() noexcept { return m_ewmh; }

    /// The selection whose owner is the compositing manager.
    [[nodiscard]] xcb_atom_t compositorSelection() const noexcept;

    /// WM_STATE, where a window manager says what it has made of a window.
    [[nodiscard]] xcb_atom_t stateProperty() const noexcept { return m_stateProperty; }

    /// The first number in a property; nothing when there is none.
    [[nodiscard]] std::optional<uint32_t> value(xcb_window_t window, xcb_atom_t property) const;

    [[nodiscard]] bool isMinimised(xcb_window_t window);

    /// The time to give for something that happens now because of the user.
    [[nodiscard]] xcb_timestamp_t userTime() const;

    /// The server's number for a name; XCB_ATOM_NONE on another platform than X11.
    [[nodiscard]] static xcb_atom_t atom(std::string_view name);

    /// The X window of a top-level widget.
    [[nodiscard]] static xcb_window_t window(const QWidget &widget);

    /// The frame that a window manager has put around a window, or the window itself.
    [[nodiscard]] static xcb_window_t outermost(xcb_window_t window);

    /// As the window manager calls itself; empty without one.
    [[nodiscard]] std::string windowManager();

    /// As compositors of wlroots do.
    static constexpr auto wlroots = "wlroots wm";

    /// Whether the server is part of a Wayland session, with native windows that it knows nothing
    /// of.
    [[nodiscard]] static bool isInWayland();

    /// The windows directly in that one, lowest first.
    [[nodiscard]] std::vector<xcb_window_t> children(xcb_window_t window) const;

    /// Moves a window on the root right below another one's frame.
    void putBelow(xcb_window_t window, xcb_window_t other) const;

    /// Whether another window was activated, or windows restacked, by what the window manager says.
    [[nodiscard]] bool tellsOfOtherWindows(const xcb_generic_event_t &event) const noexcept;

    /// What kind an event is, also one that another program sent.
    [[nodiscard]] static uint8_t eventType(const xcb_generic_event_t &event) noexcept;

    bool eventFilter(QObject *receiver, QEvent *event) override;

private:
    explicit X11Session(xcb_connection_t *connection);

    xcb_ewmh_connection_t m_ewmh{};
    xcb_atom_t m_stateProperty = XCB_ATOM_NONE;
    xcb_timestamp_t m_lastInput = XCB_CURRENT_TIME;
    QElapsedTimer m_sinceLastInput;
};
