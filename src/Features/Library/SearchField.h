// SPDX-License-Identifier: MIT
#pragma once

#include "PlainTextField.h"

#include <QClipboard>

class AppPreferences;
class ClipboardReader;
class Composition;

/// Where words to search for are typed. Pasting waits for no other program, nor does the menu,
/// which is in the language of the preferences.
class SearchField final : public PlainTextField {
    Q_OBJECT

public:
    explicit SearchField(const AppPreferences &preferences, QWidget *parent = nullptr);

    /// Leaves nothing in it, nor of what an input method is composing.
    void empty();

    /// In the place of QLineEdit's, which waits for the owner of the clipboard.
    void paste();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void pasteFrom(QClipboard::Mode mode);
    void insertPasted(const QMimeData &pasted);

    const AppPreferences &m_preferences;
    Composition *const m_composition;
    ClipboardReader *const m_clipboard;
};
