// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>

class QImage;
class QMargins;
class QWidget;

/// The picture that KWin draws around a panel as its shadow, for as long as the object lives. In
/// the property _KDE_NET_WM_SHADOW: eight pixmaps clockwise from the middle of the top, then how
/// far they reach beyond the panel, clockwise from the top.
class ShadowPicture final {
public:
    /// The picture, with 32 bits and alpha, holds the panel and what the shadow reaches beyond it.
    /// Its corners, squares of that length, are drawn as they are, the sides between them drawn
    /// out. All in device pixels.
    ShadowPicture(const QWidget &panel, const QImage &picture, const QMargins &reach, int corner);
    ~ShadowPicture();
    ShadowPicture(const ShadowPicture &) = delete;
    ShadowPicture &operator=(const ShadowPicture &) = delete;

private:
    /// Of the X server.
    std::array<uint32_t, 8> m_pixmaps{};
};
