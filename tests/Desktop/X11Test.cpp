// SPDX-License-Identifier: MIT
#include "ApplicationFocus.h"
#include "DesktopAppearance.h"
#include "FocusWatch.h"
#include "KeepOnTop.h"
#include "PanelHints.h"
#include "X11Session.h"
#include "XSettingsBytes.h"
#include "XcbReply.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>
#include <xcb/shape.h>
#include <xcb/xcb_ewmh.h>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr xcb_window_t noWindow = XCB_WINDOW_NONE;

/// A display of the test's own, without a window manager.
class VirtualDisplay final {
public:
    VirtualDisplay()
    {
        m_server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_server.start(u"Xvfb"_s, {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, u"1440x900x24"_s,
                                   u"-nolisten"_s, u"tcp"_s, u"-noreset"_s});
        if (m_server.waitForStarted() && m_server.waitForReadyRead())
            m_name = ':' + m_server.readLine().trimmed();
    }
    ~VirtualDisplay()
    {
        m_server.terminate();
        m_server.waitForFinished();
    }

    [[nodiscard]] QByteArray name() const { return m_name; }

private:
    QProcess m_server;
    QByteArray m_name;
};

/// The part of a window manager or another program, over a connection of its own.
class OtherProgram final {
public:
    OtherProgram()
        : m_connection(xcb_connect(nullptr, nullptr))
    {
        xcb_ewmh_init_atoms_replies(&m_ewmh, xcb_ewmh_init_atoms(m_connection, &m_ewmh), nullptr);
    }
    ~OtherProgram()
    {
        xcb_ewmh_connection_wipe(&m_ewmh);
        xcb_disconnect(m_connection);
    }

    [[nodiscard]] xcb_window_t root() const { return m_ewmh.screens[0]->root; }
    [[nodiscard]] xcb_ewmh_connection_t &ewmh() { return m_ewmh; }

    /// On top of all windows that are there.
    xcb_window_t openWindow(QRect frame)
    {
        const xcb_window_t window = xcb_generate_id(m_connection);
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, root(),
                          static_cast<int16_t>(frame.x()), static_cast<int16_t>(frame.y()),
                          static_cast<uint16_t>(frame.width()),
                          static_cast<uint16_t>(frame.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_map_window(m_connection, window);
        sync();
        return window;
    }
    void closeWindow(xcb_window_t window)
    {
        xcb_destroy_window(m_connection, window);
        sync();
    }

    void giveKeyboardTo(xcb_window_t window)
    {
        xcb_set_input_focus(m_connection, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
        sync();
    }
    [[nodiscard]] xcb_window_t inputFocus() const
    {
        const auto reply = owned(
            xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
        return reply ? reply->focus : noWindow;
    }

    void setActiveWindow(xcb_window_t window)
    {
        xcb_ewmh_set_active_window(&m_ewmh, 0, window);
        sync();
    }
    void setCurrentDesktop(uint32_t desktop)
    {
        xcb_ewmh_set_current_desktop(&m_ewmh, 0, desktop);
        sync();
    }
    void setProcessId(xcb_window_t window, uint32_t id)
    {
        xcb_ewmh_set_wm_pid(&m_ewmh, window, id);
        sync();
    }
    void setCompositing(bool isComposited)
    {
        if (isComposited && !m_compositor)
            m_compositor = openWindow({-1, -1, 1, 1});
        xcb_set_selection_owner(m_connection, isComposited ? m_compositor : noWindow,
                                m_ewmh._NET_WM_CM_Sn[0], XCB_CURRENT_TIME);
        sync();
    }
    /// As a settings manager: takes over from an earlier one with a window of its own.
    void startSettingsManager(const QByteArray &settings)
    {
        m_settingsManager = openWindow({-1, -1, 1, 1});
        writeSettings(settings);
        xcb_set_selection_owner(m_connection, m_settingsManager, atom("_XSETTINGS_S0"),
                                XCB_CURRENT_TIME);
        sync();
    }
    void writeSettings(const QByteArray &settings)
    {
        const xcb_atom_t property = atom("_XSETTINGS_SETTINGS");
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_settingsManager, property,
                            property, 8, static_cast<uint32_t>(settings.size()),
                            settings.constData());
        sync();
    }
    void stopSettingsManager() { closeWindow(m_settingsManager); }

    /// As KWin announces that it blurs.
    void offerBlur(bool isOffered)
    {
        if (isOffered)
            xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, root(), blurProperty(),
                                blurProperty(), 8, 1, "");
        else
            xcb_delete_property(m_connection, root(), blurProperty());
        sync();
    }
    /// What a window asks to have blurred behind it, in its pixels; none when it does not ask.
    [[nodiscard]] QRegion blurBehind(xcb_window_t window) const
    {
        const auto reply = owned(xcb_get_property_reply(
            m_connection,
            xcb_get_property(m_connection, 0, window, blurProperty(), XCB_ATOM_CARDINAL, 0, 4096),
            nullptr));
        const auto *numbers = static_cast<uint32_t *>(xcb_get_property_value(reply.get()));
        const QList<int> list(numbers, numbers + reply->value_len);
        QRegion region;
        for (qsizetype i = 0; i + 3 < list.size(); i += 4)
            region += QRect(list[i], list[i + 1], list[i + 2], list[i + 3]);
        return region;
    }

    void listenToRequests()
    {
        (void)activationRequests();
        m_requests.clear();
        const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(m_connection, root(), XCB_CW_EVENT_MASK, &mask);
        sync();
    }

    /// What was asked of the window manager since listenToRequests().
    [[nodiscard]] QList<xcb_client_message_event_t> activationRequests()
    {
        sync();
        while (const auto event = owned(xcb_poll_for_event(m_connection))) {
            const auto *message = reinterpret_cast<xcb_client_message_event_t *>(event.get());
            if ((event->response_type & 0x7f) == XCB_CLIENT_MESSAGE &&
                message->type == m_ewmh._NET_ACTIVE_WINDOW)
                m_requests.append(*message);
        }
        return m_requests;
    }

    [[nodiscard]] xcb_window_t topmost() const
    {
        const auto tree = owned(
            xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, root()), nullptr));
        return xcb_query_tree_children(tree.get())[xcb_query_tree_children_length(tree.get()) - 1];
    }
    [[nodiscard]] QRegion shape(xcb_window_t window) const
    {
        const auto reply = owned(xcb_shape_get_rectangles_reply(
            m_connection, xcb_shape_get_rectangles(m_connection, window, XCB_SHAPE_SK_BOUNDING),
            nullptr));
        QRegion region;
        for (int i = 0; i < xcb_shape_get_rectangles_rectangles_length(reply.get()); ++i) {
            const auto &part = xcb_shape_get_rectangles_rectangles(reply.get())[i];
            region += QRect(part.x, part.y, part.width, part.height);
        }
        return region;
    }
    [[nodiscard]] QList<xcb_atom_t> atoms(xcb_window_t window, xcb_atom_t property) const
    {
        const auto reply = owned(xcb_get_property_reply(
            m_connection, xcb_get_property(m_connection, 0, window, property, XCB_ATOM_ATOM, 0, 64),
            nullptr));
        const auto *first = static_cast<xcb_atom_t *>(xcb_get_property_value(reply.get()));
        return {first, first + reply->value_len};
    }
    [[nodiscard]] QPoint position(xcb_window_t window) const
    {
        const auto reply = owned(xcb_translate_coordinates_reply(
            m_connection, xcb_translate_coordinates(m_connection, window, root(), 0, 0), nullptr));
        return {reply->dst_x, reply->dst_y};
    }
    void move(xcb_window_t window, QPoint position)
    {
        const int32_t values[]{position.x(), position.y()};
        xcb_configure_window(m_connection, window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                             values);
        sync();
    }

private:
    [[nodiscard]] xcb_atom_t atom(const QByteArray &name) const
    {
        const auto reply = owned(xcb_intern_atom_reply(
            m_connection,
            xcb_intern_atom(m_connection, 0, static_cast<uint16_t>(name.size()), name.constData()),
            nullptr));
        return reply->atom;
    }
    [[nodiscard]] xcb_atom_t blurProperty() const { return atom("_KDE_NET_WM_BLUR_BEHIND_REGION"); }

    /// Until the server has done all that was asked.
    void sync() const
    {
        const auto answer = owned(
            xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    }

    xcb_connection_t *const m_connection;
    xcb_ewmh_connection_t m_ewmh{};
    xcb_window_t m_compositor = noWindow;
    xcb_window_t m_settingsManager = noWindow;
    QList<xcb_client_message_event_t> m_requests;
};

xcb_window_t windowOf(const QWidget &widget)
{
    return static_cast<xcb_window_t>(widget.effectiveWinId());
}

} // namespace

class X11Test final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void knowsTheActiveWindowAndItsProcess();
    void knowsNobodyWhileNoWindowIsActive();
    void asksToActivateAWindowThatIsStillThere();
    void passesOverAWindowThatIsGone();
    void passesOverAWindowThatHasBecomeAnotherPrograms();

    void raisesTheLauncherWhenAnotherWindowIsActivated();
    void leavesTheOrderOfWindowsAloneAtRest();

    void tellsTheWindowManagerWhatTheEditorIs();
    void asksForTheKeyboardAsAPagerDoes();
    void bringsAMisplacedWindowBack();
    void takesTheKeyboardThatNobodyHas();
    void leavesTheKeyboardToWhomItWasGiven();

    void cutsAWindowToWhatIsOpaque();
    void makesACutWindowWholeAgain();

    void knowsWhetherWindowsAreComposited();
    void followsTheSettingsManager();
    void followsASettingsManagerThatTakesOver();
    void knowsWhetherWindowsAreBlurredBehind();
    void asksForBlurBehindARegion();

private:
    OtherProgram m_other;
};

void X11Test::cleanup()
{
    m_other.setActiveWindow(noWindow);
}

void X11Test::knowsTheActiveWindowAndItsProcess()
{
    const xcb_window_t window = m_other.openWindow({0, 0, 100, 100});
    m_other.setProcessId(window, 4711);
    m_other.setActiveWindow(window);

    const X11ApplicationFocus focus;

    QCOMPARE(focus.frontmost(), (RunningApplication{window, 4711}));
}

void X11Test::knowsNobodyWhileNoWindowIsActive()
{
    const X11ApplicationFocus focus;

    QVERIFY(!focus.frontmost().has_value());
}

void X11Test::asksToActivateAWindowThatIsStillThere()
{
    const xcb_window_t window = m_other.openWindow({0, 0, 100, 100});
    m_other.setProcessId(window, 4711);
    m_other.listenToRequests();

    X11ApplicationFocus().activate({window, 4711});

    QTRY_VERIFY(!m_other.activationRequests().isEmpty());
    const auto requests = m_other.activationRequests();
    QCOMPARE(requests.size(), 1);
    QCOMPARE(requests.constFirst().window, window);
}

void X11Test::passesOverAWindowThatIsGone()
{
    const xcb_window_t window = m_other.openWindow({0, 0, 100, 100});
    m_other.setProcessId(window, 4711);
    m_other.listenToRequests();
    m_other.closeWindow(window);
    const xcb_window_t marker = m_other.openWindow({0, 0, 100, 100});

    X11ApplicationFocus focus;
    focus.activate({window, 4711});
    focus.activate({marker, 0});

    QTRY_VERIFY(!m_other.activationRequests().isEmpty());
    const auto requests = m_other.activationRequests();
    QCOMPARE(requests.size(), 1);
    QCOMPARE(requests.constFirst().window, marker);
}

void X11Test::passesOverAWindowThatHasBecomeAnotherPrograms()
{
    const xcb_window_t window = m_other.openWindow({0, 0, 100, 100});
    m_other.setProcessId(window, 4712);
    m_other.listenToRequests();
    const xcb_window_t marker = m_other.openWindow({0, 0, 100, 100});

    X11ApplicationFocus focus;
    focus.activate({window, 4711});
    focus.activate({marker, 0});

    QTRY_VERIFY(!m_other.activationRequests().isEmpty());
    const auto requests = m_other.activationRequests();
    QCOMPARE(requests.size(), 1);
    QCOMPARE(requests.constFirst().window, marker);
}

void X11Test::raisesTheLauncherWhenAnotherWindowIsActivated()
{
    QWidget launcher(nullptr, PanelHints::launcherFlags());
    new KeepOnTop(launcher);
    launcher.resize(64, 64);
    launcher.show();
    QVERIFY(QTest::qWaitForWindowExposed(&launcher));
    const xcb_window_t covering = m_other.openWindow({0, 0, 1440, 900});
    QCOMPARE(m_other.topmost(), covering);

    m_other.setActiveWindow(covering);

    QTRY_COMPARE(m_other.topmost(), windowOf(launcher));
    m_other.closeWindow(covering);
}

void X11Test::leavesTheOrderOfWindowsAloneAtRest()
{
    QWidget launcher(nullptr, PanelHints::launcherFlags());
    new KeepOnTop(launcher);
    launcher.resize(64, 64);
    launcher.show();
    QVERIFY(QTest::qWaitForWindowExposed(&launcher));
    QWidget marker(nullptr, PanelHints::launcherFlags());

    const xcb_window_t covering = m_other.openWindow({0, 0, 1440, 900});
    m_other.setCurrentDesktop(1);
    // The next window's arrival shows that everything before it has been seen.
    marker.show();
    QVERIFY(QTest::qWaitForWindowExposed(&marker));
    marker.lower();
    QTRY_COMPARE(m_other.topmost(), covering);
    m_other.closeWindow(covering);
}

void X11Test::tellsTheWindowManagerWhatTheEditorIs()
{
    QWidget editor(nullptr, PanelHints::editorFlags());

    PanelHints::prepareEditor(editor);
    editor.show();
    QVERIFY(QTest::qWaitForWindowExposed(&editor));

    const xcb_ewmh_connection_t &ewmh = m_other.ewmh();
    const auto states = m_other.atoms(windowOf(editor), ewmh._NET_WM_STATE);
    QVERIFY(states.contains(ewmh._NET_WM_STATE_ABOVE));
    QVERIFY(states.contains(ewmh._NET_WM_STATE_STICKY));
    QVERIFY(states.contains(ewmh._NET_WM_STATE_SKIP_TASKBAR));
    QVERIFY(states.contains(ewmh._NET_WM_STATE_SKIP_PAGER));
}

void X11Test::asksForTheKeyboardAsAPagerDoes()
{
    QWidget editor(nullptr, PanelHints::editorFlags());
    editor.show();
    QVERIFY(QTest::qWaitForWindowExposed(&editor));
    m_other.listenToRequests();

    PanelHints::activate(editor);

    QTRY_VERIFY(!m_other.activationRequests().isEmpty());
    const auto requests = m_other.activationRequests();
    QCOMPARE(requests.constLast().window, windowOf(editor));
    QCOMPARE(requests.constLast().data.data32[0], uint32_t(XCB_EWMH_CLIENT_SOURCE_TYPE_OTHER));
}

void X11Test::bringsAMisplacedWindowBack()
{
    QWidget editor(nullptr, PanelHints::editorFlags());
    editor.setGeometry(300, 200, 100, 100);
    editor.show();
    QVERIFY(QTest::qWaitForWindowExposed(&editor));
    m_other.move(windowOf(editor), {302, 218});

    QVERIFY(PanelHints::correctPosition(editor, {300, 200}));

    QTRY_COMPARE(m_other.position(windowOf(editor)), QPoint(300, 200));
    QVERIFY(!PanelHints::correctPosition(editor, {300, 200}));
}

void X11Test::takesTheKeyboardThatNobodyHas()
{
    QWidget panel;
    panel.setAttribute(Qt::WA_ShowWithoutActivating);
    new FocusWatch(panel);

    panel.show();

    QTRY_COMPARE(m_other.inputFocus(), X11Session::window(panel));
    QTRY_VERIFY(panel.isActiveWindow());
}

void X11Test::leavesTheKeyboardToWhomItWasGiven()
{
    const xcb_window_t window = m_other.openWindow({0, 0, 100, 100});
    m_other.giveKeyboardTo(window);
    QWidget panel;
    panel.setAttribute(Qt::WA_ShowWithoutActivating);
    auto *const watch = new FocusWatch(panel);
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));

    QTRY_VERIFY(!watch->isWaiting());

    QCOMPARE(m_other.inputFocus(), window);
    m_other.closeWindow(window);
}

void X11Test::cutsAWindowToWhatIsOpaque()
{
    QWidget panel(nullptr, PanelHints::launcherFlags());
    panel.resize(64, 64);
    panel.show();
    QImage rendering(64, 64, QImage::Format_ARGB32_Premultiplied);
    rendering.fill(QColor(0, 0, 0, 60));
    QPainter(&rendering).fillRect(10, 20, 30, 40, Qt::white);

    PanelHints::cutOut(panel, PanelHints::opaquePart(rendering));

    QTRY_COMPARE(m_other.shape(windowOf(panel)), QRegion(10, 20, 30, 40));
}

void X11Test::makesACutWindowWholeAgain()
{
    QWidget panel(nullptr, PanelHints::launcherFlags());
    panel.resize(64, 64);
    panel.show();
    PanelHints::cutOut(panel, QRegion(10, 20, 30, 40));
    QTRY_COMPARE(m_other.shape(windowOf(panel)), QRegion(10, 20, 30, 40));

    PanelHints::cutOut(panel, {});

    QTRY_COMPARE(m_other.shape(windowOf(panel)), QRegion(0, 0, 64, 64));
}

void X11Test::knowsWhetherWindowsAreComposited()
{
    DesktopAppearance appearance(ColorScheme::light);
    const QSignalSpy changed(&appearance, &SystemAppearance::changed);
    QVERIFY(!appearance.isComposited());
    QVERIFY(appearance.reduceTransparency());

    m_other.setCompositing(true);
    QTRY_VERIFY(appearance.isComposited());
    QVERIFY(!appearance.reduceTransparency());

    m_other.setCompositing(false);
    QTRY_VERIFY(!appearance.isComposited());
    QCOMPARE(changed.size(), 2);
}

void X11Test::followsTheSettingsManager()
{
    m_other.startSettingsManager(XSettingsBytes().text("Net/ThemeName", "Adwaita-dark").bytes());
    DesktopAppearance appearance(ColorScheme::light);
    QCOMPARE(appearance.colorScheme(), ColorScheme::dark);
    QVERIFY(!appearance.reduceMotion());

    m_other.writeSettings(XSettingsBytes()
                              .text("Net/ThemeName", "HighContrast")
                              .number("Gtk/EnableAnimations", 0)
                              .bytes());
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::light);
    QVERIFY(appearance.reduceMotion());
    QVERIFY(appearance.highContrast());

    m_other.stopSettingsManager();
    QTRY_COMPARE(appearance.values(), SystemAppearance::Values{.isComposited = false});
}

void X11Test::followsASettingsManagerThatTakesOver()
{
    DesktopAppearance appearance(ColorScheme::light);
    QCOMPARE(appearance.colorScheme(), ColorScheme::light);

    for (int i = 0; i < 2; ++i) {
        m_other.startSettingsManager(
            XSettingsBytes().text("Net/ThemeName", "Adwaita-dark").bytes());
        QTRY_COMPARE(appearance.colorScheme(), ColorScheme::dark);
        m_other.writeSettings(XSettingsBytes().text("Net/ThemeName", "Adwaita").bytes());
        QTRY_COMPARE(appearance.colorScheme(), ColorScheme::light);
    }
    m_other.stopSettingsManager();
}

void X11Test::knowsWhetherWindowsAreBlurredBehind()
{
    m_other.setCompositing(true);
    DesktopAppearance appearance(ColorScheme::light);
    QVERIFY(!appearance.blursBehind());

    m_other.offerBlur(true);
    QTRY_VERIFY(appearance.blursBehind());
    QVERIFY(DesktopAppearance(ColorScheme::light).blursBehind());

    m_other.setCompositing(false);
    QTRY_VERIFY(!appearance.blursBehind());
    m_other.setCompositing(true);
    QTRY_VERIFY(appearance.blursBehind());

    m_other.offerBlur(false);
    QTRY_VERIFY(!appearance.blursBehind());
    m_other.setCompositing(false);
}

void X11Test::asksForBlurBehindARegion()
{
    QWidget panel(nullptr, PanelHints::launcherFlags());
    panel.resize(64, 64);
    panel.show();
    const QRegion shape = QRegion(10, 20, 30, 40) + QRegion(0, 30, 64, 10);

    PanelHints::blurBehind(panel, shape);
    QTRY_COMPARE(m_other.blurBehind(windowOf(panel)), shape);

    PanelHints::blurBehind(panel, {});
    QTRY_COMPARE(m_other.blurBehind(windowOf(panel)), QRegion());
}

int main(int argc, char *argv[])
{
    const VirtualDisplay display;
    if (display.name().isEmpty())
        qFatal("Xvfb is needed for this test");
    qputenv("DISPLAY", display.name());
    qputenv("QT_QPA_PLATFORM", "xcb");

    const QApplication application(argc, argv);
    X11Test test;
    return QTest::qExec(&test, argc, argv);
}

#include "X11Test.moc"
