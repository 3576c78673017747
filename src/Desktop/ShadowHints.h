// SPDX-License-Identifier: MIT
#pragma once

#include <Qt>

class QMargins;
class QWindow;

/// How the shadow around a panel comes onto the screen, which the compositing manager decides.
namespace ShadowHints {

enum class Way {
    none,
    window,  ///< As a window of the program below the panel.
    picture, ///< KWin draws it around the panel: ShadowPicture.
};

/// The way on the desktop that runs, where something is composited. In a Wayland session of another
/// than KWin there is none where a click on it would not reach a native window below, and none with
/// compositors of wlroots, which would leave it alone on a workspace without the editor.
[[nodiscard]] Way way();

/// A window that lets clicks through and is in no window manager's care.
[[nodiscard]] Qt::WindowFlags windowFlags();

/// Before the first show() of such a window: tells that it is nothing but a shadow, which reaches
/// so far in device pixels: no other one is put around it, and nobody takes it for a window to use.
void prepare(QWindow &shadow, const QMargins &reach);

} // namespace ShadowHints
