// SPDX-License-Identifier: MIT
#include "ShadowPicture.h"

#include "X11Session.h"

#include <QImage>
#include <QMargins>
#include <QWidget>
#include <algorithm>

namespace {

xcb_pixmap_t upload(const X11Session &session, const QImage &part)
{
    constexpr uint8_t depth = 32;
    const auto width = static_cast<uint16_t>(part.width());
    const auto height = static_cast<uint16_t>(part.height());
    xcb_connection_t *const connection = session.connection();
    const xcb_pixmap_t pixmap = xcb_generate_id(connection);
    const xcb_gcontext_t context = xcb_generate_id(connection);
    xcb_create_pixmap(connection, depth, pixmap, session.root(), width, height);
    xcb_create_gc(connection, context, pixmap, 0, nullptr);
    xcb_put_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, context, width, height, 0, 0, 0,
                  depth, static_cast<uint32_t>(part.sizeInBytes()), part.constBits());
    xcb_free_gc(connection, context);
    return pixmap;
}

} // namespace

ShadowPicture::ShadowPicture(const QWidget &panel, const QImage &picture, const QMargins &reach,
                             int corner)
{
    const X11Session *const session = X11Session::current();
    if (!session)
        return;
    const int right = picture.width() - corner;
    const int bottom = picture.height() - corner;
    const std::array<QRect, 8> parts{
        QRect(corner, 0, 1, corner),      QRect(right, 0, corner, corner),
        QRect(right, corner, corner, 1),  QRect(right, bottom, corner, corner),
        QRect(corner, bottom, 1, corner), QRect(0, bottom, corner, corner),
        QRect(0, corner, corner, 1),      QRect(0, 0, corner, corner),
    };
    std::ranges::transform(parts, m_pixmaps.begin(),
                           [&](const QRect &part) { return upload(*session, picture.copy(part)); });
    std::array<uint32_t, 12> value{};
    std::ranges::copy(m_pixmaps, value.begin());
    std::ranges::transform(std::array{reach.top(), reach.right(), reach.bottom(), reach.left()},
                           value.begin() + 8,
                           [](int pixels) { return static_cast<uint32_t>(pixels); });
    xcb_change_property(session->connection(), XCB_PROP_MODE_REPLACE, X11Session::window(panel),
                        X11Session::atom("_KDE_NET_WM_SHADOW"), XCB_ATOM_CARDINAL, 32, value.size(),
                        value.data());
    xcb_flush(session->connection());
}

ShadowPicture::~ShadowPicture()
{
    // The property goes with the window, or is replaced.
    const X11Session *const session = X11Session::current();
    for (const xcb_pixmap_t pixmap : m_pixmaps) {
        if (session && pixmap != XCB_PIXMAP_NONE)
            xcb_free_pixmap(session->connection(), pixmap);
    }
}
