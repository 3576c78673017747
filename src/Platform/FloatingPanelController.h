// SPDX-License-Identifier: MIT
#pragma once

#include "FloatingPanel.h"
#include "Geometry.h"

#include <QObject>
#include <optional>

class AppPreferences;
class ApplicationFocus;
class NoteStore;
class QSettings;
class Screens;
class SystemAppearance;
struct RunningApplication;

/// Owns the two panels: shows one of them, moves the launcher, remembers its place, and gives the
/// keyboard back to the program that had it.
class FloatingPanelController final : public QObject
{
    Q_OBJECT

public:
    static constexpr auto launcherXKey = "launcher.x";
    static constexpr auto launcherYKey = "launcher.y";

    /// Shows nothing yet. Everything given must outlive the controller.
    FloatingPanelController(NoteStore &store, AppPreferences &preferences, QSettings &defaults,
                            bool remembersPosition, SystemAppearance &system, Screens &screens,
                            ApplicationFocus &focus, QObject *parent = nullptr);
    ~FloatingPanelController() override;

    [[nodiscard]] FloatingPanel &launcher() noexcept;
    [[nodiscard]] FloatingPanel &editor() noexcept;
    [[nodiscard]] bool isExpanded() const noexcept;

    /// Opens the editor in the launcher's place, with a fresh workspace; brings an open one forward.
    void expand();

    /// Writes, and folds the editor back into the launcher when that succeeded.
    void collapse();

Q_SIGNALS:
    void quitRequested();
};
