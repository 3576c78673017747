// SPDX-License-Identifier: MIT
#include "SearchField.h"

#include "AppPreferences.h"
#include "ClipboardReader.h"
#include "Composition.h"
#include "ThemedMenu.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QTextDocumentFragment>

using namespace Qt::Literals::StringLiterals;

SearchField::SearchField(const AppPreferences &preferences, QWidget *parent)
    : PlainTextField(TextStyles::search, parent)
    , m_preferences(preferences)
    , m_composition(new Composition(this))
    , m_clipboard(new ClipboardReader(this))
{
    connect(m_clipboard, &ClipboardReader::arrived, this, &SearchField::insertPasted);
}

void SearchField::empty()
{
    m_composition->end();
    clear();
}

void SearchField::paste()
{
    pasteFrom(QClipboard::Clipboard);
}

void SearchField::pasteFrom(QClipboard::Mode mode)
{
    if (!m_clipboard->isReading(mode))
        m_clipboard->read(mode);
}

void SearchField::insertPasted(const QMimeData &pasted)
{
    insert(pasted.hasText() ? pasted.text()
                            : QTextDocumentFragment::fromHtml(pasted.html()).toPlainText());
}

void SearchField::keyPressEvent(QKeyEvent *event)
{
    if (!event->matches(QKeySequence::Paste)) {
        PlainTextField::keyPressEvent(event);
        return;
    }
    const bool isSelection = event->modifiers() == (Qt::ControlModifier | Qt::ShiftModifier) &&
                             event->key() == Qt::Key_Insert;
    pasteFrom(isSelection ? QClipboard::Selection : QClipboard::Clipboard);
    event->accept();
}

void SearchField::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::MiddleButton) {
        PlainTextField::mouseReleaseEvent(event);
        return;
    }
    setCursorPosition(cursorPositionAt(event->position().toPoint()));
    pasteFrom(QClipboard::Selection);
    event->accept();
}

void SearchField::contextMenuEvent(QContextMenuEvent *event)
{
    auto *const menu = new ThemedMenu(this);
    menu->setObjectName(u"searchFieldMenu"_s);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [&](const QString &key, QKeySequence::StandardKey shortcut, bool isPossible,
                         auto perform) {
        const QString shown = QKeySequence(shortcut).toString(QKeySequence::NativeText);
        QAction *const action = menu->addAction(m_preferences.text(key) + u'\t' + shown);
        action->setEnabled(isPossible);
        connect(action, &QAction::triggered, this, perform);
    };
    add(u"Undo"_s, QKeySequence::Undo, isUndoAvailable(), &QLineEdit::undo);
    add(u"Redo"_s, QKeySequence::Redo, isRedoAvailable(), &QLineEdit::redo);
    menu->addSeparator();
    add(u"Cut"_s, QKeySequence::Cut, hasSelectedText(), &QLineEdit::cut);
    add(u"Copy"_s, QKeySequence::Copy, hasSelectedText(), &QLineEdit::copy);
    add(u"Paste"_s, QKeySequence::Paste, ClipboardReader::mayHaveText(QClipboard::Clipboard),
        &SearchField::paste);
    menu->addSeparator();
    add(u"Select all"_s, QKeySequence::SelectAll, !text().isEmpty(), &QLineEdit::selectAll);

    const bool isByKeyboard = event->reason() == QContextMenuEvent::Keyboard;
    menu->popup(isByKeyboard ? mapToGlobal(cursorRect().bottomLeft()) : event->globalPos());
    event->accept();
}
