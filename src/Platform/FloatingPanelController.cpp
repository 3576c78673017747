// SPDX-License-Identifier: MIT
#include "FloatingPanelController.h"

#include "AppEnvironment.h"
#include "AppPreferences.h"
#include "Composition.h"
#include "FileBrowser.h"
#include "LauncherView.h"
#include "Metrics.h"
#include "NoteStore.h"
#include "NoteTheme.h"
#include "NoteWorkspaceView.h"
#include "PanelPlacement.h"
#include "Screens.h"
#include "SettingsLock.h"
#include "SystemAppearance.h"

#include <QApplication>
#include <QSettings>
#include <cmath>
#include <memory>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

/// From the pointer's coming: the launcher shows first that it has seen it, and what presses at
/// once does not wait for a preparation.
constexpr std::chrono::milliseconds warmUpDelay{15};

/// 0 when it is no number.
double number(const QVariant &value)
{
    const double read = value.toDouble();
    return std::isfinite(read) ? read : 0;
}

/// The frame of a launcher with its bottom left corner there.
Rect launcherAt(Point origin)
{
    return {origin.x, origin.y, Metrics::launcherSize.width(), Metrics::launcherSize.height()};
}

} // namespace

FloatingPanelController::FloatingPanelController(StoreSource store, AppPreferences &preferences,
                                                 QSettings &defaults, bool remembersPosition,
                                                 SystemAppearance &system, Screens &screens,
                                                 ApplicationFocus &focus, const QString &placesFile,
                                                 QObject *parent)
    : QObject(parent)
    , m_store(std::move(store))
    , m_preferences(preferences)
    , m_defaults(defaults)
    , m_remembersPosition(remembersPosition)
    , m_system(system)
    , m_screens(screens)
    , m_focus(focus)
    , m_places(placesFile)
    , m_arrangement(screens.arrangement())
    , m_launcher(FloatingPanel::Kind::launcher, Metrics::launcherSize)
    , m_editor(FloatingPanel::Kind::editor, Metrics::panelSize)
{
    m_launcher.setContent(makeLauncherContent());
    m_editor.onEscape = [this] { collapse(); };

    connect(&m_launcher, &FloatingPanel::lost, &m_launcher, &FloatingPanel::comeBack);
    connect(&m_editor, &FloatingPanel::lost, this, &FloatingPanelController::followLostEditor);
    connect(&m_editor, &FloatingPanel::quitRequested, this,
            &FloatingPanelController::quitRequested);
    connect(&m_screens, &Screens::changed, this, &FloatingPanelController::followScreens);
    connect(&m_preferences, &AppPreferences::didChange, this,
            &FloatingPanelController::applyPreferences);
    connect(&m_system, &SystemAppearance::changed, this,
            &FloatingPanelController::applySystemAppearance);

    m_warmUp.setSingleShot(true);
    m_warmUp.setInterval(warmUpDelay);
    connect(&m_warmUp, &QTimer::timeout, this, &FloatingPanelController::warmUp);

    applyPreferences();
    restorePosition();
}

FloatingPanelController::~FloatingPanelController() = default;

void FloatingPanelController::expand()
{
    if (m_isExpanded) {
        m_editor.makeKey();
        return;
    }
    // The editor comes to where the launcher is left.
    m_launcherView->endDrag();
    m_previousApplication = m_focus.frontmost();
    m_lastBeforeOpening = m_focus.lastWorkedIn();
    m_isExpanded = true;
    m_isWarm = true;
    m_warmUp.stop();
    m_store().takeInChanges();
    m_editor.setContent(makeEditorContent());
    placeEditor();
    m_launcher.hide();
    m_editor.makeKey();
}

void FloatingPanelController::showNotes()
{
    if (m_isExpanded && m_workspace)
        m_workspace->showLibrary();
}

void FloatingPanelController::collapse()
{
    if (write())
        fold(Handover::toPreviousApplication);
    else if (m_workspace)
        m_workspace->showWayOut();
}

void FloatingPanelController::take(const DroppedText &dropped)
{
    if (!dropped.refusal && m_store().add(dropped.text)) {
        m_launcherView->showKept();
        return;
    }
    const std::optional<Message> &reason = dropped.refusal ? dropped.refusal : m_store().failure();
    if (reason)
        m_launcherView->showRefusal(m_preferences.text(*reason));
}

bool FloatingPanelController::write()
{
    Composition::endIn(m_editor);
    NoteStore &store = m_store();
    return store.isReadOnly() || store.flush();
}

void FloatingPanelController::fold(Handover handover)
{
    m_isExpanded = false;
    m_editor.hide();
    m_launcher.show();
    if (handover == Handover::toPreviousApplication)
        giveKeyboardBack();

    // The next expand() makes a fresh workspace: none is kept all day behind the launcher.
    m_editor.setContent(nullptr);
}

void FloatingPanelController::giveKeyboardBack()
{
    // Where the user went on to meanwhile, or else where the user came from. Nobody had the
    // keyboard where a native Wayland window has: the compositor gives it back by itself.
    const std::optional<RunningApplication> &last = m_focus.lastWorkedIn();
    const std::optional<RunningApplication> user =
        last && last != m_lastBeforeOpening ? last : m_previousApplication;
    if (user && user->processId != QCoreApplication::applicationPid())
        m_focus.activate(*user);
}

void FloatingPanelController::followLostEditor()
{
    if (!m_isExpanded)
        return;
    // Where it cannot come back either, the launcher is better than nothing: the store keeps what
    // was typed, and the next opening shows it.
    if (write() || !m_editor.wasActive())
        fold(Handover::toNobody);
    else
        m_editor.comeBack();
}

QWidget *FloatingPanelController::makeLauncherContent()
{
    auto *const view = new LauncherView(m_preferences, m_screens);
    m_launcherView = view;
    connect(view, &LauncherView::approached, &m_warmUp, qOverload<>(&QTimer::start));
    connect(view, &LauncherView::openRequested, this, &FloatingPanelController::expand);
    connect(view, &LauncherView::dropped, this, &FloatingPanelController::take);
    connect(view, &LauncherView::moved, this, &FloatingPanelController::moveLauncher);
    connect(view, &LauncherView::quitRequested, this, &FloatingPanelController::quitRequested);

    auto *const environment = new AppEnvironment(m_preferences, m_system);
    environment->setContent(view);
    return environment;
}

QWidget *FloatingPanelController::makeEditorContent()
{
    auto *const workspace = new NoteWorkspaceView(m_store(), m_preferences);
    connect(workspace, &NoteWorkspaceView::collapseRequested, this,
            &FloatingPanelController::collapse);
    connect(workspace, &NoteWorkspaceView::showFolderRequested, this, &openInFileBrowser);
    connect(workspace, &NoteWorkspaceView::showFileRequested, this, &showInFileBrowser);
    m_workspace = workspace;

    auto *const environment = new AppEnvironment(m_preferences, m_system);
    environment->setContent(workspace);
    return environment;
}

void FloatingPanelController::warmUp()
{
    if (std::exchange(m_isWarm, true))
        return;
    // Fonts are most of it. They are not loaded at the start, because the launcher needs none.
    const std::unique_ptr<QWidget> workspace(makeEditorContent());
    workspace->grab();
}

void FloatingPanelController::applyPreferences()
{
    applySystemAppearance();
    m_launcher.setWindowTitle(m_preferences.text(u"Quillmark · Quick capture"_s));
}

void FloatingPanelController::applySystemAppearance()
{
    // Menus, tooltips and alerts are windows of their own, outside the panels' view trees.
    const ColorScheme scheme = colorScheme(m_preferences.appearance(), m_system.colorScheme());
    QApplication::setPalette(
        NoteTheme::palette(scheme, m_system.highContrast() ? Contrast::high : Contrast::normal));

    m_launcher.setCutOut(!m_system.isComposited());
    m_editor.setCutOut(!m_system.isComposited());
    m_launcher.setBlurred(m_system.blursBehind());
    m_editor.setBlurred(m_system.blursBehind());
}

void FloatingPanelController::moveLauncher(LauncherInteraction::Translation translation, bool ended)
{
    if (!m_dragOrigin) {
        const Rect frame = launcherFrame();
        m_dragOrigin = Point{frame.x, frame.y};
    }
    const Rect moved =
        launcherAt({m_dragOrigin->x + translation.width, m_dragOrigin->y - translation.height});
    if (!ended) {
        m_launcher.place(m_screens.toQt(moved));
        return;
    }
    m_dragOrigin.reset();
    clampLauncher(moved);
    savePosition();
    if (m_remembersPosition) {
        const Rect chosen = launcherFrame();
        m_places.choose(m_arrangement, {chosen.x, chosen.y});
    }
}

void FloatingPanelController::followScreens()
{
    const QString earlier = std::exchange(m_arrangement, m_screens.arrangement());
    const std::optional<Point> chosen =
        m_remembersPosition && earlier != m_arrangement ? m_places.in(m_arrangement) : std::nullopt;
    clampLauncher(chosen ? launcherAt(*chosen) : launcherFrame());
    if (m_isExpanded)
        placeEditor();
    savePosition();
}

void FloatingPanelController::restorePosition()
{
    clampLauncher(launcherAt(rememberedOrigin()));
    if (m_isExpanded)
        placeEditor();
    savePosition();
}

void FloatingPanelController::savePosition()
{
    if (!m_remembersPosition || !isLockFree(m_defaults))
        return;
    const Rect frame = launcherFrame();
    m_defaults.setValue(launcherXKey, frame.minX());
    m_defaults.setValue(launcherYKey, frame.minY());
    m_defaults.sync();
    m_places.noteStored({frame.minX(), frame.minY()});
}

Point FloatingPanelController::rememberedOrigin() const
{
    if (m_remembersPosition && m_defaults.contains(launcherXKey)) {
        const Point stored{number(m_defaults.value(launcherXKey)),
                           number(m_defaults.value(launcherYKey))};
        // Unless another hand has changed it since.
        return m_places.lastStored() == stored ? m_places.in(m_arrangement).value_or(stored)
                                               : stored;
    }
    return PanelPlacement::defaultLauncherOrigin(PanelPlacement::visibleArea(m_screens.main()));
}

Rect FloatingPanelController::launcherFrame() const
{
    return m_screens.fromQt(m_launcher.geometry());
}

void FloatingPanelController::clampLauncher(const Rect &frame)
{
    const Rect area = PanelPlacement::visibleArea(frame, m_screens.all(), m_screens.main());
    m_launcher.place(
        m_screens.toQt(PanelPlacement::clamped(frame, area, PanelPlacement::screenInset)));
}

void FloatingPanelController::placeEditor()
{
    const Rect launcher = launcherFrame();
    const Rect area = PanelPlacement::visibleArea(launcher, m_screens.all(), m_screens.main());
    m_editor.place(m_screens.toQt(PanelPlacement::editorFrame(launcher, area)));
}
