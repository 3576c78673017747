// SPDX-License-Identifier: MIT
#include "Struts.h"

#include "X11Session.h"
#include "XcbReply.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace {

/// Panels are managed windows, or lie on the root by themselves.
std::vector<xcb_window_t> candidates(X11Session &session)
{
    std::vector<xcb_window_t> result;
    xcb_ewmh_get_windows_reply_t managed{};
    const auto request = xcb_ewmh_get_client_list(&session.ewmh(), 0);
    if (xcb_ewmh_get_client_list_reply(&session.ewmh(), request, &managed, nullptr)) {
        result.assign(managed.windows, managed.windows + managed.windows_len);
        xcb_ewmh_get_windows_reply_wipe(&managed);
    }
    std::ranges::copy(session.children(session.root()), std::back_inserter(result));
    return result;
}

} // namespace

QList<Strut> Struts::all()
{
    X11Session *const session = X11Session::current();
    if (!session)
        return {};
    // All questions before the first answer: one way to the server and back.
    std::vector<xcb_get_property_cookie_t> questions;
    for (const xcb_window_t window : candidates(*session))
        questions.push_back(xcb_get_property(session->connection(), 0, window,
                                             session->ewmh()._NET_WM_STRUT_PARTIAL,
                                             XCB_ATOM_CARDINAL, 0, 12));
    QList<Strut> result;
    for (const xcb_get_property_cookie_t question : questions) {
        const auto reply = owned(xcb_get_property_reply(session->connection(), question, nullptr));
        Strut strut;
        if (!reply || reply->format != 32 || reply->value_len != strut.values.size())
            continue;
        const auto *const values = static_cast<uint32_t *>(xcb_get_property_value(reply.get()));
        std::copy_n(values, strut.values.size(), strut.values.begin());
        if (!result.contains(strut))
            result.append(strut);
    }
    return result;
}

QSize Struts::wholeSize()
{
    X11Session *const session = X11Session::current();
    if (!session)
        return {};
    const xcb_screen_t &screen = *session->ewmh().screens[0];
    return {screen.width_in_pixels, screen.height_in_pixels};
}

QRect Struts::remaining(const QRect &screen, QSize whole, const QList<Strut> &struts)
{
    int left = screen.left();
    int top = screen.top();
    int right = screen.left() + screen.width();
    int bottom = screen.top() + screen.height();
    const auto isInRange = [](uint32_t first, uint32_t last, int from, int to) {
        return int64_t(first) < to && int64_t(last) >= from;
    };
    for (const auto &[v] : struts) {
        const bool isBeside = isInRange(v[4], v[5], screen.top(), screen.top() + screen.height());
        const bool isBesideRight =
            isInRange(v[6], v[7], screen.top(), screen.top() + screen.height());
        const bool isAbove = isInRange(v[8], v[9], screen.left(), screen.left() + screen.width());
        const bool isBelow = isInRange(v[10], v[11], screen.left(), screen.left() + screen.width());
        const int fromLeft = int(v[0]);
        const int fromRight = whole.width() - int(v[1]);
        const int fromTop = int(v[2]);
        const int fromBottom = whole.height() - int(v[3]);
        if (isBeside && fromLeft > screen.left() && fromLeft < screen.left() + screen.width())
            left = std::max(left, fromLeft);
        if (isBesideRight && fromRight > screen.left() &&
            fromRight < screen.left() + screen.width())
            right = std::min(right, fromRight);
        if (isAbove && fromTop > screen.top() && fromTop < screen.top() + screen.height())
            top = std::max(top, fromTop);
        if (isBelow && fromBottom > screen.top() && fromBottom < screen.top() + screen.height())
            bottom = std::min(bottom, fromBottom);
    }
    const QRect rest(left, top, right - left, bottom - top);
    return rest.isValid() ? rest : screen;
}
