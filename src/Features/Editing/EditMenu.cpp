// SPDX-License-Identifier: MIT
#include "EditMenu.h"

#include "AppPreferences.h"
#include "ClipboardReader.h"
#include "ThemedMenu.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QKeySequence>

using namespace Qt::Literals::StringLiterals;

QMenu *EditMenu::make(QWidget *field, const AppPreferences &preferences, const EditState &state)
{
    auto *const menu = new ThemedMenu(field);
    menu->setObjectName(field->objectName() + "Menu"_L1);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [&](const QString &key, QKeySequence::StandardKey shortcut, bool isPossible) {
        const QString shown = QKeySequence(shortcut).toString(QKeySequence::NativeText);
        QAction *const action = menu->addAction(preferences.text(key) + u'\t' + shown);
        action->setObjectName(key);
        action->setEnabled(isPossible);
    };
    add(u"Undo"_s, QKeySequence::Undo, state.canUndo);
    add(u"Redo"_s, QKeySequence::Redo, state.canRedo);
    menu->addSeparator();
    add(u"Cut"_s, QKeySequence::Cut, state.hasSelection);
    add(u"Copy"_s, QKeySequence::Copy, state.hasSelection);
    add(u"Paste"_s, QKeySequence::Paste, ClipboardReader::mayHaveText(QClipboard::Clipboard));
    menu->addSeparator();
    add(u"Select all"_s, QKeySequence::SelectAll, !state.isEmpty);
    return menu;
}

void EditMenu::popUp(QMenu &menu, QContextMenuEvent &event, const QPoint &belowCursor)
{
    const bool isByKeyboard = event.reason() == QContextMenuEvent::Keyboard;
    menu.popup(isByKeyboard ? belowCursor : event.globalPos());
    event.accept();
}
