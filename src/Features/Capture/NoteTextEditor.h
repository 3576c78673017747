// SPDX-License-Identifier: MIT
#pragma once

#include <QTextDocument>
#include <QTextEdit>

class AppPreferences;

/// The text area of the capture and the edit screen: plain text, 15 points, 7 points between
/// lines, a placeholder while empty. Takes the keyboard when it is first shown.
///
/// Tab and Shift+Tab move on to the next control, so that nobody who works without a mouse is
/// caught in the text. Control+Return and Escape are left to the screen, Escape not while an input
/// method composes.
class NoteTextEditor final : public QTextEdit {
    Q_OBJECT

public:
    /// The placeholder is a text of the program, before translation.
    NoteTextEditor(const AppPreferences &preferences, const QString &placeholder,
                   QWidget *parent = nullptr);

    /// The text character by character: no-break spaces, tabs and U+2028 stay. Line ends are those
    /// of the text set last when they were all alike, and LF otherwise once the user has edited.
    [[nodiscard]] QString noteText() const { return m_text; }

    /// Replaces the text without textEdited(), forgets the undo steps and puts the cursor at the
    /// end. Does nothing when the text is already there.
    void setNoteText(const QString &text);

    /// Puts what an input method is composing into the text.
    void commitComposition();

    [[nodiscard]] bool isComposing() const noexcept { return !m_preedit.isEmpty(); }

    /// There is nothing to save: not in the text, nor in what is being composed, which becomes part
    /// of it.
    [[nodiscard]] bool isBlank() const;

Q_SIGNALS:
    /// The user changed the text. What an input method still composes is not part of it.
    void textEdited(const QString &text);

    /// isComposing() has changed.
    void compositionChanged();

protected:
    bool event(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    [[nodiscard]] QMimeData *createMimeDataFromSelection() const override;
    [[nodiscard]] bool canInsertFromMimeData(const QMimeData *source) const override;
    void insertFromMimeData(const QMimeData *source) override;

private:
    [[nodiscard]] QString readDocument() const;
    [[nodiscard]] bool showsPlaceholder() const;
    void announceEdit();
    void paintPlaceholder();
    void translate();

    const AppPreferences &m_preferences;
    const QString m_placeholderKey;
    QTextDocument m_placeholder;
    bool m_wasShown = false;
    QString m_preedit;

    /// As set, or as read after the user's last change.
    QString m_text;
    /// What readDocument() gave for m_text: the same but for line ends that were not alike.
    QString m_readText;
    QString m_lineEnd;
};
