// SPDX-License-Identifier: MIT
#include "PanelHints.h"

#include "BlurOffer.h"
#include "X11Session.h"
#include "XcbReply.h"

#include <QImage>
#include <QPoint>
#include <QRegion>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <array>
#include <optional>
#include <vector>
#include <xcb/shape.h>

namespace {

/// Nearly opaque. What is less is blended with black by the server, and on a light desktop the
/// softened edge of a shape would look like a row of dark dots.
constexpr int leastAlpha = 230;

constexpr Qt::WindowFlags floatingFlags =
    Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::NoDropShadowWindowHint;

std::array<xcb_atom_t, 4> editorStates(const xcb_ewmh_connection_t &ewmh)
{
    return {ewmh._NET_WM_STATE_ABOVE, ewmh._NET_WM_STATE_SKIP_TASKBAR,
            ewmh._NET_WM_STATE_SKIP_PAGER, ewmh._NET_WM_STATE_STICKY};
}

/// Raw X coordinates are device pixels; Qt scales about the top left corner of the screen.
QPoint nativePosition(const QWidget &panel, QPoint place)
{
    const QPoint corner = panel.screen()->geometry().topLeft();
    const QPointF inScreen = QPointF(place - corner) * panel.devicePixelRatioF();
    return corner + inScreen.toPoint();
}

std::optional<QPoint> actualPosition(const X11Session &session, xcb_window_t window)
{
    const auto request =
        xcb_translate_coordinates(session.connection(), window, session.root(), 0, 0);
    const auto reply =
        owned(xcb_translate_coordinates_reply(session.connection(), request, nullptr));
    if (!reply)
        return std::nullopt;
    return QPoint(reply->dst_x, reply->dst_y);
}

void moveTo(const X11Session &session, xcb_window_t window, QPoint position)
{
    const std::array<int32_t, 2> values{position.x(), position.y()};
    xcb_configure_window(session.connection(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                         values.data());
    xcb_flush(session.connection());
}

} // namespace

Qt::WindowFlags PanelHints::launcherFlags()
{
    return floatingFlags | Qt::X11BypassWindowManagerHint | Qt::WindowDoesNotAcceptFocus;
}

Qt::WindowFlags PanelHints::editorFlags()
{
    return floatingFlags;
}

void PanelHints::prepareLauncher(QWidget &panel)
{
    if (X11Session *const session = X11Session::current()) {
        panel.winId();
        xcb_atom_t type = session->ewmh()._NET_WM_WINDOW_TYPE_UTILITY;
        xcb_ewmh_set_wm_window_type(&session->ewmh(), X11Session::window(panel), 1, &type);
    }
}

void PanelHints::prepareEditor(QWidget &panel)
{
    if (X11Session *const session = X11Session::current()) {
        panel.winId();
        const xcb_window_t window = X11Session::window(panel);
        auto states = editorStates(session->ewmh());
        xcb_ewmh_set_wm_state(&session->ewmh(), window, states.size(), states.data());
        xcb_ewmh_set_wm_desktop(&session->ewmh(), window, onAllDesktops);
    }
}

void PanelHints::afterShowingEditor(QWidget &panel)
{
    if (X11Session *const session = X11Session::current()) {
        const xcb_window_t window = X11Session::window(panel);
        const auto states = editorStates(session->ewmh());
        for (std::size_t i = 0; i < states.size(); i += 2) {
            xcb_ewmh_request_change_wm_state(&session->ewmh(), 0, window, XCB_EWMH_WM_STATE_ADD,
                                             states.at(i), states.at(i + 1),
                                             XCB_EWMH_CLIENT_SOURCE_TYPE_NORMAL);
        }
        xcb_ewmh_request_change_wm_desktop(&session->ewmh(), 0, window, onAllDesktops,
                                           XCB_EWMH_CLIENT_SOURCE_TYPE_NORMAL);
        xcb_flush(session->connection());
    }
}

bool PanelHints::menusMissEvents()
{
    return X11Session::current() && X11Session::isInWayland();
}

bool PanelHints::menusCanBeWindows()
{
    X11Session *const session = X11Session::current();
    return session && session->windowManager() != X11Session::wlroots;
}

void PanelHints::prepareMenu(QWidget &menu)
{
    if (X11Session *const session = X11Session::current()) {
        menu.winId();
        // The type of a menu would say that it wants none.
        xcb_atom_t type = session->ewmh()._NET_WM_WINDOW_TYPE_NORMAL;
        xcb_ewmh_set_wm_window_type(&session->ewmh(), X11Session::window(menu), 1, &type);
    }
}

bool PanelHints::hasPointer()
{
    X11Session *const session = X11Session::current();
    if (!session)
        return false;
    const auto request = xcb_query_pointer(session->connection(), session->root());
    const auto pointer = owned(xcb_query_pointer_reply(session->connection(), request, nullptr));
    return pointer && pointer->child != XCB_WINDOW_NONE;
}

void PanelHints::activate(QWidget &panel)
{
    panel.raise();
    panel.activateWindow();
    if (X11Session *const session = X11Session::current()) {
        // As a pager asks: Qt's own request, as an application, gets no keyboard over a full-screen
        // window on i3.
        xcb_ewmh_request_change_active_window(&session->ewmh(), 0, X11Session::window(panel),
                                              XCB_EWMH_CLIENT_SOURCE_TYPE_OTHER,
                                              session->userTime(), XCB_WINDOW_NONE);
        xcb_flush(session->connection());
    }
}

bool PanelHints::correctPosition(QWidget &panel, QPoint place)
{
    const X11Session *const session = X11Session::current();
    if (!session)
        return false;
    const xcb_window_t window = X11Session::window(panel);
    const QPoint wanted = nativePosition(panel, place);
    const std::optional<QPoint> actual = actualPosition(*session, window);
    if (!actual || *actual == wanted)
        return false;
    moveTo(*session, window, wanted);
    return true;
}

QRegion PanelHints::opaquePart(const QImage &image)
{
    // Runs row by row, from left to right: the order in which regions are built from rectangles.
    QList<QRect> runs;
    const auto isOpaque = [](QRgb pixel) { return qAlpha(pixel) >= leastAlpha; };
    for (int y = 0; y < image.height(); ++y) {
        const auto *const line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        const QRgb *const end = line + image.width();
        const QRgb *first = std::find_if(line, end, isOpaque);
        while (first != end) {
            const QRgb *const last = std::find_if_not(first, end, isOpaque);
            runs.append({static_cast<int>(first - line), y, static_cast<int>(last - first), 1});
            first = std::find_if(last, end, isOpaque);
        }
    }
    QRegion region;
    region.setRects(runs.constData(), static_cast<int>(runs.size()));
    return region;
}

void PanelHints::cutOut(QWidget &panel, const QRegion &region)
{
    const X11Session *const session = X11Session::current();
    if (!session)
        return;
    const xcb_window_t window = X11Session::window(panel);
    if (region.isEmpty()) {
        xcb_shape_mask(session->connection(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, window, 0, 0,
                       XCB_PIXMAP_NONE);
    } else {
        std::vector<xcb_rectangle_t> rectangles;
        for (const QRect &rect : region)
            rectangles.push_back({static_cast<int16_t>(rect.x()), static_cast<int16_t>(rect.y()),
                                  static_cast<uint16_t>(rect.width()),
                                  static_cast<uint16_t>(rect.height())});
        xcb_shape_rectangles(session->connection(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                             XCB_CLIP_ORDERING_YX_BANDED, window, 0, 0,
                             static_cast<uint32_t>(rectangles.size()), rectangles.data());
    }
    xcb_flush(session->connection());
}

void PanelHints::blurBehind(QWidget &panel, const QRegion &region)
{
    const X11Session *const session = X11Session::current();
    if (!session)
        return;
    const xcb_window_t window = X11Session::window(panel);
    const xcb_atom_t property = X11Session::atom(BlurOffer::propertyName);
    if (region.isEmpty()) {
        xcb_delete_property(session->connection(), window, property);
    } else {
        std::vector<uint32_t> numbers;
        for (const QRect &rect : region) {
            for (const int number : {rect.x(), rect.y(), rect.width(), rect.height()})
                numbers.push_back(static_cast<uint32_t>(number));
        }
        xcb_change_property(session->connection(), XCB_PROP_MODE_REPLACE, window, property,
                            XCB_ATOM_CARDINAL, 32, static_cast<uint32_t>(numbers.size()),
                            numbers.data());
    }
    xcb_flush(session->connection());
}
