// SPDX-License-Identifier: MIT
#include "NoteTextEditor.h"
#include "AppPreferences.h"
#include "Dice.h"
#include "DocumentText.h"
#include "FixedEnvironment.h"
#include "NoteTheme.h"
#include "Pixels.h"
#include "SlimScrollBar.h"
#include "TextExtent.h"

#include <QAbstractTextDocumentLayout>
#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTimer>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

class NoteTextEditorTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesEachParagraphInItsOwnDirection();
    void returnsTheTextAsItWasSet_data();
    void returnsTheTextAsItWasSet();
    void keepsUniformLineEndsThroughAnEdit_data();
    void keepsUniformLineEndsThroughAnEdit();
    void leavesMixedLineEndsAloneUntilTheUserEdits();
    void takesOverLineEndsOfThePastedText();
    void announcesOnlyWhatTheUserDoes();
    void leavesTheTextAloneThatIsAlreadyThere();
    void forgetsUndoStepsOfAnEarlierText();
    void undoesAndRedoesWhatWasTyped();
    void pastesPlainTextOnly();
    void insertsNothingThatHasNoRoom_data();
    void insertsNothingThatHasNoRoom();
    void takesInNoHalfCharacter_data();
    void takesInNoHalfCharacter();
    void copiesPlainTextAsItIs();
    void startsANewLineWithShiftReturn();
    void keepsTheLineDistanceInEveryBlock();
    void keepsItsLinesLevelInEveryScript();
    void showsThePlaceholderWhereTheTextBegins();
    void hidesThePlaceholderBehindTextAndCompositions();
    void tellsReadersThePlaceholderWhileItIsSeen();
    void lendsThePlaceholderNoMouse();
    void speaksTheLanguageOfThePreferences();
    void takesTheKeyboardWhenItIsFirstShown();
    void movesOnWithTab();
    void leavesSavingAndFoldingToItsScreen_data();
    void leavesSavingAndFoldingToItsScreen();
    void countsACompositionOnlyWhenItIsCommitted();
    void commitsACompositionThatTheInputMethodForgets();
    void keepsEscapeWhileComposing();
    void offersAMenuInTheProgramsLanguage();
    void keepsItsScrollBarOutOfTheLines();
    void showsTheSurfaceBehindIt();
    void holdsALongText();
    void breaksEndlessWordsAnywhere();
    void tellsWhatChanged_data();
    void tellsWhatChanged();
    void tellsNothingOfFormatsAndCompositions();
    void insertsManyLinesWhileTheWindowAnswers();
    void insertsManyLinesWhateverTheLineEndsAre_data();
    void insertsManyLinesWhateverTheLineEndsAre();
    void takesInWhatIsTypedMeanwhile();
    void keepsWhatNeedsAllLinesForLater();
    void replacesAllLinesOnceTheyAreThere();
    void copiesLinesThatAreStillToCome();
    void staysExactWhateverIsEditedMeanwhile_data();
    void staysExactWhateverIsEditedMeanwhile();
    void takesWhatWaitsForAllLinesWhenItIsLeft();
    void opensManyLinesFromTheirEnd();
    void givesUpLinesOfAnEarlierText();
    void showsWhatIsTooLongForReading_data();
    void showsWhatIsTooLongForReading();
};

namespace {

constexpr auto placeholder = "A sentence. A thought.\nGet it down before it goes.";

struct Fixture {
    AppPreferences preferences{nullptr, AppLanguage::english, AppAppearance::light};
    FixedEnvironment window{ColorScheme::light};
    NoteTextEditor &editor =
        *new NoteTextEditor(preferences, QString::fromLatin1(placeholder), &window);
    QSignalSpy edited{&editor, &NoteTextEditor::textEdited};

    /// The text that follows from what the editor said of its changes.
    QString followed;
    bool fitsAlways = true;

    Fixture()
    {
        QObject::connect(&editor, &NoteTextEditor::textEdited, &window,
                         [this](const TextChange &change) {
                             fitsAlways = fitsAlways && change.fits(followed);
                             change.applyTo(followed);
                         });
        editor.resize(372, 200);
        window.resize(400, 260);
    }

    void set(const QString &text)
    {
        editor.setNoteText(text);
        followed = text;
    }

    [[nodiscard]] bool show()
    {
        window.show();
        window.activateWindow();
        return QTest::qWaitForWindowActive(&window);
    }

    void compose(const QString &preedit, const QString &commit = {})
    {
        QInputMethodEvent event(preedit, {});
        event.setCommitString(commit);
        QCoreApplication::sendEvent(&editor, &event);
    }

    [[nodiscard]] QString lastEdit() const { return edited.isEmpty() ? QString() : followed; }
};

/// Some of the text is not in the document yet.
bool isComing(const NoteTextEditor &editor)
{
    return editor.document()->characterCount() - 1 <
           DocumentText::paragraphs(editor.noteText()).size();
}

void setClipboard(const QString &text, const QString &html = {})
{
    auto *data = new QMimeData;
    if (!text.isNull())
        data->setText(text);
    if (!html.isNull())
        data->setHtml(html);
    QGuiApplication::clipboard()->setMimeData(data);
}

/// Draws the viewport without caret and takes what is on it.
QImage drawn(NoteTextEditor &editor)
{
    editor.setCursorWidth(0);
    return Pixels::draw(*editor.viewport());
}

} // namespace

void NoteTextEditorTest::returnsTheTextAsItWasSet_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("nothing") << QString();
    QTest::newRow("lines") << u"one\ntwo\n\nthree\n"_s;
    QTest::newRow("no-break space") << u"10\u00a0km, 5\u202fkg"_s;
    QTest::newRow("line separator") << u"one\u2028two"_s;
    QTest::newRow("tabs and runs of spaces") << u"\t a  b   c \t"_s;
    QTest::newRow("emoji of several code points") << u"👩‍👩‍👧‍👦 and 🇨🇳"_s;
    QTest::newRow("Chinese") << u"骨架与门，“引号”。"_s;
    QTest::newRow("right to left") << u"שלום עולם"_s;
    QTest::newRow("markup") << u"<b>not bold</b> &amp; # **md**"_s;
    QTest::newRow("byte order mark") << u"\ufeffstart"_s;
    QTest::newRow("CR LF") << u"one\r\ntwo\r\n"_s;
    QTest::newRow("CR") << u"one\rtwo"_s;
    QTest::newRow("mixed line ends") << u"one\r\ntwo\nthree\r"_s;
}

void NoteTextEditorTest::returnsTheTextAsItWasSet()
{
    QFETCH(QString, text);
    Fixture fixture;

    fixture.set(text);

    QCOMPARE(fixture.editor.noteText(), text);
    QCOMPARE(fixture.edited.size(), 0);
}

void NoteTextEditorTest::keepsUniformLineEndsThroughAnEdit_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("edited");

    QTest::newRow("LF") << u"one\ntwo\n"_s << u"one\ntwo\nx\ny"_s;
    QTest::newRow("CR LF") << u"one\r\ntwo\r\n"_s << u"one\r\ntwo\r\nx\r\ny"_s;
    QTest::newRow("CR") << u"one\rtwo\r"_s << u"one\rtwo\rx\ry"_s;
    QTest::newRow("no line end") << u"one"_s << u"onex\ny"_s;
    QTest::newRow("no-break space") << u"1\u00a0a\u2028b"_s << u"1\u00a0a\u2028bx\ny"_s;
}

void NoteTextEditorTest::keepsUniformLineEndsThroughAnEdit()
{
    QFETCH(QString, text);
    QFETCH(QString, edited);
    Fixture fixture;
    fixture.set(text);

    QTest::keyClicks(&fixture.editor, u"x"_s);
    QTest::keyClick(&fixture.editor, Qt::Key_Return);
    QTest::keyClicks(&fixture.editor, u"y"_s);

    QCOMPARE(fixture.editor.noteText(), edited);
    QCOMPARE(fixture.lastEdit(), edited);
}

void NoteTextEditorTest::leavesMixedLineEndsAloneUntilTheUserEdits()
{
    Fixture fixture;
    fixture.set(u"one\r\ntwo\nthree"_s);

    QTest::keyClick(&fixture.editor, Qt::Key_Home);
    QCOMPARE(fixture.editor.noteText(), u"one\r\ntwo\nthree"_s);

    QTest::keyClicks(&fixture.editor, u"x"_s);
    QCOMPARE(fixture.editor.noteText(), u"one\ntwo\nxthree"_s);
}

void NoteTextEditorTest::takesOverLineEndsOfThePastedText()
{
    Fixture fixture;
    fixture.set(u"one\n"_s);
    setClipboard(u"two\r\nthree"_s);

    fixture.editor.paste();

    QCOMPARE(fixture.editor.noteText(), u"one\ntwo\nthree"_s);
}

void NoteTextEditorTest::announcesOnlyWhatTheUserDoes()
{
    Fixture fixture;

    fixture.set(u"one"_s);
    fixture.set(u"two"_s);
    QTest::keyClick(&fixture.editor, Qt::Key_Left);
    fixture.preferences.setLanguage(AppLanguage::chinese);
    QCOMPARE(fixture.edited.size(), 0);

    QTest::keyClicks(&fixture.editor, u"!"_s);
    QCOMPARE(fixture.edited.size(), 1);
    QCOMPARE(fixture.lastEdit(), u"tw!o"_s);
}

void NoteTextEditorTest::leavesTheTextAloneThatIsAlreadyThere()
{
    Fixture fixture;
    fixture.set(u"one"_s);
    QTest::keyClicks(&fixture.editor, u" two"_s);
    QTest::keyClick(&fixture.editor, Qt::Key_Home);

    fixture.set(u"one two"_s);

    QCOMPARE(fixture.editor.textCursor().position(), 0);
    QVERIFY(fixture.editor.document()->isUndoAvailable());
}

void NoteTextEditorTest::forgetsUndoStepsOfAnEarlierText()
{
    Fixture fixture;
    fixture.set(u"one"_s);
    QTest::keyClicks(&fixture.editor, u" two"_s);

    fixture.set(u"another note"_s);
    fixture.editor.undo();

    QCOMPARE(fixture.editor.noteText(), u"another note"_s);
    QVERIFY(!fixture.editor.document()->isUndoAvailable());
    QVERIFY(fixture.editor.textCursor().atEnd());
}

void NoteTextEditorTest::undoesAndRedoesWhatWasTyped()
{
    Fixture fixture;
    fixture.set(u"one"_s);
    QTest::keyClicks(&fixture.editor, u" two"_s);

    QTest::keySequence(&fixture.editor, QKeySequence::Undo);
    QCOMPARE(fixture.editor.noteText(), u"one"_s);
    QCOMPARE(fixture.lastEdit(), u"one"_s);
    // Formats are no steps of their own: there is nothing left to undo.
    QVERIFY(!fixture.editor.document()->isUndoAvailable());

    QTest::keySequence(&fixture.editor, QKeySequence::Redo);
    QCOMPARE(fixture.editor.noteText(), u"one two"_s);
}

void NoteTextEditorTest::pastesPlainTextOnly()
{
    Fixture fixture;

    setClipboard(u"bold\u00a0text"_s, u"<b>bold</b> <i>text</i>"_s);
    fixture.editor.paste();
    QCOMPARE(fixture.editor.noteText(), u"bold\u00a0text"_s);

    setClipboard({}, u"<h1>Only</h1><p>as <b>HTML</b></p>"_s);
    fixture.editor.paste();
    QCOMPARE(fixture.editor.noteText(), u"bold\u00a0textOnly\nas HTML"_s);

    for (QTextBlock block = fixture.editor.document()->begin(); block.isValid();
         block = block.next()) {
        for (const QTextLayout::FormatRange &range : block.textFormats()) {
            QVERIFY(range.format.fontWeight() <= QFont::Normal);
            QVERIFY(!range.format.fontItalic());
        }
    }
}

void NoteTextEditorTest::insertsNothingThatHasNoRoom_data()
{
    QTest::addColumn<QString>("pasted");

    QTest::newRow("a character too many")
        << (QString(1000, u'x') + u'\n').repeated(TextExtent::mostCharacters / 1001 + 1);
    QTest::newRow("a line too many") << QString(TextExtent::mostLineEnds + 1, u'\n');
    QTest::newRow("a line too many within a paragraph")
        << QString(TextExtent::mostLineEnds + 1, QChar(QChar::LineSeparator));
    QTest::newRow("a character too many in a paragraph")
        << QString(TextExtent::mostInParagraph - 4, u'x');
}

void NoteTextEditorTest::insertsNothingThatHasNoRoom()
{
    QFETCH(const QString, pasted);
    Fixture fixture;
    fixture.set(u"kept"_s);
    const auto *refusal = fixture.editor.findChild<QLabel *>(u"pasteRefusal"_s);
    QVERIFY(refusal->isHidden());

    QGuiApplication::clipboard()->setText(pasted);
    fixture.editor.paste();

    QTRY_VERIFY(!refusal->isHidden());
    QCOMPARE(fixture.editor.noteText(), u"kept"_s);
    QCOMPARE(refusal->text(),
             u"Not inserted: a note has room for 16,777,216 characters and 1,000,000 lines, "
             "a paragraph for 1,200,000 characters."_s);
    QCOMPARE(refusal->geometry().bottom(), fixture.editor.height() - 1);
    QVERIFY(fixture.editor.viewport()->geometry().bottom() < refusal->geometry().top());

    // It is over with the next edit.
    QTest::keyClicks(&fixture.editor, u"!"_s);
    QVERIFY(refusal->isHidden());
    QCOMPARE(fixture.editor.viewport()->height(), fixture.editor.height());
    QCOMPARE(fixture.editor.noteText(), u"kept!"_s);
}

void NoteTextEditorTest::takesInNoHalfCharacter_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<QString>("left");

    QTest::newRow("the first half is taken away") << 1 << u"a\uFFFDb"_s;
    QTest::newRow("the second half is taken away") << 2 << u"a\uFFFDb"_s;
}

/// As assistive tools do, which count in units of UTF-16.
void NoteTextEditorTest::takesInNoHalfCharacter()
{
    QFETCH(const int, from);
    QFETCH(const QString, left);
    Fixture fixture;
    fixture.set(u"a\U0001FAB6b"_s);
    QTextCursor cursor(fixture.editor.document());
    cursor.setPosition(from);
    cursor.setPosition(from + 1, QTextCursor::KeepAnchor);

    cursor.removeSelectedText();

    QCOMPARE(fixture.editor.noteText(), left);
    QCOMPARE(fixture.edited.count(), 1);
    QCOMPARE(fixture.followed, left);
    QVERIFY(fixture.fitsAlways);
    fixture.editor.undo();
    QCOMPARE(fixture.editor.noteText(), u"a\U0001FAB6b"_s);
}

void NoteTextEditorTest::copiesPlainTextAsItIs()
{
    Fixture fixture;
    fixture.set(u"10\u00a0km\nnext\u2028line"_s);

    fixture.editor.selectAll();
    fixture.editor.copy();

    const QMimeData *copied = QGuiApplication::clipboard()->mimeData();
    QCOMPARE(copied->text(), u"10\u00a0km\nnext\u2028line"_s);
    QVERIFY(!copied->hasHtml());
}

void NoteTextEditorTest::startsANewLineWithShiftReturn()
{
    Fixture fixture;
    fixture.set(u"one"_s);

    QTest::keyClick(&fixture.editor, Qt::Key_Return, Qt::ShiftModifier);
    QTest::keyClicks(&fixture.editor, u"two"_s);

    QCOMPARE(fixture.editor.noteText(), u"one\ntwo"_s);
}

void NoteTextEditorTest::keepsTheLineDistanceInEveryBlock()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    const QFontMetricsF metrics(fixture.editor.font());
    const double expected = std::round(metrics.height()) + 7;
    const auto check = [&] {
        const QTextDocument &document = *fixture.editor.document();
        double last = -1;
        for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
            const double top = document.documentLayout()->blockBoundingRect(block).top();
            if (last >= 0)
                QCOMPARE(top - last, expected);
            last = top;
        }
    };

    fixture.set(u"one\ntwo\nthree"_s);
    check();
    setClipboard(u"\nfour\nfive\n"_s, u"<p>four</p><p>five</p>"_s);
    fixture.editor.paste();
    check();
    QTest::keyClick(&fixture.editor, Qt::Key_Return);
    check();
    fixture.editor.undo();
    fixture.editor.undo();
    check();
    fixture.editor.selectAll();
    QTest::keyClick(&fixture.editor, Qt::Key_Delete);
    QTest::keyClicks(&fixture.editor, u"a"_s);
    QTest::keyClick(&fixture.editor, Qt::Key_Return);
    QTest::keyClicks(&fixture.editor, u"b"_s);
    QCOMPARE(fixture.editor.document()->blockCount(), 2);
    check();
}

/// A line keeps its height and its base line when a character of another font is typed into it.
void NoteTextEditorTest::keepsItsLinesLevelInEveryScript()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    const auto baseLine = [&](int index) {
        const QTextBlock block = fixture.editor.document()->findBlockByNumber(index);
        const QTextLine line = block.layout()->lineAt(0);
        return block.layout()->position().y() + line.y() + line.ascent();
    };
    fixture.set(u"one\ntwo"_s);
    const double first = baseLine(0);
    const double second = baseLine(1);

    fixture.set(u"one 骨 😀\ntwo"_s);

    QVERIFY(std::abs(baseLine(0) - first) < 0.02);
    QVERIFY(std::abs(baseLine(1) - second) < 0.02);
}

void NoteTextEditorTest::showsThePlaceholderWhereTheTextBegins()
{
    for (const AppLanguage language : {AppLanguage::english, AppLanguage::chinese}) {
        Fixture fixture;
        fixture.preferences.setLanguage(language);
        QVERIFY(fixture.show());
        const QString text = fixture.preferences.text(QString::fromLatin1(placeholder));
        const QImage prompt = drawn(fixture.editor);

        fixture.set(text);

        const QRect ink = Pixels::inkBounds(drawn(fixture.editor));
        QCOMPARE(Pixels::inkBounds(prompt), ink);
        // The highest letters of the first line begin below the inset of 9, within the line.
        const QFontMetricsF metrics(fixture.editor.font());
        QVERIFY(ink.top() >= 9 - 1 && ink.top() < 9 + metrics.ascent() / 2);
        QVERIFY(ink.left() >= 5 && ink.left() <= 5 + 3);
    }
}

void NoteTextEditorTest::hidesThePlaceholderBehindTextAndCompositions()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    const QImage prompt = drawn(fixture.editor);
    QVERIFY(!Pixels::inkBounds(prompt).isEmpty());
    bool isTertiary = false;
    for (int y = 0; y < prompt.height(); ++y) {
        for (int x = 0; x < prompt.width(); ++x)
            isTertiary |=
                Pixels::isAlike(prompt.pixelColor(x, y),
                                NoteTheme::color(fixture.editor.palette(), Tone::tertiary));
    }
    QVERIFY(isTertiary);

    fixture.set(u" "_s);
    QVERIFY(Pixels::inkBounds(drawn(fixture.editor)).isEmpty());

    fixture.set({});
    QCOMPARE(drawn(fixture.editor), prompt);

    fixture.compose(u"n"_s);
    QVERIFY(Pixels::inkBounds(drawn(fixture.editor)).width() <
            Pixels::inkBounds(prompt).width() / 2);
    fixture.compose({});
    QCOMPARE(drawn(fixture.editor), prompt);
}

void NoteTextEditorTest::tellsReadersThePlaceholderWhileItIsSeen()
{
    Fixture fixture;
    const QString prompt = fixture.preferences.text(QString::fromLatin1(placeholder));
    QCOMPARE(fixture.editor.accessibleDescription(), prompt);

    fixture.set(u"milk"_s);
    QCOMPARE(fixture.editor.accessibleDescription(), QString());

    fixture.editor.selectAll();
    QTest::keyClick(&fixture.editor, Qt::Key_Delete);
    QCOMPARE(fixture.editor.accessibleDescription(), prompt);
    QTest::keyClicks(&fixture.editor, u"b"_s);
    QCOMPARE(fixture.editor.accessibleDescription(), QString());
}

void NoteTextEditorTest::lendsThePlaceholderNoMouse()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    fixture.window.setFocus();

    QTest::mouseClick(fixture.editor.viewport(), Qt::LeftButton, {}, {40, 20});

    QVERIFY(fixture.editor.hasFocus());
    QCOMPARE(fixture.editor.textCursor().position(), 0);
    QVERIFY(fixture.editor.viewport()->findChildren<QWidget *>().isEmpty());
}

void NoteTextEditorTest::speaksTheLanguageOfThePreferences()
{
    Fixture fixture;
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(&fixture.editor);
    QCOMPARE(fixture.editor.objectName(), u"noteEditor"_s);
    QCOMPARE(accessible->text(QAccessible::Name), u"Note text"_s);
    const QImage english = drawn(fixture.editor);

    fixture.preferences.setLanguage(AppLanguage::chinese);

    QCOMPARE(accessible->text(QAccessible::Name), u"笔记内容"_s);
    QVERIFY(drawn(fixture.editor) != english);
}

void NoteTextEditorTest::takesTheKeyboardWhenItIsFirstShown()
{
    Fixture fixture;
    auto *button = new QPushButton(&fixture.window);
    button->setFocus();
    QVERIFY(fixture.show());
    QVERIFY(fixture.editor.hasFocus());

    button->setFocus();
    fixture.editor.hide();
    fixture.editor.show();

    QVERIFY(button->hasFocus());
}

void NoteTextEditorTest::movesOnWithTab()
{
    Fixture fixture;
    auto *next = new QPushButton(&fixture.window);
    QWidget::setTabOrder(&fixture.editor, next);
    QVERIFY(fixture.show());

    QTest::keyClick(&fixture.editor, Qt::Key_Tab);
    QVERIFY(next->hasFocus());
    QTest::keyClick(next, Qt::Key_Backtab, Qt::ShiftModifier);
    QVERIFY(fixture.editor.hasFocus());
    QCOMPARE(fixture.editor.noteText(), QString());
}

void NoteTextEditorTest::leavesSavingAndFoldingToItsScreen_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<Qt::KeyboardModifier>("modifier");

    QTest::newRow("Control+Return") << Qt::Key_Return << Qt::ControlModifier;
    QTest::newRow("Super+Return") << Qt::Key_Return << Qt::MetaModifier;
    QTest::newRow("Control+Enter") << Qt::Key_Enter << Qt::ControlModifier;
    QTest::newRow("Control+Tab") << Qt::Key_Tab << Qt::ControlModifier;
    QTest::newRow("Escape") << Qt::Key_Escape << Qt::NoModifier;
}

void NoteTextEditorTest::leavesSavingAndFoldingToItsScreen()
{
    QFETCH(Qt::Key, key);
    QFETCH(Qt::KeyboardModifier, modifier);
    Fixture fixture;
    fixture.set(u"one"_s);

    for (const QEvent::Type type : {QEvent::ShortcutOverride, QEvent::KeyPress}) {
        QKeyEvent event(type, key, modifier, key == Qt::Key_Escape ? u"\x1b"_s : u"\r"_s);
        event.ignore();
        QCoreApplication::sendEvent(&fixture.editor, &event);
        QVERIFY(!event.isAccepted());
    }

    QCOMPARE(fixture.editor.noteText(), u"one"_s);
    QCOMPARE(fixture.edited.size(), 0);
}

void NoteTextEditorTest::countsACompositionOnlyWhenItIsCommitted()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    fixture.set(u"想"_s);

    fixture.compose(u"fa"_s);
    QVERIFY(fixture.editor.isComposing());
    QCOMPARE(fixture.editor.noteText(), u"想"_s);
    QCOMPARE(fixture.edited.size(), 0);

    fixture.compose({}, u"法"_s);
    QVERIFY(!fixture.editor.isComposing());
    QCOMPARE(fixture.editor.noteText(), u"想法"_s);
    QCOMPARE(fixture.edited.size(), 1);
}

void NoteTextEditorTest::commitsACompositionThatTheInputMethodForgets()
{
    Fixture fixture;
    QVERIFY(fixture.show());

    fixture.compose(u"xiang"_s);
    fixture.editor.commitComposition();
    QVERIFY(!fixture.editor.isComposing());
    QCOMPARE(fixture.editor.noteText(), u"xiang"_s);
    QCOMPARE(fixture.edited.size(), 1);

    fixture.editor.commitComposition();
    QCOMPARE(fixture.editor.noteText(), u"xiang"_s);
    QCOMPARE(fixture.edited.size(), 1);
}

void NoteTextEditorTest::keepsEscapeWhileComposing()
{
    Fixture fixture;
    fixture.compose(u"ni"_s);

    for (const QEvent::Type type : {QEvent::ShortcutOverride, QEvent::KeyPress}) {
        QKeyEvent event(type, Qt::Key_Escape, Qt::NoModifier);
        event.ignore();
        QCoreApplication::sendEvent(&fixture.editor, &event);
        QVERIFY(event.isAccepted());
    }
}

void NoteTextEditorTest::offersAMenuInTheProgramsLanguage()
{
    Fixture fixture;
    fixture.preferences.setLanguage(AppLanguage::chinese);
    QVERIFY(fixture.show());
    fixture.set(u"one"_s);
    QTest::keyClicks(&fixture.editor, u" two"_s);

    QContextMenuEvent event(QContextMenuEvent::Keyboard, {10, 10},
                            fixture.editor.mapToGlobal(QPoint(10, 10)));
    QCoreApplication::sendEvent(&fixture.editor, &event);

    QPointer<QMenu> menu = fixture.editor.findChild<QMenu *>(u"noteEditorMenu"_s);
    QVERIFY(menu && menu->isVisible());
    for (const QString &key :
         {u"Undo"_s, u"Redo"_s, u"Cut"_s, u"Copy"_s, u"Paste"_s, u"Select all"_s}) {
        const QString text = fixture.preferences.text(key);
        QVERIFY2(text != key, qPrintable(key));
        const auto actions = menu->actions();
        QVERIFY(std::any_of(actions.begin(), actions.end(), [&](const QAction *action) {
            return action->text().startsWith(text + u'\t');
        }));
    }
    QVERIFY(menu->actions().first()->isEnabled());
    menu->actions().first()->trigger();
    QCOMPARE(fixture.editor.noteText(), u"one"_s);
    menu->close();
    QTRY_VERIFY(!menu);
}

void NoteTextEditorTest::keepsItsScrollBarOutOfTheLines()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    QVERIFY(qobject_cast<SlimScrollBar *>(fixture.editor.verticalScrollBar()));
    const int width = fixture.editor.viewport()->width();

    fixture.set(u"line\n"_s.repeated(100));

    QCOMPARE(fixture.editor.viewport()->width(), width);
    QVERIFY(fixture.editor.verticalScrollBar()->maximum() > 0);
    // The cursor is at the end, and in sight.
    QVERIFY(fixture.editor.viewport()->rect().contains(fixture.editor.cursorRect()));
}

void NoteTextEditorTest::showsTheSurfaceBehindIt()
{
    Fixture fixture;
    fixture.set(u"x"_s);

    const QImage image = Pixels::draw(fixture.editor);

    QCOMPARE(image.pixelColor(200, 150).alpha(), 0);
    QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
}

void NoteTextEditorTest::holdsALongText()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    const QString megabyte = u"All work and no play makes a long note.\n"_s.repeated(26'215);

    fixture.set(megabyte);
    QTest::keyClicks(&fixture.editor, u"end"_s);

    QTRY_COMPARE(fixture.editor.noteText().size(), megabyte.size() + 3);
    QVERIFY(fixture.editor.noteText().endsWith(u".\nend"));
}

/// Only where a word has no end: everything else breaks between words, Chinese by its own rules.
void NoteTextEditorTest::breaksEndlessWordsAnywhere()
{
    Fixture fixture;
    const QString endless(100'000, u'x');

    fixture.set(u"word 骨架 "_s.repeated(1000) + QString(10'000, u'骨'));
    QCOMPARE(fixture.editor.wordWrapMode(), QTextOption::WrapAtWordBoundaryOrAnywhere);

    fixture.set(endless);
    QCOMPARE(fixture.editor.wordWrapMode(), QTextOption::WrapAnywhere);
    QCOMPARE(fixture.editor.noteText(), endless);

    fixture.set(u"word"_s);
    QCOMPARE(fixture.editor.wordWrapMode(), QTextOption::WrapAtWordBoundaryOrAnywhere);

    setClipboard(endless);
    fixture.editor.paste();
    QCOMPARE(fixture.editor.wordWrapMode(), QTextOption::WrapAnywhere);
    QCOMPARE(fixture.editor.noteText(), u"word"_s + endless);
}

void NoteTextEditorTest::tellsWhatChanged_data()
{
    QTest::addColumn<QString>("lineEnd");

    QTest::newRow("LF") << u"\n"_s;
    QTest::newRow("CR") << u"\r"_s;
    QTest::newRow("CR LF") << u"\r\n"_s;
}

void NoteTextEditorTest::tellsWhatChanged()
{
    QFETCH(const QString, lineEnd);
    static const QStringList pieces{u"word "_s, u"骨"_s,      u"😀"_s,      u"\U0001F601"_s,
                                    u"\n"_s,    u"e\u0301"_s, u"\u2028"_s, u"\u00a0"_s,
                                    u"שלום"_s,  u"aa"_s};
    for (std::uint64_t seed = 1; seed <= 60; ++seed) {
        Dice dice(seed);
        const auto random = [&dice](int most) {
            QString text;
            for (auto i = dice.below(std::uint64_t(most)); i > 0; --i)
                text += pieces[qsizetype(dice.below(std::uint64_t(pieces.size())))];
            return text;
        };
        Fixture fixture;
        QString first = random(40) + u'\n';
        fixture.set(first.replace(u"\n"_s, lineEnd));
        QTextDocument &document = *fixture.editor.document();
        for (int edit = 0; edit < 20; ++edit) {
            QTextCursor cursor(&document);
            cursor.setPosition(int(dice.below(std::uint64_t(document.characterCount()))));
            if (dice.hasChance(50))
                cursor.setPosition(int(dice.below(std::uint64_t(document.characterCount()))),
                                   QTextCursor::KeepAnchor);
            if (dice.hasChance(15))
                document.undo();
            else if (dice.hasChance(10))
                document.redo();
            else
                cursor.insertText(random(4));
            QString whole = document.toRawText();
            whole.replace(QChar(QChar::ParagraphSeparator), lineEnd);
            const QByteArray where = u"seed %1, edit %2"_s.arg(seed).arg(edit).toUtf8();
            QVERIFY2(fixture.editor.noteText() == whole, where.constData());
            QVERIFY2(fixture.followed == whole && fixture.fitsAlways, where.constData());
        }
    }
}

void NoteTextEditorTest::tellsNothingOfFormatsAndCompositions()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    fixture.set(u"one 😀\ntwo"_s);

    fixture.compose(u"ni"_s);
    fixture.compose({});
    QTextCursor all(fixture.editor.document());
    all.select(QTextCursor::Document);
    QTextBlockFormat centred;
    centred.setAlignment(Qt::AlignCenter);
    all.mergeBlockFormat(centred);

    QCOMPARE(fixture.edited.size(), 0);
}

void NoteTextEditorTest::insertsManyLinesWhileTheWindowAnswers()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    fixture.set(u"before\nafter"_s);
    QTextCursor cursor = fixture.editor.textCursor();
    cursor.setPosition(7);
    fixture.editor.setTextCursor(cursor);
    const QString lines = u"one of many lines 骨\r\n"_s.repeated(30'000);
    const QString whole = u"before\n"_s + QString(lines).replace(u"\r\n"_s, u"\n"_s) + u"after"_s;

    QGuiApplication::clipboard()->setText(lines);
    fixture.editor.paste();

    // All of it is told at once, and seen later.
    QCOMPARE(fixture.edited.size(), 1);
    QVERIFY(fixture.editor.noteText() == whole && fixture.followed == whole);
    QVERIFY(fixture.editor.document()->blockCount() < 30'000);
    int heard = 0;
    QTimer other;
    connect(&other, &QTimer::timeout, this, [&heard] { ++heard; });
    other.start(0);
    QTRY_COMPARE(fixture.editor.document()->blockCount(), 30'002);
    QVERIFY(heard > 1);
    QVERIFY(fixture.editor.document()->toPlainText() == whole);
    QCOMPARE(fixture.editor.textCursor().position(), int(whole.size()) - 5);
    QCOMPARE(fixture.edited.size(), 1);

    fixture.editor.undo();
    QCOMPARE(fixture.editor.noteText(), u"before\nafter"_s);
    QCOMPARE(fixture.followed, u"before\nafter"_s);
}

void NoteTextEditorTest::insertsManyLinesWhateverTheLineEndsAre_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("lineEnd");

    QTest::newRow("CR LF") << u"one\r\ntwo\r\n"_s << u"\r\n"_s;
    QTest::newRow("mixed") << u"one\r\ntwo\n"_s << u"\n"_s;
}

void NoteTextEditorTest::insertsManyLinesWhateverTheLineEndsAre()
{
    QFETCH(const QString, text);
    QFETCH(const QString, lineEnd);
    Fixture fixture;
    fixture.set(text);
    QGuiApplication::clipboard()->setText(u"a\rb\n"_s.repeated(2000) + QChar(0xD83E));

    fixture.editor.paste();

    QString whole = u"one\ntwo\n"_s + u"a\nb\n"_s.repeated(2000) + u'\uFFFD';
    whole.replace(u"\n"_s, lineEnd);
    QVERIFY(fixture.editor.noteText() == whole);
    QVERIFY(fixture.followed == whole && fixture.fitsAlways);
    QTRY_VERIFY(!isComing(fixture.editor));
    QTest::keyClicks(&fixture.editor, u"!"_s);
    QVERIFY(fixture.editor.noteText() == whole + u'!');
    QVERIFY(fixture.followed == whole + u'!' && fixture.fitsAlways);
}

void NoteTextEditorTest::takesInWhatIsTypedMeanwhile()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    fixture.set(u"before "_s);
    const QString lines = u"one of many lines\n"_s.repeated(30'000);
    QGuiApplication::clipboard()->setText(lines);
    fixture.editor.paste();

    QTest::keyClicks(&fixture.editor, u"ab"_s);
    QTest::keyClick(&fixture.editor, Qt::Key_Backspace);
    QTest::keyClick(&fixture.editor, Qt::Key_Return);
    QTest::keyClicks(&fixture.editor, u"c"_s);

    const QString whole = u"before "_s + lines + u"a\nc"_s;
    QVERIFY(isComing(fixture.editor));
    QVERIFY(fixture.editor.noteText() == whole && fixture.followed == whole);
    QCOMPARE(fixture.editor.document()->lastBlock().text(), u"c"_s);
    QVERIFY(fixture.editor.viewport()->rect().contains(fixture.editor.cursorRect()));
    QTRY_VERIFY(!isComing(fixture.editor));
    QVERIFY(fixture.editor.document()->toPlainText() == whole);
    QVERIFY(fixture.editor.noteText() == whole && fixture.followed == whole);
    fixture.editor.undo();
    QCOMPARE(fixture.editor.noteText(), u"before "_s);
    fixture.editor.redo();
    QVERIFY(fixture.editor.noteText() == whole && fixture.followed == whole);
}

void NoteTextEditorTest::keepsWhatNeedsAllLinesForLater()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    const QString lines = u"one of many lines\n"_s.repeated(30'000);
    QGuiApplication::clipboard()->setText(lines);
    fixture.editor.paste();
    QGuiApplication::clipboard()->setText(u"pasted"_s);

    fixture.compose({}, u"写"_s);
    QTest::keySequence(&fixture.editor, QKeySequence::Paste);
    QTest::keyClicks(&fixture.editor, u"b"_s);
    QTest::keySequence(&fixture.editor, QKeySequence::MoveToStartOfDocument);
    QTest::keyClicks(&fixture.editor, u"a"_s);
    fixture.compose({}, u"法"_s);
    QVERIFY(fixture.editor.noteText() == lines);

    QTRY_COMPARE(fixture.editor.noteText().size(), lines.size() + 10);
    QVERIFY(fixture.editor.noteText() == u"a法"_s + lines + u"写pastedb"_s);
    QVERIFY(fixture.followed == fixture.editor.noteText() && fixture.fitsAlways);
}

void NoteTextEditorTest::replacesAllLinesOnceTheyAreThere()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    fixture.set(u"one of many lines\n"_s.repeated(30'000));

    QTest::keySequence(&fixture.editor, QKeySequence::SelectAll);
    QTest::keyClicks(&fixture.editor, u"all"_s);

    QTRY_COMPARE(fixture.editor.noteText(), u"all"_s);
    QCOMPARE(fixture.followed, u"all"_s);
}

void NoteTextEditorTest::copiesLinesThatAreStillToCome()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    QGuiApplication::clipboard()->setText(u"one of many lines\n"_s.repeated(30'000));
    fixture.set(u"before"_s);
    fixture.editor.paste();
    QVERIFY(isComing(fixture.editor));
    QTextCursor cursor = fixture.editor.textCursor();
    cursor.select(QTextCursor::Document);
    fixture.editor.setTextCursor(cursor);

    fixture.editor.copy();

    QVERIFY(isComing(fixture.editor));
    QVERIFY(QGuiApplication::clipboard()->text() == fixture.editor.noteText());
}

void NoteTextEditorTest::staysExactWhateverIsEditedMeanwhile_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isPasted");

    const QString line = u"line 骨 😀"_s;
    QTest::newRow("opened") << (line + u'\n').repeated(20'000) << false;
    QTest::newRow("opened, CR LF") << (line + u"\r\n"_s).repeated(20'000) << false;
    QTest::newRow("opened, mixed") << (line + u"\r\n"_s + line + u'\n').repeated(10'000) << false;
    QTest::newRow("pasted") << u"before the paste and behind it"_s << true;
    QTest::newRow("pasted, CR LF") << u"before\r\nthe paste\r\n and behind it"_s << true;
    QTest::newRow("pasted, mixed") << u"before\r\nthe paste\n and behind it"_s << true;
}

void NoteTextEditorTest::staysExactWhateverIsEditedMeanwhile()
{
    QFETCH(const QString, text);
    QFETCH(const bool, isPasted);
    int editsMeanwhile = 0;
    for (std::uint64_t seed = 1; seed <= 6; ++seed) {
        Dice dice(seed);
        Fixture fixture;
        fixture.set(text);
        QTextDocument &document = *fixture.editor.document();
        if (isPasted) {
            QTextCursor place(&document);
            place.setPosition(10);
            fixture.editor.setTextCursor(place);
            QGuiApplication::clipboard()->setText(u"pasted line\n"_s.repeated(20'000) + u"!"_s);
            fixture.editor.paste();
        }
        while (isComing(fixture.editor)) {
            // As assistive tools edit: anywhere, also across what is still to come.
            const int size = document.characterCount() - 1;
            const auto placeFrom = [&](int least, int most) {
                return least +
                       static_cast<int>(dice.below(static_cast<std::uint64_t>(most - least + 1)));
            };
            const int begin = placeFrom(0, size);
            const int end =
                dice.hasChance(90) ? std::min(size, begin + placeFrom(0, 30)) : placeFrom(0, size);
            QTextCursor cursor(&document);
            cursor.setPosition(begin);
            cursor.setPosition(dice.hasChance(50) ? begin : end, QTextCursor::KeepAnchor);
            cursor.insertText(dice.hasChance(30) ? QString() : u"new\ntext"_s);
            ++editsMeanwhile;
            QVERIFY2(fixture.followed == fixture.editor.noteText() && fixture.fitsAlways,
                     qPrintable(u"seed %1"_s.arg(seed)));
            QCoreApplication::processEvents();
        }
        const QString whole = document.toPlainText();
        QCOMPARE(DocumentText::paragraphs(fixture.editor.noteText()), whole);
        while (document.isUndoAvailable())
            fixture.editor.undo();
        if (isPasted)
            QCOMPARE(DocumentText::paragraphs(fixture.editor.noteText()),
                     DocumentText::paragraphs(text));
        while (document.isRedoAvailable())
            fixture.editor.redo();
        QCOMPARE(DocumentText::paragraphs(fixture.editor.noteText()), whole);
        QVERIFY(fixture.followed == fixture.editor.noteText() && fixture.fitsAlways);
    }
    // How many there are besides is for the speed of the computer.
    QVERIFY(editsMeanwhile >= 6);
}

void NoteTextEditorTest::takesWhatWaitsForAllLinesWhenItIsLeft()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    const QString lines = u"one of many lines\n"_s.repeated(30'000);
    QGuiApplication::clipboard()->setText(lines);
    fixture.editor.paste();
    QTest::keySequence(&fixture.editor, QKeySequence::MoveToStartOfDocument);
    QTest::keyClicks(&fixture.editor, u"ab"_s);
    QVERIFY(fixture.editor.noteText() == lines);

    Composition::endIn(fixture.editor);

    QVERIFY(fixture.editor.noteText() == u"ab"_s + lines);
    QVERIFY(fixture.followed == fixture.editor.noteText());
}

void NoteTextEditorTest::opensManyLinesFromTheirEnd()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    const QString lines =
        u"one of many lines, which is long enough to be wrapped once\n"_s.repeated(30'000);

    fixture.set(lines);

    QVERIFY(fixture.editor.noteText() == lines);
    QVERIFY(fixture.editor.viewport()->rect().contains(fixture.editor.cursorRect()));
    const QRect caret = fixture.editor.cursorRect();
    QTRY_VERIFY(!isComing(fixture.editor));
    QVERIFY(fixture.editor.document()->toPlainText() == lines);
    QCOMPARE(fixture.editor.cursorRect(), caret);
    QCOMPARE(fixture.edited.size(), 0);
    QVERIFY(!fixture.editor.document()->isUndoAvailable());
    QTest::keyClicks(&fixture.editor, u"end"_s);
    QVERIFY(fixture.editor.noteText() == lines + u"end"_s);
    QVERIFY(fixture.followed == lines + u"end"_s);
}

void NoteTextEditorTest::givesUpLinesOfAnEarlierText()
{
    Fixture fixture;
    fixture.set(u"one of many lines\n"_s.repeated(30'000));
    QVERIFY(isComing(fixture.editor));

    fixture.set(u"another note"_s);

    QVERIFY(!isComing(fixture.editor));
    QCOMPARE(fixture.editor.document()->toPlainText(), u"another note"_s);
    QTest::keyClicks(&fixture.editor, u"!"_s);
    QCOMPARE(fixture.followed, u"another note!"_s);
    QTest::qWait(0);
    QCOMPARE(fixture.editor.document()->toPlainText(), u"another note!"_s);
}

void NoteTextEditorTest::showsWhatIsTooLongForReading_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("a paragraph") << QString(TextExtent::mostInParagraph + 1, u'x');
    QTest::newRow("lines") << u"a\n"_s.repeated(TextExtent::mostLineEnds + 1);
}

void NoteTextEditorTest::showsWhatIsTooLongForReading()
{
    QFETCH(const QString, text);
    Fixture fixture;
    QVERIFY(fixture.show());

    fixture.set(text);

    const auto *reason = fixture.editor.findChild<QLabel *>(u"pasteRefusal"_s);
    QVERIFY(!reason->isHidden());
    QVERIFY(reason->text().startsWith(u"Shown for reading: a note has room for 16,777,216"_s));
    QTest::keyClicks(&fixture.editor, u"x"_s);
    fixture.editor.paste();
    QVERIFY(fixture.editor.isReadOnly());
    QVERIFY(fixture.editor.noteText() == text);
    QCOMPARE(fixture.edited.size(), 0);
    for (QTextBlock block = fixture.editor.document()->begin(); block.isValid();
         block = block.next())
        QVERIFY(block.length() < 25'000);

    fixture.set(u"short"_s);
    QVERIFY(reason->isHidden());
    QTest::keyClicks(&fixture.editor, u"!"_s);
    QCOMPARE(fixture.editor.noteText(), u"short!"_s);
}

void NoteTextEditorTest::writesEachParagraphInItsOwnDirection()
{
    Fixture fixture;

    fixture.set(u"Milk\nחלב\nحليب"_s);

    QTextBlock block = fixture.editor.document()->firstBlock();
    QCOMPARE(block.textDirection(), Qt::LeftToRight);
    block = block.next();
    QCOMPARE(block.textDirection(), Qt::RightToLeft);
    QCOMPARE(block.next().textDirection(), Qt::RightToLeft);
}

QTEST_MAIN(NoteTextEditorTest)
#include "NoteTextEditorTest.moc"
