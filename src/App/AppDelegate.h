// SPDX-License-Identifier: MIT
#pragma once

#include "LaunchOptions.h"
#include "Message.h"

#include <QObject>
#include <functional>
#include <memory>
#include <optional>

class AccessibleIdentifiers;
class AppPreferences;
class ApplicationFocus;
class FloatingPanelController;
class NoteRepository;
class NoteStore;
class NotesService;
class QSettings;
class Screens;
class SystemAppearance;

/// Builds the long-lived objects of the program, owns them, and decides what starting it again and
/// quitting mean.
///
/// Until it was launched, and for good when the process only hosts other code, there are no
/// objects, and whatever is asked of it is nothing to do.
class AppDelegate final : public QObject {
    Q_OBJECT

public:
    enum class TerminateReply { now, cancel };

    /// Asks the user whether to quit although the last write failed.
    using QuitQuestion = std::function<bool(const AppPreferences *)>;

    explicit AppDelegate(QuitQuestion quitQuestion, QObject *parent = nullptr);
    ~AppDelegate() override;

    /// Builds preferences and panels, shows the launcher, and opens the editor when that is asked
    /// for. The notes are loaded once the launcher is painted. Those that cannot be read give a
    /// read-only store, which says so on screen. Only when another program has the notes for
    /// itself there is no start: then that is the answer, and nothing but the preferences was
    /// built.
    std::optional<Message> applicationDidFinishLaunching(const LaunchOptions &options);

    /// Opens the editor, or brings a question forward that waits for its answer. False: nothing is
    /// left to do for the caller.
    bool applicationShouldHandleReopen(bool hasVisibleWindows);

    /// Opens the editor with the list of notes.
    void showNotes();

    /// Makes one note of these addresses, as if they had been dropped on the launcher.
    void open(const QStringList &addresses);

    /// The program lives on without a window.
    [[nodiscard]] bool applicationShouldTerminateAfterLastWindowClosed() const { return false; }

    /// Writes what is in memory. When that fails and something typed would be lost, the user
    /// decides.
    [[nodiscard]] TerminateReply applicationShouldTerminate();

    /// Writes what is in memory, for an end that cannot be put off. False when that failed and
    /// something typed would be lost.
    bool applicationWillTerminate();

    /// What to say when it failed and the program ends all the same: why, and where what was typed
    /// is kept for the next start.
    [[nodiscard]] QString keepForNextStart();

    [[nodiscard]] AppPreferences *preferences() const noexcept { return m_preferences.get(); }
    [[nodiscard]] FloatingPanelController *panels() const noexcept { return m_panels.get(); }

    /// Whoever asks first has the notes loaded.
    [[nodiscard]] NoteStore *store();

    [[nodiscard]] bool hasLoaded() const noexcept { return m_store != nullptr; }

Q_SIGNALS:
    /// The user chose to quit.
    void quitRequested();

protected:
    bool eventFilter(QObject *receiver, QEvent *event) override;

private:
    void comeToRest();

    const QuitQuestion m_quitQuestion;

    // In the order of building; each may use those above it.
    std::unique_ptr<QSettings> m_defaults;
    std::unique_ptr<AppPreferences> m_preferences;
    /// Until the store has it.
    std::unique_ptr<NoteRepository> m_repository;
    std::unique_ptr<NoteStore> m_store;
    std::unique_ptr<SystemAppearance> m_system;
    std::unique_ptr<Screens> m_screens;
    std::unique_ptr<ApplicationFocus> m_focus;
    std::unique_ptr<FloatingPanelController> m_panels;
    std::unique_ptr<NotesService> m_notes;
    std::unique_ptr<AccessibleIdentifiers> m_identifiers;
};
