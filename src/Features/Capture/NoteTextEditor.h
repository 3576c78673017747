// SPDX-License-Identifier: MIT
#pragma once

#include <QTextEdit>

class AppPreferences;

/// The text area of the capture and the edit screen: plain text, 15 points, 7 points between
/// lines, a placeholder while empty. Takes the keyboard when it is first shown.
class NoteTextEditor final : public QTextEdit
{
    Q_OBJECT

public:
    NoteTextEditor(const AppPreferences &preferences, const QString &placeholder,
                   QWidget *parent = nullptr);

    /// The text verbatim but for line ends, which are LF: no-break spaces and U+2028 stay.
    [[nodiscard]] QString noteText() const;

    /// Replaces the text without textEdited(); does nothing when it is already there, so that the
    /// cursor and the undo steps stay.
    void setNoteText(const QString &text);

    /// Puts what an input method is composing into the text.
    void commitComposition();

    [[nodiscard]] bool isComposing() const noexcept;

Q_SIGNALS:
    /// The user changed the text.
    void textEdited(const QString &text);
};
