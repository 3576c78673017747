// SPDX-License-Identifier: MIT
#pragma once

#include <QToolButton>
#include <QUrl>
#include <functional>
#include <optional>

class AppPreferences;

/// The button in the header whose menu chooses language and appearance and shows the notes folder.
class PreferencesMenu final : public QToolButton
{
    Q_OBJECT

public:
    /// Asked each time the menu opens; nothing leaves out "Show Markdown files".
    using NotesFolder = std::function<std::optional<QUrl>()>;

    PreferencesMenu(AppPreferences &preferences, NotesFolder notesFolder, QWidget *parent = nullptr);

Q_SIGNALS:
    void showFolderRequested(const QUrl &folder);
};
