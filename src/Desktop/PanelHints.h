// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

/// What the window manager must know of the two panels. Does nothing on another platform than X11.
/// docs/ARCHITECTURE.md says why the bubble bypasses the window manager and the editor does not.
namespace PanelHints {

/// Above all windows, on every workspace, in no taskbar or pager. Before every show(), and once
/// more after it, since some window managers read only one of the two.
void prepareEditor(QWidget &panel);
void afterShowingEditor(QWidget &panel);

/// Takes the keyboard for the panel, as the answer to what the user just did.
void activate(QWidget &panel);

/// Window type and states of the bubble; before show().
void prepareLauncher(QWidget &panel);

/// Moves the window to where the widget believes it is, when the window manager put it elsewhere.
void correctPosition(QWidget &panel);

} // namespace PanelHints
