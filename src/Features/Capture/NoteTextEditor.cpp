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
#include "SlimScrollBar.h"
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
#include <cmath>

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

/// Not an edit: leaves nothing to undo.
void replaceText(QTextDocument &document, const QString &text)
{
    document.setUndoRedoEnabled(false);
    QTextCursor cursor(&document);
    cursor.select(QTextCursor::Document);
    cursor.insertText(text);
    document.setUndoRedoEnabled(true);
}

/// The line end of a text in which all are alike; LF when there are none or several kinds.
QString uniformLineEnd(QStringView text)
{
    const auto lineEndAt = [&](qsizetype at) -> QStringView {
        const QChar c = text[at];
        if (c == u'\r')
            return text.mid(at, at + 1 < text.size() && text[at + 1] == u'\n' ? 2 : 1);
        return c == u'\n' || c == QChar::ParagraphSeparator ? text.mid(at, 1) : QStringView();
    };
    QStringView first;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const QStringView found = lineEndAt(at);
        if (found.isEmpty())
            continue;
        if (!first.isEmpty() && found != first)
            return u"\n"_s;
        first = found;
        at += found.size() - 1;
    }
    return first.isEmpty() ? u"\n"_s : first.toString();
}

/// A word of thousands of characters, such as an encoded picture. To look for a place to break it
/// QTextLayout takes time that grows with the square of its length, seconds for 100,000 characters.
/// Chinese and its like may be broken after every character and are no such words.
bool hasEndlessWord(QStringView text)
{
    constexpr qsizetype endless = 2000;
    constexpr char16_t firstOfEastAsia = 0x2e80;
    qsizetype length = 0;
    for (const QChar c : text) {
        length = c.isSpace() || c.unicode() >= firstOfEastAsia ? 0 : length + 1;
        if (length == endless)
            return true;
    }
    return false;
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
    , m_lineEnd(u"\n"_s)
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

    connect(this, &QTextEdit::textChanged, this, &NoteTextEditor::announceEdit);
    connect(m_layout, &LevelTextLayout::shifted, this, &NoteTextEditor::followShift);
    connect(m_clipboard, &ClipboardReader::arrived, this, &NoteTextEditor::insertPasted);
    connect(&m_preferences, &AppPreferences::languageChanged, this, &NoteTextEditor::translate);
    translate();
}

void NoteTextEditor::setNoteText(const QString &text)
{
    if (text == m_text)
        return;
    m_clipboard->cancel();
    hideRefusal();
    const QSignalBlocker notTheUser(this);
    setWordWrapMode(hasEndlessWord(text) ? QTextOption::WrapAnywhere
                                         : QTextOption::WrapAtWordBoundaryOrAnywhere);
    replaceText(*document(), text);
    m_lineEnd = uniformLineEnd(text);
    m_text = text;
    m_readText = readDocument();
    moveCursor(QTextCursor::End);
    describe();
    viewport()->update();
}

void NoteTextEditor::commitComposition()
{
    m_clipboard->finish();
    m_composition->end();
}

bool NoteTextEditor::isBlank() const
{
    return !isComposing() && ::isBlank(m_text);
}

/// QTextDocument::toPlainText() would turn no-break spaces into spaces and U+2028 into LF.
QString NoteTextEditor::readDocument() const
{
    QString text = document()->toRawText();
    text.replace(QChar(QChar::ParagraphSeparator), m_lineEnd);
    return text;
}

void NoteTextEditor::announceEdit()
{
    QString text = readDocument();
    // The replacement is an edit that is announced itself.
    if (text == m_readText || (!text.isValidUtf16() && replaceHalfCharacters()))
        return;
    hideRefusal();
    describe();
    m_readText = text;
    m_text = text;
    Q_EMIT textEdited(text);
}

/// Other programs cut texts in the middle of a character; no file could hold such a half.
bool NoteTextEditor::replaceHalfCharacters()
{
    const QString before = document()->toRawText();
    const QString after = wellFormed(before);
    QTextCursor cursor(document());
    cursor.joinPreviousEditBlock();
    bool isReplaced = false;
    for (qsizetype at = before.size() - 1; at >= 0; --at) {
        if (before[at] == after[at])
            continue;
        cursor.setPosition(static_cast<int>(at));
        cursor.setPosition(static_cast<int>(at + 1), QTextCursor::KeepAnchor);
        cursor.insertText(after.mid(at, 1));
        isReplaced = true;
    }
    cursor.endEditBlock();
    return isReplaced;
}

bool NoteTextEditor::hasRoomFor(QStringView text) const
{
    const qsizetype lines = text.count(u'\n') + text.count(QChar::ParagraphSeparator);
    return document()->characterCount() + text.size() <= mostCharacters &&
           document()->blockCount() + lines <= mostLines;
}

void NoteTextEditor::showRefusal()
{
    const QLocale locale = m_preferences.locale();
    const QString sentence =
        m_preferences.format(u"Not inserted: a note has room for %@ characters and %@ lines."_s,
                             {locale.toString(mostCharacters), locale.toString(mostLines)});
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

void NoteTextEditor::keyPressEvent(QKeyEvent *event)
{
    if (isComposing() && event->key() == Qt::Key_Escape) {
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
    replaceText(m_placeholder, placeholder);
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
    DropReader::handOver(*event, [this](QDropEvent &read) { QTextEdit::dropEvent(&read); });
    // Whoever drops text here goes on writing here.
    setFocus(Qt::MouseFocusReason);
    PanelHints::activate(*window());
}

QMimeData *NoteTextEditor::createMimeDataFromSelection() const
{
    QString text = textCursor().selectedText();
    text.replace(QChar(QChar::ParagraphSeparator), u'\n');
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
    if (!hasRoomFor(text)) {
        showRefusal();
        return;
    }
    if (hasEndlessWord(text))
        setWordWrapMode(QTextOption::WrapAnywhere);
    textCursor().insertText(text);
    ensureCursorVisible();
}
