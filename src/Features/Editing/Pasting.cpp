// SPDX-License-Identifier: MIT
#include "Pasting.h"

#include <QKeyEvent>
#include <QMimeData>
#include <QTextDocumentFragment>

std::optional<QClipboard::Mode> Pasting::askedBy(const QKeyEvent &key)
{
    if (!key.matches(QKeySequence::Paste))
        return std::nullopt;
    const bool isSelection =
        key.modifiers() == (Qt::ControlModifier | Qt::ShiftModifier) && key.key() == Qt::Key_Insert;
    return isSelection ? QClipboard::Selection : QClipboard::Clipboard;
}

QString Pasting::plainText(const QMimeData &pasted)
{
    if (pasted.hasText() || !pasted.hasHtml())
        return pasted.text();
    return QTextDocumentFragment::fromHtml(pasted.html()).toPlainText();
}
