// SPDX-License-Identifier: MIT
#include "LauncherHitView.h"

#include "AppPreferences.h"
#include "DropReader.h"
#include "Named.h"
#include "PanelHints.h"
#include "Screens.h"
#include "ThemedMenu.h"

#include <QAccessibleWidget>
#include <QAction>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QMouseEvent>
#include <QScreen>
#include <QTimer>
#include <QWindow>
#include <chrono>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

/// How long a menu that cannot see a click elsewhere stays open without the pointer.
constexpr std::chrono::milliseconds menuPatience{600};

/// A button that can be pressed and has a menu.
class LauncherInterface final : public QAccessibleWidget {
public:
    explicit LauncherInterface(LauncherHitView *view)
        : QAccessibleWidget(view, QAccessible::Button)
        , m_view(view)
    {
    }

    [[nodiscard]] QStringList actionNames() const override
    {
        return {pressAction(), showMenuAction()};
    }

    void doAction(const QString &name) override
    {
        if (name == pressAction())
            Q_EMIT m_view->openRequested();
        else if (name == showMenuAction())
            m_view->showMenu();
    }

private:
    LauncherHitView *const m_view;
};

QAccessibleInterface *makeInterface(const QString & /*className*/, QObject *object)
{
    auto *const view = qobject_cast<LauncherHitView *>(object);
    return view ? new LauncherInterface(view) : nullptr;
}

} // namespace

LauncherHitView::LauncherHitView(const Screens &screens, const AppPreferences *preferences,
                                 QWidget *parent)
    : QWidget(parent)
    , m_screens(screens)
    , m_preferences(preferences)
{
    // Qt keeps each factory once, however often it is installed.
    QAccessible::installFactory(makeInterface);
    setIdentifier(this, u"floatingLauncher"_s);
    // A move without a button ends a drag whose release was never told.
    setMouseTracking(true);
    setAcceptDrops(true);

    m_interaction.onOpen = [this] { Q_EMIT openRequested(); };
    m_interaction.onMove = [this](LauncherInteraction::Translation translation, bool ended) {
        Q_EMIT moved(translation, ended);
    };
    if (m_preferences)
        connect(m_preferences, &AppPreferences::languageChanged, this, &LauncherHitView::render);

    render();
}

ThemedMenu *LauncherHitView::makeMenu()
{
    auto *const menu = new ThemedMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    connect(menu->addAction(text(u"New note"_s)), &QAction::triggered, this,
            &LauncherHitView::openRequested);
    menu->addSeparator();
    connect(menu->addAction(text(u"Quit Quillmark"_s)), &QAction::triggered, this,
            &LauncherHitView::quitRequested);
    return menu;
}

void LauncherHitView::showMenu()
{
    openMenu(mapToGlobal(rect().center()));
}

void LauncherHitView::endPress()
{
    if (std::exchange(m_isPressed, false))
        m_interaction.cancel();
}

void LauncherHitView::hideEvent(QHideEvent *event)
{
    // The release goes to nobody.
    endPress();
    disconnect(m_menuLater);
    QWidget::hideEvent(event);
}

bool LauncherHitView::eventFilter(QObject *receiver, QEvent *event)
{
    auto *const menu = qobject_cast<QMenu *>(receiver);
    if (menu && event->type() == QEvent::Leave) {
        QTimer::singleShot(menuPatience, menu, [menu] {
            if (!menu->underMouse() && !menu->isActiveWindow())
                menu->close();
        });
    }
    return QWidget::eventFilter(receiver, event);
}

void LauncherHitView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        endPress();
        m_isPressed = true;
        m_pressOnScreen = event->globalPosition();
        m_pressInWindow = event->scenePosition();
        m_interaction.press(position(*event));
    }
}

void LauncherHitView::mouseMoveEvent(QMouseEvent *event)
{
    if (!event->buttons().testFlag(Qt::LeftButton))
        endPress();
    else if (m_isPressed)
        m_interaction.drag(position(*event));
}

void LauncherHitView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && std::exchange(m_isPressed, false))
        m_interaction.release(position(*event));
}

void LauncherHitView::contextMenuEvent(QContextMenuEvent *event)
{
    openMenu(event->globalPos());
}

void LauncherHitView::dragEnterEvent(QDragEnterEvent *event)
{
    if (DroppedText::isOffered(*event->mimeData())) {
        // What is elsewhere stays there.
        event->setDropAction(Qt::CopyAction);
        event->accept();
    }
}

void LauncherHitView::dropEvent(QDropEvent *event)
{
    event->setDropAction(Qt::CopyAction);
    event->accept();
    Q_EMIT dropped(DroppedText::from(DropReader(*event).data()));
}

void LauncherHitView::openMenu(QPoint place)
{
    // The menu takes the release.
    endPress();
    disconnect(m_menuLater);
    // Qt closes every menu when it tells, up to 0.4 s late, that a hidden window lost the keyboard.
    const QWindow *const focus = QGuiApplication::focusWindow();
    if (focus && !focus->isVisible()) {
        m_menuLater = connect(
            qGuiApp, &QGuiApplication::focusWindowChanged, this, [this, place] { openMenu(place); },
            Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
        return;
    }
    ThemedMenu *const menu = makeMenu();
    if (!PanelHints::menusMissEvents()) {
        menu->popup(place);
        return;
    }
    // Closed by the pointer that leaves it, should it not get the keyboard.
    menu->installEventFilter(this);
    place.setY(besideLauncher(menu->sizeHint().height()));
    if (PanelHints::menusCanBeWindows()) {
        menu->becomeWindow();
        menu->popup(place);
        PanelHints::activate(*menu);
    } else {
        PanelHints::prepareMenu(*menu);
        menu->popup(place);
        closeWithoutPointer(*menu);
    }
}

/// Closes a menu that holds the keyboard by a grab once the pointer has gone to a native window,
/// where no click can be seen.
void LauncherHitView::closeWithoutPointer(QMenu &menu)
{
    auto *const timer = new QTimer(&menu);
    const auto look = [&menu, wasHere = PanelHints::hasPointer(), misses = 0]() mutable {
        const bool isHere = PanelHints::hasPointer();
        wasHere |= isHere;
        misses = isHere ? 0 : misses + 1;
        if (wasHere && misses == 2)
            menu.close();
    };
    connect(timer, &QTimer::timeout, &menu, look);
    timer->start(menuPatience / 2);
}

/// The top of a menu that the launcher would cover, since it is above every window that has a
/// manager.
int LauncherHitView::besideLauncher(int height) const
{
    const int top = mapToGlobal(QPoint()).y();
    const int bottom = top + this->height();
    return bottom + height <= screen()->availableGeometry().bottom() ? bottom : top - height;
}

Point LauncherHitView::position(const QMouseEvent &event) const
{
    // Qt rounds places on the screen to whole points, but not those in the window, which stands
    // still until a drag begins.
    return m_screens.fromQt(m_interaction.isDragging()
                                ? event.globalPosition()
                                : m_pressOnScreen + event.scenePosition() - m_pressInWindow);
}

QString LauncherHitView::text(const QString &key) const
{
    return m_preferences ? m_preferences->text(key) : key;
}

void LauncherHitView::render()
{
    setAccessibleName(text(u"New note"_s));
}
