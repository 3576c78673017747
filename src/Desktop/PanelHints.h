// SPDX-License-Identifier: MIT
#pragma once

#include <Qt>
#include <cstdint>

class QImage;
class QPoint;
class QRegion;
class QWidget;

/// What the X server and the window manager must know of the two panels. Does nothing on another
/// platform than X11. docs/ARCHITECTURE.md says why the bubble bypasses the window manager and the
/// editor does not.
namespace PanelHints {

/// The number that stands for every workspace; EWMH, _NET_WM_DESKTOP.
inline constexpr uint32_t onAllDesktops = 0xFFFFFFFF;

/// Every panel: no frame, above the others, no shadow, which most window managers would draw
/// around the rectangle and not around the visible shape.
///
/// Launcher: it is in no window manager's care (X11BypassWindowManagerHint), which is the only
/// kind of window that all of them leave above full-screen windows, at its place and without the
/// keyboard. WindowDoesNotAcceptFocus keeps Qt from asking for the keyboard on a click.
[[nodiscard]] Qt::WindowFlags launcherFlags();

/// Editor: managed, since some window managers never give the keyboard to a window that is not,
/// and a Tool, since those are not listed among the user's windows.
[[nodiscard]] Qt::WindowFlags editorFlags();

/// Window type of the bubble; before show().
void prepareLauncher(QWidget &panel);

/// Above all windows, on every workspace, in no taskbar or pager. Before every show(), and once
/// more after it, since some window managers read only one of the two.
void prepareEditor(QWidget &panel);
void afterShowingEditor(QWidget &panel);

/// Whether a menu sees no key and no click that goes to another program's window and would stay
/// open: in a Wayland session, where native windows are outside the X server.
[[nodiscard]] bool menusMissEvents();

/// Whether a menu can be a window in the window manager's care instead, which is given the
/// keyboard: not with compositors of wlroots, which would put it into the middle of the screen.
[[nodiscard]] bool menusCanBeWindows();

/// What makes a compositor of wlroots give the keyboard to a menu that is no such window; before
/// show().
void prepareMenu(QWidget &menu);

/// Whether the pointer is on a window of the X server, and not on a native one of a Wayland
/// session.
[[nodiscard]] bool hasPointer();

/// Takes the keyboard for the panel, as the answer to what the user just did.
void activate(QWidget &panel);

/// Moves the window to the place that was meant, in Qt's global coordinates, when the window
/// manager put it elsewhere: i3 takes a place for that of its frame, not of the window in it.
/// True when it had to be moved.
bool correctPosition(QWidget &panel, QPoint place);

/// Where an image in one of the 32-bit formats with alpha is opaque but for a trace, in its pixels.
[[nodiscard]] QRegion opaquePart(const QImage &image);

/// Cuts the window to a region in device pixels; an empty one gives it its whole rectangle back.
void cutOut(QWidget &panel, const QRegion &region);

/// Asks for what lies behind that part of the window to be blurred, in device pixels; an empty
/// region asks for nothing.
void blurBehind(QWidget &panel, const QRegion &region);

} // namespace PanelHints
