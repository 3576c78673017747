// SPDX-License-Identifier: MIT
#include "SearchField.h"

#include "AppPreferences.h"
#include "ClipboardReader.h"
#include "Composition.h"
#include "DropReader.h"
#include "EditMenu.h"
#include "Pasting.h"

#include <QContextMenuEvent>
#include <QKeyEvent>

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
    insert(Pasting::plainText(pasted));
}

void SearchField::keyPressEvent(QKeyEvent *event)
{
    if (const auto mode = Pasting::askedBy(*event)) {
        pasteFrom(*mode);
        event->accept();
    } else {
        PlainTextField::keyPressEvent(event);
    }
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

void SearchField::dropEvent(QDropEvent *event)
{
    DropReader::handOver(*event, [this](QDropEvent &read) { PlainTextField::dropEvent(&read); });
}

void SearchField::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu *const menu = EditMenu::make(this, m_preferences,
                                       {.canUndo = isUndoAvailable(),
                                        .canRedo = isRedoAvailable(),
                                        .hasSelection = hasSelectedText(),
                                        .isEmpty = text().isEmpty()});
    EditMenu::connectTo(*menu, this);
    EditMenu::popUp(*menu, *event, mapToGlobal(cursorRect().bottomLeft()));
}
