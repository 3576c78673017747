// SPDX-License-Identifier: MIT
#pragma once

#include <QMenu>
#include <QPoint>

class AppPreferences;
class QContextMenuEvent;

/// What a field of text can do at the moment.
struct EditState {
    bool canUndo = false;
    bool canRedo = false;
    bool hasSelection = false;
    bool isEmpty = true;
};

/// The context menu of a field of text, in the language of the preferences, where the toolkit's own
/// would be in the system's. To open it waits for no other program.
namespace EditMenu {

/// The menu, which deletes itself, with its actions named after their keys: "Undo", "Redo", "Cut",
/// "Copy", "Paste", "Select all".
[[nodiscard]] QMenu *make(QWidget *field, const AppPreferences &preferences,
                          const EditState &state);

/// Connects all of them to the field's own ways.
template <class Field>
void connectTo(const QMenu &menu, Field *field);

/// Where the pointer is, or below the cursor for the keyboard.
void popUp(QMenu &menu, QContextMenuEvent &event, const QPoint &belowCursor);

} // namespace EditMenu

template <class Field>
void EditMenu::connectTo(const QMenu &menu, Field *field)
{
    const auto connectAction = [&](const char *key, auto perform) {
        if (const auto *const action = menu.findChild<QAction *>(QLatin1StringView(key)))
            QObject::connect(action, &QAction::triggered, field, perform);
    };
    connectAction("Undo", &Field::undo);
    connectAction("Redo", &Field::redo);
    connectAction("Cut", &Field::cut);
    connectAction("Copy", &Field::copy);
    connectAction("Paste", &Field::paste);
    connectAction("Select all", &Field::selectAll);
}
