// SPDX-License-Identifier: MIT
#pragma once

#include "Composition.h"
#include "DocumentText.h"

#include <QClipboard>
#include <QPointer>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextEdit>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class AppPreferences;
class ClipboardReader;
class LevelTextLayout;
class SlicedInsertion;
class TextLabel;
struct TextExtent;

/// The text area of the capture and the edit screen: plain text, 15 points, 7 points between
/// lines, a placeholder while empty. Takes the keyboard when it is first shown.
///
/// Tab and Shift+Tab move on to the next control, so that nobody who works without a mouse is
/// caught in the text. Control+Return and Escape are left to the screen, Escape not while an input
/// method composes.
///
/// What is pasted comes to where the cursor was then, also when its owner takes its time. What
/// would make the text longer than TextExtent allows is not inserted, and a line below the text
/// says so until the next edit. A note that is longer is shown for reading.
///
/// Of a text of many lines the last come into sight at once and the others in slices, while it is
/// edited; noteText() has all of it from the beginning. What needs all lines waits for them, and
/// what comes behind that, too.
class NoteTextEditor final : public QTextEdit {
    Q_OBJECT

public:
    /// The placeholder is a text of the program, before translation.
    NoteTextEditor(const AppPreferences &preferences, const QString &placeholder,
                   QWidget *parent = nullptr);

    /// The text character by character: no-break spaces, tabs and U+2028 stay. Line ends are those
    /// of the text set last when they were all alike, and LF otherwise once the user has edited.
    [[nodiscard]] QString noteText() const { return m_text.text(); }

    /// Replaces the text without textEdited(), forgets the undo steps and puts the cursor at the
    /// end. Does nothing when the text is already there.
    void setNoteText(const QString &text);

    /// Puts what an input method is composing into the text, and what is being pasted, for which it
    /// waits a second at most.
    void commitComposition();

    [[nodiscard]] bool isComposing() const noexcept { return m_composition->isGoingOn(); }

    /// There is nothing to save: not in the text, nor in what is being composed, which becomes part
    /// of it.
    [[nodiscard]] bool isBlank() const;

    /// In the place of QTextEdit's, which waits for the owner of the clipboard.
    void paste();

Q_SIGNALS:
    /// The user changed the text. What an input method still composes is not part of it.
    void textEdited(const TextChange &change);

    /// isComposing() has changed.
    void compositionChanged();

protected:
    bool event(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    [[nodiscard]] QMimeData *createMimeDataFromSelection() const override;
    [[nodiscard]] bool canInsertFromMimeData(const QMimeData *source) const override;
    void insertFromMimeData(const QMimeData *source) override;

private:
    /// What the document told of its last edit.
    struct DocumentChange {
        int from;
        int removed;
        int added;
    };

    [[nodiscard]] bool showsPlaceholder() const;
    void showText(const QString &text);
    void setEditable(bool isEditable);
    [[nodiscard]] DocumentGap gap() const;
    [[nodiscard]] bool isAtGap() const;
    void insertLong(const QString &text);
    void insertInSlices(int at, const QString &text);
    void finishInsertion();
    void takeHeld();
    [[nodiscard]] bool holds(const QKeyEvent &event) const;
    void hold(const QEvent &event);
    [[nodiscard]] bool typeBehindPaste(const QKeyEvent &event);
    void noteChange(int from, int removed, int added);
    void announceEdit();
    void announce(const TextChange &change);
    [[nodiscard]] bool replaceHalfCharacters(int from, int length);
    [[nodiscard]] bool hasRoomFor(const TextExtent &inserted) const;
    void showRefusal(const QString &key);
    void hideRefusal();
    void placeRefusal();
    void pasteFrom(QClipboard::Mode mode);
    void insertPasted(const QMimeData &pasted);
    void paintPlaceholder();
    void layOutVisible();
    void followShift(double distance);
    void translate();
    void describe();

    const AppPreferences &m_preferences;
    const QString m_placeholderKey;
    LevelTextLayout *const m_layout;
    QTextDocument m_placeholder;
    LevelTextLayout *const m_placeholderLayout;
    TextLabel *const m_refusal;
    bool m_wasShown = false;
    Composition *const m_composition;
    bool m_wasComposing = false;

    ClipboardReader *const m_clipboard;
    /// Where the text that is being read goes. What was selected there is replaced only as long as
    /// the document has the revision that it had then.
    QTextCursor m_pasteCursor;
    int m_pasteRevision = 0;

    DocumentText m_text;
    std::optional<DocumentChange> m_change;

    /// The document is made to show another text: nobody's edit.
    bool m_isShowing = false;
    bool m_isForReading = false;

    /// While there is one, the document lacks some of the text.
    QPointer<SlicedInsertion> m_insertion;
    std::vector<std::function<void()>> m_held;
};
