// SPDX-License-Identifier: MIT
#pragma once

#include <QPushButton>
#include <QUrl>
#include <functional>
#include <optional>

class AppPreferences;
class QMenu;

/// The button in the header whose menu chooses language and appearance and shows the notes folder.
///
/// A push button, since Qt lets assistive tools open the menu of no other kind.
class PreferencesMenu final : public QPushButton {
    Q_OBJECT

public:
    /// Asked each time the menu opens; nothing leaves out "Show Markdown files".
    using NotesFolder = std::function<std::optional<QUrl>()>;

    PreferencesMenu(AppPreferences &preferences, NotesFolder notesFolder,
                    QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void showFolderRequested(const QUrl &folder);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void requestFolder();
    void render();

    AppPreferences &m_preferences;
    const NotesFolder m_notesFolder;
    QMenu *const m_menu;
    QMenu *const m_languages;
    QMenu *const m_appearances;
    QAction *const m_divider;
    QAction *const m_showFolder;
};
