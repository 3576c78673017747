// SPDX-License-Identifier: MIT
#include "NoteTextEditor.h"

#include "AccessibleRole.h"
#include "AppPreferences.h"
#include "ClipboardReader.h"
#include "DropReader.h"
#include "EditMenu.h"
#include "LevelTextLayout.h"
#include "Metrics.h"
#include "Named.h"
#include "PanelHints.h"
#include "Pasting.h"
#include "SlicedInsertion.h"
#include "SlimScrollBar.h"
#include "TextExtent.h"
#include "TextLabel.h"
#include "TextStyle.h"
#include "UserText.h"
#include "WellFormed.h"

#include <QAccessible>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTextBlock>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Insets and line distance.
///
/// Lines have a fixed height, that of the font and the distance. Were the distance added to what is
/// in the line, a line would jump as soon as a character of another script, from a font with other
/// heights, is typed into it.
void setMeasures(LevelTextLayout &layout, const QFont &font)
{
    const QFontMetricsF metrics(font);
    const double lineHeight = std::round(metrics.height()) + Metrics::editorLineSpacing;
    const double aboveText = lineHeight * 4 / 5 - metrics.ascent();
    layout.setMeasures(lineHeight,
                       {Metrics::placeholderLeading, Metrics::placeholderTop - aboveText,
                        Metrics::placeholderLeading, Metrics::placeholderTop});
}

/// It puts a letter, a line end or nothing in the place of what is selected.
bool isTyping(const QKeyEvent &event)
{
    constexpr auto commands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    if ((event.modifiers() & commands) != Qt::NoModifier)
        return false;
    return event.key() == Qt::Key_Backspace || event.key() == Qt::Key_Return ||
           event.key() == Qt::Key_Enter ||
           (!event.text().isEmpty() && event.text().front().category() != QChar::Other_Control);
}

/// Where the last lines of a text begin, as many as are quickly inserted.
qsizetype beginOfLastLines(const QString &text)
{
    qsizetype begin = text.size();
    for (int line = 0; line < SlicedInsertion::mostLinesAtOnce / 4 && begin > 0; ++line)
        begin = text.lastIndexOf(u'\n', begin - text.size() - 2) + 1;
    return begin;
}

} // namespace

NoteTextEditor::NoteTextEditor(const AppPreferences &preferences, const QString &placeholder,
                               QWidget *parent)
    : QTextEdit(parent)
    , m_preferences(preferences)
    , m_placeholderKey(placeholder)
    , m_layout(new LevelTextLayout(document()))
    , m_placeholderLayout(new LevelTextLayout(&m_placeholder))
    , m_refusal(named(u"pasteRefusal"_s, new TextLabel(TextStyles::banner, this)))
    , m_composition(new Composition(this))
    , m_clipboard(new ClipboardReader(this))
{
    setIdentifier(this, u"noteEditor"_s);
    setAcceptRichText(false);
    setTabChangesFocus(true);
    setFrameStyle(QFrame::NoFrame);
    viewport()->setAutoFillBackground(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Always there, but drawn only when there is something to scroll: lines keep their width.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setVerticalScrollBar(new SlimScrollBar(this));

    setCursorWidth(Metrics::caretWidth);
    setFont(TextStyles::editor.font(m_preferences.locale()));

    m_refusal->setWraps(true);
    setAccessibleRole(m_refusal, QAccessible::AlertMessage);
    m_refusal->hide();

    connect(document(), &QTextDocument::contentsChange, this, &NoteTextEditor::noteChange);
    connect(document(), &QTextDocument::contentsChanged, this, &NoteTextEditor::announceEdit);
    connect(m_layout, &LevelTextLayout::shifted, this, &NoteTextEditor::followShift);
    connect(m_composition, &Composition::fieldIsLeft, this, &NoteTextEditor::takeHeld);
    connect(m_clipboard, &ClipboardReader::arrived, this, &NoteTextEditor::insertPasted);
    connect(&m_preferences, &AppPreferences::languageChanged, this, &NoteTextEditor::translate);
    translate();
}

void NoteTextEditor::setNoteText(const QString &text)
{
    if (text == m_text.text())
        return;
    m_clipboard->cancel();
    delete m_insertion;
    m_held.clear();
    hideRefusal();
    m_text.set(text);
    const TextExtent extent = TextExtent::of(text);
    setWordWrapMode(extent.hasEndlessWord ? QTextOption::WrapAnywhere
                                          : QTextOption::WrapAtWordBoundaryOrAnywhere);
    m_isForReading = !extent.hasRoom();
    showText(DocumentText::paragraphs(m_isForReading ? readableBeginning(text) : text));
    describe();
    if (m_isForReading)
        showRefusal(
            u"Shown for reading: a note has room for %@ characters and %@ lines, a paragraph for %@ characters."_s);
}

/// Not an edit: leaves nothing to undo.
void NoteTextEditor::showText(const QString &text)
{
    const QSignalBlocker notTheUser(this);
    m_isShowing = true;
    document()->setUndoRedoEnabled(false);
    if (document()->blockCount() > SlicedInsertion::mostLinesAtOnce)
        document()->clear();
    // What is seen first: the rest comes before it, and what is seen stays where it is.
    const bool isAtOnce = text.count(u'\n') <= SlicedInsertion::mostLinesAtOnce;
    const qsizetype begin = isAtOnce ? 0 : beginOfLastLines(text);
    QTextCursor cursor(document());
    cursor.select(QTextCursor::Document);
    cursor.insertText(text.sliced(begin));
    if (isAtOnce)
        document()->setUndoRedoEnabled(true);
    m_isShowing = false;
    moveCursor(QTextCursor::End);
    setEditable(true);
    if (!isAtOnce)
        insertInSlices(0, text.first(begin));
    viewport()->update();
}

void NoteTextEditor::setEditable(bool isEditable)
{
    setTextInteractionFlags(isEditable && !m_isForReading
                                ? Qt::TextEditorInteraction
                                : Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

void NoteTextEditor::insertInSlices(int at, const QString &text)
{
    m_insertion = new SlicedInsertion(*document(), at, text, this);
    connect(m_insertion, &SlicedInsertion::finished, this, &NoteTextEditor::finishInsertion);
}

/// What had to wait comes now, in its order.
void NoteTextEditor::finishInsertion()
{
    m_insertion->deleteLater();
    m_insertion = nullptr;
    document()->setUndoRedoEnabled(true);
    for (const auto &held : std::exchange(m_held, {}))
        held();
}

/// Who goes elsewhere has meant what waits for this text.
void NoteTextEditor::takeHeld()
{
    if (m_insertion && !m_held.empty())
        m_insertion->finish();
}

void NoteTextEditor::commitComposition()
{
    takeHeld();
    m_clipboard->finish();
    m_composition->end();
}

bool NoteTextEditor::isBlank() const
{
    return !isComposing() && ::isBlank(m_text.text());
}

void NoteTextEditor::noteChange(int from, int removed, int added)
{
    if (m_isShowing || m_isForReading || (m_insertion && m_insertion->isInserting()))
        return;
    if (m_change) {
        // What was put in the place of half a character is as long as it.
        const int before = std::max(0, m_change->from - from);
        const int behind = std::max(0, from + added - m_change->from - m_change->added);
        m_change = {m_change->from - before, m_change->removed + before + behind,
                    m_change->added + before + behind};
    } else {
        m_change = {from, removed, added};
    }
}

void NoteTextEditor::announceEdit()
{
    // The replacement is an edit that is announced itself.
    if (!m_change || replaceHalfCharacters(m_change->from - 1, m_change->added + 2))
        return;
    const DocumentChange told = *std::exchange(m_change, std::nullopt);
    announce(m_text.follow(*document(), told.from, told.removed, told.added, gap()));
}

void NoteTextEditor::announce(const TextChange &change)
{
    if (change.isEmpty())
        return;
    if (!m_isForReading)
        hideRefusal();
    describe();
    Q_EMIT textEdited(change);
}

/// Other programs cut texts in the middle of a character; no file could hold such a half.
bool NoteTextEditor::replaceHalfCharacters(int from, int length)
{
    from = std::max(0, from);
    length = std::min(length, document()->characterCount() - 1 - from);
    const QString before = DocumentText::paragraphsAt(*document(), from, length);
    // Not those that the part itself cuts.
    const bool beginsInside = !before.isEmpty() && before.front().isLowSurrogate() && from > 0 &&
                              document()->characterAt(from - 1).isHighSurrogate();
    const bool endsInside = !before.isEmpty() && before.back().isHighSurrogate() &&
                            document()->characterAt(from + length).isLowSurrogate();
    const qsizetype begin = beginsInside ? 1 : 0;
    const qsizetype end = before.size() - (endsInside ? 1 : 0);
    const QString part = before.sliced(begin, end - begin);
    if (part.isValidUtf16())
        return false;
    const QString after = wellFormed(part);
    QTextCursor cursor(document());
    cursor.joinPreviousEditBlock();
    for (qsizetype at = part.size() - 1; at >= 0; --at) {
        if (part[at] == after[at])
            continue;
        cursor.setPosition(static_cast<int>(from + begin + at));
        cursor.setPosition(static_cast<int>(from + begin + at + 1), QTextCursor::KeepAnchor);
        cursor.insertText(after.mid(at, 1));
    }
    cursor.endEditBlock();
    return true;
}

bool NoteTextEditor::hasRoomFor(const TextExtent &inserted) const
{
    TextExtent extent = inserted;
    const QStringView missing = gap().text;
    extent.characters += document()->characterCount() + missing.size();
    extent.lineEnds += document()->blockCount() - 1 + missing.count(u'\n');
    extent.longestParagraph += textCursor().block().length();
    return extent.hasRoom();
}

void NoteTextEditor::showRefusal(const QString &key)
{
    const QLocale locale = m_preferences.locale();
    const QString sentence =
        m_preferences.format(key, {locale.toString(TextExtent::mostCharacters),
                                   locale.toString(TextExtent::mostLineEnds),
                                   locale.toString(TextExtent::mostInParagraph)});
    m_refusal->setText(sentence);
    m_refusal->setAccessibleName(sentence);
    m_refusal->show();
    placeRefusal();
    QAccessibleEvent announcement(m_refusal, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
}

void NoteTextEditor::hideRefusal()
{
    if (m_refusal->isHidden())
        return;
    m_refusal->hide();
    setViewportMargins({});
}

void NoteTextEditor::placeRefusal()
{
    const int height = m_refusal->heightForWidth(width());
    setViewportMargins(0, 0, 0, height);
    m_refusal->setGeometry(0, this->height() - height, width(), height);
}

void NoteTextEditor::resizeEvent(QResizeEvent *event)
{
    QTextEdit::resizeEvent(event);
    if (!m_refusal->isHidden() && m_refusal->geometry().bottom() != height() - 1)
        placeRefusal();
}

bool NoteTextEditor::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && isComposing() &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    return QTextEdit::event(event);
}

void NoteTextEditor::showEvent(QShowEvent *event)
{
    QTextEdit::showEvent(event);
    if (std::exchange(m_wasShown, true))
        return;
    setFocus(Qt::OtherFocusReason);
    ensureCursorVisible();
}

DocumentGap NoteTextEditor::gap() const
{
    return m_insertion ? m_insertion->gap() : DocumentGap();
}

/// The paragraphs that are selected, or those beside them, are not whole.
bool NoteTextEditor::isAtGap() const
{
    const QTextCursor cursor = textCursor();
    const QTextBlock before = document()->findBlock(cursor.selectionStart()).previous();
    const QTextBlock behind = document()->findBlock(cursor.selectionEnd()).next();
    const int position = gap().position;
    return (!before.isValid() || before.position() <= position) &&
           (!behind.isValid() || position < behind.position() + behind.length());
}

/// Whether it has to wait until the document has all of the text, or comes behind what waits.
bool NoteTextEditor::holds(const QKeyEvent &event) const
{
    if (!m_insertion || m_isForReading)
        return false;
    const auto matches = [&event](QKeySequence::StandardKey key) { return event.matches(key); };
    constexpr std::array needingAll{QKeySequence::Undo,
                                    QKeySequence::Redo,
                                    QKeySequence::SelectAll,
                                    QKeySequence::MoveToStartOfDocument,
                                    QKeySequence::MoveToEndOfDocument,
                                    QKeySequence::SelectStartOfDocument,
                                    QKeySequence::SelectEndOfDocument};
    if (std::ranges::any_of(needingAll, matches))
        return true;
    const bool waits = !m_held.empty() || isAtGap();
    constexpr std::array editing{QKeySequence::Cut, QKeySequence::Delete, QKeySequence::Paste,
                                 QKeySequence::DeleteStartOfWord, QKeySequence::DeleteEndOfWord};
    if (std::ranges::any_of(editing, matches))
        return waits || document()->isUndoRedoEnabled();
    constexpr std::array moving{Qt::Key_Left, Qt::Key_Right, Qt::Key_Up,
                                Qt::Key_Down, Qt::Key_Home,  Qt::Key_End};
    return waits && (isTyping(event) || std::ranges::count(moving, event.key()) > 0);
}

/// A key that is one step to undo with what is being pasted before it. Of another step of its own
/// the paste would become two.
bool NoteTextEditor::typeBehindPaste(const QKeyEvent &event)
{
    if (!m_insertion || m_isForReading || !document()->isUndoRedoEnabled() || !isTyping(event))
        return false;
    QTextCursor cursor = textCursor();
    cursor.joinPreviousEditBlock();
    if (event.key() == Qt::Key_Backspace)
        cursor.deletePreviousChar();
    else if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter)
        cursor.insertBlock();
    else
        cursor.insertText(event.text());
    cursor.endEditBlock();
    setTextCursor(cursor);
    ensureCursorVisible();
    return true;
}

void NoteTextEditor::hold(const QEvent &event)
{
    m_held.push_back([this, copy = std::shared_ptr<QEvent>(event.clone())] {
        QCoreApplication::sendEvent(this, copy.get());
    });
}

void NoteTextEditor::keyPressEvent(QKeyEvent *event)
{
    if (holds(*event)) {
        hold(*event);
        event->accept();
    } else if (typeBehindPaste(*event)) {
        event->accept();
    } else if (isComposing() && event->key() == Qt::Key_Escape) {
        event->accept();
    } else if (const auto mode = Pasting::askedBy(*event)) {
        pasteFrom(*mode);
        event->accept();
    } else if (event->matches(QKeySequence::InsertLineSeparator)) {
        // Shift+Return is a plain new line: U+2028 means nothing in a Markdown file.
        QKeyEvent plain(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, u"\r"_s);
        QTextEdit::keyPressEvent(&plain);
        event->accept();
    } else {
        QTextEdit::keyPressEvent(event);
    }
}

void NoteTextEditor::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::MiddleButton) {
        QTextEdit::mouseReleaseEvent(event);
        return;
    }
    setTextCursor(cursorForPosition(event->position().toPoint()));
    pasteFrom(QClipboard::Selection);
    event->accept();
}

void NoteTextEditor::inputMethodEvent(QInputMethodEvent *event)
{
    const bool isPaste = document()->isUndoRedoEnabled();
    if (m_insertion && !m_isForReading && (isPaste || !m_held.empty() || isAtGap())) {
        hold(*event);
        return;
    }
    QTextEdit::inputMethodEvent(event);
    viewport()->update();
    if (std::exchange(m_wasComposing, isComposing()) != isComposing())
        Q_EMIT compositionChanged();
}

bool NoteTextEditor::showsPlaceholder() const
{
    return document()->isEmpty() && !isComposing();
}

void NoteTextEditor::paintEvent(QPaintEvent *event)
{
    if (showsPlaceholder())
        paintPlaceholder();
    layOutVisible();
    QTextEdit::paintEvent(event);
}

void NoteTextEditor::scrollContentsBy(int dx, int dy)
{
    layOutVisible();
    QTextEdit::scrollContentsBy(dx, dy);
}

void NoteTextEditor::layOutVisible()
{
    m_layout->setVisible(verticalScrollBar()->value(), viewport()->height());
}

/// What is seen stays where it is.
void NoteTextEditor::followShift(double distance)
{
    QScrollBar &bar = *verticalScrollBar();
    bar.setValue(bar.value() + static_cast<int>(std::lround(distance)));
    viewport()->update();
}

void NoteTextEditor::paintPlaceholder()
{
    QPainter painter(viewport());
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette.setColor(QPalette::Text,
                             NoteTheme::color(palette(), TextStyles::editorPlaceholder.tone));
    m_placeholder.setTextWidth(viewport()->width());
    m_placeholder.documentLayout()->draw(&painter, context);
}

void NoteTextEditor::translate()
{
    const QString placeholder = m_preferences.text(m_placeholderKey);
    const QFont font = TextStyles::editor.font(m_preferences.locale());
    setFont(font);
    setMeasures(*m_layout, font);
    setMeasures(*m_placeholderLayout, font);
    setTabStopDistance(Metrics::editorTabSpaces * QFontMetricsF(font).horizontalAdvance(u' '));
    m_placeholder.setDefaultFont(font);
    m_placeholder.setPlainText(placeholder);
    setAccessibleText(this, m_preferences.text(u"Note text"_s),
                      document()->isEmpty() ? placeholder : QString());
    viewport()->update();
}

/// A reader says the prompt for as long as it is seen, and not behind the text of a note.
void NoteTextEditor::describe()
{
    const bool isEmpty = document()->isEmpty();
    if (isEmpty != accessibleDescription().isEmpty())
        return;
    setAccessibleDescription(isEmpty ? m_preferences.text(m_placeholderKey) : QString());
}

void NoteTextEditor::contextMenuEvent(QContextMenuEvent *event)
{
    if (m_insertion)
        return;
    QMenu *const menu = EditMenu::make(this, m_preferences,
                                       {.canUndo = document()->isUndoAvailable(),
                                        .canRedo = document()->isRedoAvailable(),
                                        .hasSelection = textCursor().hasSelection(),
                                        .isEmpty = document()->isEmpty()});
    EditMenu::connectTo(*menu, this);
    EditMenu::popUp(*menu, *event, viewport()->mapToGlobal(cursorRect().bottomLeft()));
}

void NoteTextEditor::dropEvent(QDropEvent *event)
{
    if (m_insertion) {
        event->ignore();
        return;
    }
    DropReader::handOver(*event, [this](QDropEvent &read) { QTextEdit::dropEvent(&read); });
    // Whoever drops text here goes on writing here.
    setFocus(Qt::MouseFocusReason);
    PanelHints::activate(*window());
}

QMimeData *NoteTextEditor::createMimeDataFromSelection() const
{
    const int begin = textCursor().selectionStart();
    const int end = textCursor().selectionEnd();
    const DocumentGap missing = gap();
    const int middle = std::clamp(missing.position, begin, end);
    QString text = DocumentText::paragraphsAt(*document(), begin, middle - begin);
    if (begin < missing.position && missing.position < end)
        text += missing.text;
    text += DocumentText::paragraphsAt(*document(), middle, end - middle);
    auto *copied = new QMimeData;
    copied->setText(text);
    return copied;
}

void NoteTextEditor::paste()
{
    pasteFrom(QClipboard::Clipboard);
}

void NoteTextEditor::pasteFrom(QClipboard::Mode mode)
{
    if (m_insertion && !m_isForReading) {
        m_held.push_back([this, mode] { pasteFrom(mode); });
        return;
    }
    if (isReadOnly() || m_clipboard->isReading(mode))
        return;
    m_pasteCursor = textCursor();
    m_pasteCursor.setKeepPositionOnInsert(true);
    m_pasteRevision = document()->revision();
    m_clipboard->read(mode);
}

void NoteTextEditor::insertPasted(const QMimeData &pasted)
{
    QTextCursor place = m_pasteCursor;
    place.setKeepPositionOnInsert(false);
    if (document()->revision() != m_pasteRevision)
        place.clearSelection();
    // Where the user went meanwhile, or behind what is pasted.
    const QTextCursor after = textCursor();
    setTextCursor(place);
    insertFromMimeData(&pasted);
    setTextCursor(after);
    ensureCursorVisible();
}

bool NoteTextEditor::canInsertFromMimeData(const QMimeData *source) const
{
    return source->hasText() || source->hasHtml();
}

void NoteTextEditor::insertFromMimeData(const QMimeData *source)
{
    const QString text = Pasting::plainText(*source);
    const TextExtent extent = TextExtent::of(text);
    if (!hasRoomFor(extent)) {
        showRefusal(
            u"Not inserted: a note has room for %@ characters and %@ lines, a paragraph for %@ characters."_s);
        return;
    }
    if (extent.hasEndlessWord)
        setWordWrapMode(QTextOption::WrapAnywhere);
    if (extent.lineEnds <= SlicedInsertion::mostLinesAtOnce)
        textCursor().insertText(text);
    else
        insertLong(wellFormed(text));
    ensureCursorVisible();
}

/// The text is whole at once, so that nothing is lost whatever comes; the document follows.
void NoteTextEditor::insertLong(const QString &text)
{
    textCursor().removeSelectedText();
    const int at = textCursor().position();
    const TextChange change = m_text.insert(*document(), at, text);
    const QString paragraphs = DocumentText::paragraphs(text);
    const qsizetype begin = beginOfLastLines(paragraphs);
    m_isShowing = true;
    textCursor().insertText(paragraphs.sliced(begin));
    m_isShowing = false;
    insertInSlices(at, paragraphs.first(begin));
    announce(change);
}
