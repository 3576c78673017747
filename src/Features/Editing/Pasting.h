// SPDX-License-Identifier: MIT
#pragma once

#include <QClipboard>
#include <QString>
#include <optional>

class QKeyEvent;
class QMimeData;

/// What fields of text have in common that paste by a ClipboardReader.
namespace Pasting {

/// What a key asks to paste: the clipboard, or with Control+Shift+Insert the selection.
[[nodiscard]] std::optional<QClipboard::Mode> askedBy(const QKeyEvent &key);

/// The text, or that of the HTML where there is no other.
[[nodiscard]] QString plainText(const QMimeData &pasted);

} // namespace Pasting
