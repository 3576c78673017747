// SPDX-License-Identifier: MIT
#pragma once

#include "GlassSurface.h"
#include "Note.h"
#include "WorkspaceTab.h"

#include <QPointer>
#include <optional>

class AppPreferences;
class ErrorBanner;
class NoteStore;
class PlainButton;
class PreferencesMenu;
class QUrl;
class QuietIconButton;
class TextLabel;
struct TakeInPlan;

/// The content of the editor panel: header, error banner, one of three screens, footer.
///
/// Knows which tab is chosen and which note is open, and nothing else of its own. A screen lives
/// while it is shown: going elsewhere and back makes a fresh one.
///
/// Ctrl+F goes to the search from anywhere, Ctrl+N to the capture screen, Ctrl+Tab to the other
/// tab, Alt+Left from a note back to the list; F1 and Ctrl+? show the keys.
class NoteWorkspaceView final : public GlassSurface {
    Q_OBJECT

public:
    NoteWorkspaceView(NoteStore &store, AppPreferences &preferences, QWidget *parent = nullptr);
    ~NoteWorkspaceView() override;

    /// The editor was to fold and cannot, since nothing can be saved: from now on the banner also
    /// names the key that quits, until a save succeeds.
    void showWayOut();

    /// Goes to the list of notes, as by its tab.
    void showLibrary();

Q_SIGNALS:
    /// By the button, or because the thought is saved.
    void collapseRequested();
    void showFolderRequested(const QUrl &folder);
    void showFileRequested(const QUrl &file);

protected:
    /// What no field has use for. Keys and not shortcuts: see SaveKeys.
    void keyPressEvent(QKeyEvent *event) override;

private:
    bool takeKey(const QKeyEvent &event);
    void chooseTab(WorkspaceTab tab);
    void open(const Note &note);
    void search();
    void confirmDeletion(const Note &note);
    void deleteNote(const Note &note);
    void showKeys();
    void closeNote();
    void retry();
    void reload();
    void askToTakeIn();
    void takeIn(const TakeInPlan &plan);

    /// After the notes were loaded anew: what is open may be another, or gone.
    void showReloaded();
    void showFile();

    [[nodiscard]] QWidget *makeScreen();
    /// A library that comes after a note has the keyboard on it.
    void showScreen(const std::optional<Note> &returningFrom = {});

    [[nodiscard]] QString failureText() const;
    void renderTexts();
    void renderTabs();
    void renderBanner();
    void renderCount();

    NoteStore &m_store;
    AppPreferences &m_preferences;
    WorkspaceTab m_tab = WorkspaceTab::capture;
    std::optional<Note> m_selectedNote;
    bool m_showsWayOut = false;

    std::array<PlainButton *, allWorkspaceTabs.size()> m_tabs{};
    QuietIconButton *const m_collapse;
    ErrorBanner *const m_banner;
    QWidget *const m_content;
    QWidget *m_screen = nullptr;

    /// Lies over the whole window while it is shown.
    QPointer<QWidget> m_card;
    TextLabel *const m_storage;
    TextLabel *const m_count;
    TextLabel *const m_tagline;
};
