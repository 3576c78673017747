// SPDX-License-Identifier: MIT
#include "X11Session.h"

#include "XcbReply.h"

#include <QGuiApplication>
#include <QInputEvent>
#include <QPointer>
#include <QWidget>
#include <algorithm>
#include <array>
#include <string_view>

namespace {

/// What happens within this time after a key or a click is the answer to it.
constexpr qint64 answerTime = 1000;

constexpr int screenNumber = 0;

} // namespace

X11Session *X11Session::current()
{
    static QPointer<X11Session> session;
    if (session || !qGuiApp)
        return session;
    // The offscreen platform offers the interface too, without a connection behind it.
    const auto *const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 && x11->connection()) {
        session = new X11Session(x11->connection());
        session->setParent(qGuiApp);
        qGuiApp->installEventFilter(session);
    }
    return session;
}

X11Session::X11Session(xcb_connection_t *connection)
{
    constexpr std::string_view stateName = "WM_STATE";
    const auto request = xcb_intern_atom(connection, 0, stateName.size(), stateName.data());
    xcb_ewmh_init_atoms_replies(&m_ewmh, xcb_ewmh_init_atoms(connection, &m_ewmh), nullptr);
    if (const auto reply = owned(xcb_intern_atom_reply(connection, request, nullptr)))
        m_stateProperty = reply->atom;
}

X11Session::~X11Session()
{
    xcb_ewmh_connection_wipe(&m_ewmh);
}

xcb_window_t X11Session::root() const noexcept
{
    return m_ewmh.screens[screenNumber]->root;
}

xcb_atom_t X11Session::compositorSelection() const noexcept
{
    return m_ewmh._NET_WM_CM_Sn[screenNumber];
}

std::optional<uint32_t> X11Session::value(xcb_window_t window, xcb_atom_t property) const
{
    const auto request =
        xcb_get_property(connection(), 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 1);
    const auto reply = owned(xcb_get_property_reply(connection(), request, nullptr));
    if (!reply || reply->format != 32 || reply->value_len == 0)
        return std::nullopt;
    return *static_cast<const uint32_t *>(xcb_get_property_value(reply.get()));
}

bool X11Session::isMinimised(xcb_window_t window)
{
    constexpr uint32_t iconic = 3; // ICCCM, 4.1.3.1: the first value of WM_STATE.
    if (value(window, m_stateProperty) == iconic)
        return true;
    xcb_ewmh_get_atoms_reply_t states{};
    const auto request = xcb_ewmh_get_wm_state(&m_ewmh, window);
    if (!xcb_ewmh_get_wm_state_reply(&m_ewmh, request, &states, nullptr))
        return false;
    const bool isHidden =
        std::any_of(states.atoms, states.atoms + states.atoms_len,
                    [this](xcb_atom_t state) { return state == m_ewmh._NET_WM_STATE_HIDDEN; });
    xcb_ewmh_get_atoms_reply_wipe(&states);
    return isHidden;
}

xcb_timestamp_t X11Session::userTime() const
{
    if (!m_sinceLastInput.isValid() || !m_sinceLastInput.hasExpired(answerTime))
        return m_lastInput;
    // Asked for from outside, such as by a second start: the server's clock runs in milliseconds,
    // so it shows at least this much by now.
    return m_lastInput + static_cast<xcb_timestamp_t>(m_sinceLastInput.elapsed());
}

xcb_atom_t X11Session::atom(std::string_view name)
{
    const X11Session *const session = current();
    if (!session)
        return XCB_ATOM_NONE;
    const auto request =
        xcb_intern_atom(session->connection(), 0, static_cast<uint16_t>(name.size()), name.data());
    const auto reply = owned(xcb_intern_atom_reply(session->connection(), request, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

xcb_window_t X11Session::window(const QWidget &widget)
{
    return static_cast<xcb_window_t>(widget.effectiveWinId());
}

xcb_window_t X11Session::outermost(xcb_window_t window)
{
    const X11Session *const session = current();
    for (;;) {
        const auto request = xcb_query_tree(session->connection(), window);
        const auto tree = owned(xcb_query_tree_reply(session->connection(), request, nullptr));
        if (!tree || tree->parent == session->root() || tree->parent == XCB_WINDOW_NONE)
            return window;
        window = tree->parent;
    }
}

std::string X11Session::windowManager()
{
    const auto window = value(root(), m_ewmh._NET_SUPPORTING_WM_CHECK);
    xcb_ewmh_get_utf8_strings_reply_t name{};
    if (!window || !xcb_ewmh_get_wm_name_reply(&m_ewmh, xcb_ewmh_get_wm_name(&m_ewmh, *window),
                                               &name, nullptr))
        return {};
    std::string result(name.strings, name.strings_len);
    xcb_ewmh_get_utf8_strings_reply_wipe(&name);
    return result;
}

bool X11Session::isInWayland()
{
    return qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

std::vector<xcb_window_t> X11Session::children(xcb_window_t window) const
{
    const auto request = xcb_query_tree(connection(), window);
    const auto tree = owned(xcb_query_tree_reply(connection(), request, nullptr));
    if (!tree)
        return {};
    const xcb_window_t *const first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

void X11Session::putBelow(xcb_window_t window, xcb_window_t other) const
{
    const std::array<uint32_t, 2> values{outermost(other), XCB_STACK_MODE_BELOW};
    xcb_configure_window(connection(), window,
                         XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, values.data());
    xcb_flush(connection());
}

bool X11Session::tellsOfOtherWindows(const xcb_generic_event_t &event) const noexcept
{
    if (eventType(event) != XCB_PROPERTY_NOTIFY)
        return false;
    const auto &change = reinterpret_cast<const xcb_property_notify_event_t &>(event);
    return change.window == root() && (change.atom == m_ewmh._NET_ACTIVE_WINDOW ||
                                       change.atom == m_ewmh._NET_CLIENT_LIST_STACKING);
}

uint8_t X11Session::eventType(const xcb_generic_event_t &event) noexcept
{
    constexpr uint8_t sentByAnother = 0x80;
    return event.response_type & static_cast<uint8_t>(~sentByAnother);
}

bool X11Session::eventFilter(QObject *receiver, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        // Events made by the program itself carry no time.
        if (const quint64 time = static_cast<QInputEvent *>(event)->timestamp(); time != 0) {
            m_lastInput = static_cast<xcb_timestamp_t>(time);
            m_sinceLastInput.start();
        }
        break;
    default:
        break;
    }
    return QObject::eventFilter(receiver, event);
}
