// SPDX-License-Identifier: MIT
#pragma once

#include "ApplicationFocus.h"
#include "ChosenPlaces.h"
#include "DroppedText.h"
#include "FloatingPanel.h"
#include "Geometry.h"
#include "LauncherInteraction.h"
#include "StrayPressFilter.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <optional>

class AppPreferences;
class LauncherView;
class NoteStore;
class NoteWorkspaceView;
class QSettings;
class Screens;
class SystemAppearance;

/// Owns the two panels: shows one of them, moves the launcher, remembers its place, and gives the
/// keyboard back to the program that had it.
///
/// One of them is truly on the screen at every moment. An editor that a window manager minimises,
/// covers or loses is folded; where what was typed cannot be saved it comes back.
class FloatingPanelController final : public QObject {
    Q_OBJECT

public:
    /// The launcher's bottom left corner, as numbers in y-up points.
    static constexpr auto launcherXKey = "launcher.x";
    static constexpr auto launcherYKey = "launcher.y";

    /// The one store. It loads all notes, and so it is asked for when it is needed and not before.
    using StoreSource = std::function<NoteStore &()>;

    /// Shows nothing yet. Everything given must outlive the controller.
    /// The file of places is that of ChosenPlaces.
    FloatingPanelController(StoreSource store, AppPreferences &preferences, QSettings &defaults,
                            bool remembersPosition, SystemAppearance &system, Screens &screens,
                            ApplicationFocus &focus,
                            const QString &placesFile = ChosenPlaces::defaultPath(),
                            QObject *parent = nullptr);
    ~FloatingPanelController() override;

    [[nodiscard]] FloatingPanel &launcher() noexcept { return m_launcher; }
    [[nodiscard]] FloatingPanel &editor() noexcept { return m_editor; }
    [[nodiscard]] bool isExpanded() const noexcept { return m_isExpanded; }

    /// Opens the editor in the launcher's place, with a fresh workspace; brings an open one
    /// forward.
    void expand();

    /// Shows the list of notes in the editor; nothing while that is folded.
    void showNotes();

    /// Writes, and folds the editor back into the launcher when that succeeded; else the editor
    /// says how to leave all the same.
    void collapse();

    /// Ends a composition of the input method in the editor, so that its text is kept, and writes.
    /// False when that failed; a read-only store has nothing to write.
    [[nodiscard]] bool write();

    /// Makes a note of it at once and shows so for a moment; says why not when that fails. The text
    /// of the capture screen stays as it is.
    void take(const DroppedText &dropped);

Q_SIGNALS:
    void quitRequested();

private:
    /// Who gets the keyboard when the editor folds.
    enum class Handover { toPreviousApplication, toNobody };

    void fold(Handover handover);
    void giveKeyboardBack();
    void followLostEditor();

    [[nodiscard]] QWidget *makeLauncherContent();
    [[nodiscard]] QWidget *makeEditorContent();

    /// Loads what the first workspace needs while the pointer is still on its way to the click.
    void warmUp();

    void applyPreferences();
    void applySystemAppearance();
    void moveLauncher(LauncherInteraction::Translation translation, bool ended);
    void followScreens();

    void restorePosition();
    void savePosition();
    [[nodiscard]] Point rememberedOrigin() const;

    [[nodiscard]] Rect launcherFrame() const;
    void clampLauncher(const Rect &frame);
    void placeEditor();

    const StoreSource m_store;
    AppPreferences &m_preferences;
    QSettings &m_defaults;
    const bool m_remembersPosition;
    SystemAppearance &m_system;
    Screens &m_screens;
    ApplicationFocus &m_focus;

    ChosenPlaces m_places;
    /// What m_places was last asked for.
    QString m_arrangement;
    const StrayPressFilter m_strayPresses;
    FloatingPanel m_launcher;
    FloatingPanel m_editor;
    LauncherView *m_launcherView = nullptr;
    /// What the editor shows, while it is open.
    QPointer<NoteWorkspaceView> m_workspace;

    /// Where the launcher was when the present drag began.
    std::optional<Point> m_dragOrigin;
    /// Who had the keyboard when the editor last opened.
    std::optional<RunningApplication> m_previousApplication;
    std::optional<RunningApplication> m_lastBeforeOpening;
    bool m_isExpanded = false;
    QTimer m_warmUp;
    bool m_isWarm = false;
};
