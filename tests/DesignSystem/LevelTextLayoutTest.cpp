// SPDX-License-Identifier: MIT
#include "LevelTextLayout.h"
#include "Dice.h"
#include "EmojiFormats.h"
#include "NoteTheme.h"
#include "Pixels.h"

#include <QInputMethodEvent>
#include <QScrollBar>
#include <QSyntaxHighlighter>
#include <QTest>
#include <QTextBlock>
#include <QTextEdit>
#include <QTextFrame>
#include <functional>

using namespace Qt::Literals::StringLiterals;

class LevelTextLayoutTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void putsEverythingWhereTheToolkitDoes_data();
    void putsEverythingWhereTheToolkitDoes();
    void drawsWhatTheToolkitDraws_data();
    void drawsWhatTheToolkitDraws();
    void followsRandomEdits();
    void laysOutOnlyWhatIsLookedAt();
    void keepsWhatIsSeenInItsPlace();
    void putsEmojiInTheirFont();
    void keepsWhatIsComposedUnderlined();
    void reportsOnlyTheUsersChanges();
    void reachesTheEndOfAMillionLines();
};

namespace {

constexpr double lineHeight = 25;
constexpr QMarginsF margins(5, 3.4, 5, 9);
constexpr QSize viewSize(300, 180);

/// A text field as the toolkit lays it out, with lines of the same height.
struct PlainField : QTextEdit {
    explicit PlainField(QTextOption::WrapMode mode)
    {
        setFont(NoteTheme::font(15));
        document()->setDefaultFont(font());
        setAcceptRichText(false);
        setFrameStyle(QFrame::NoFrame);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setWordWrapMode(mode);
        setTabStopDistance(20);
        viewport()->setAutoFillBackground(false);
        // Two windows are never active both.
        setFocusPolicy(Qt::NoFocus);
        QPalette colors = palette();
        colors.setColor(QPalette::Highlight, Qt::blue);
        colors.setColor(QPalette::HighlightedText, Qt::white);
        setPalette(colors);
        resize(viewSize);
    }

    void setAll(const QString &text)
    {
        // Not setPlainText(), which takes a no-break space for a space.
        QTextCursor cursor(document());
        cursor.select(QTextCursor::Document);
        cursor.insertText(text);
    }
};

struct ToolkitField : PlainField {
    explicit ToolkitField(QTextOption::WrapMode mode)
        : PlainField(mode)
    {
        new ToolkitEmoji(document());
        setFormats();
    }

    void setFormats()
    {
        QTextFrameFormat frame = document()->rootFrame()->frameFormat();
        frame.setTopMargin(margins.top());
        frame.setBottomMargin(margins.bottom());
        frame.setLeftMargin(margins.left());
        frame.setRightMargin(margins.right());
        document()->rootFrame()->setFrameFormat(frame);
        QTextBlockFormat lines;
        lines.setLineHeight(lineHeight, QTextBlockFormat::FixedHeight);
        QTextCursor all(document());
        all.select(QTextCursor::Document);
        all.mergeBlockFormat(lines);
    }

private:
    struct ToolkitEmoji : QSyntaxHighlighter {
        using QSyntaxHighlighter::QSyntaxHighlighter;

        void highlightBlock(const QString &text) override
        {
            for (const auto &range : emojiFormats(text, document()->defaultFont()))
                setFormat(range.start, range.length, range.format);
        }
    };
};

struct LevelField : PlainField {
    explicit LevelField(QTextOption::WrapMode mode = QTextOption::WrapAtWordBoundaryOrAnywhere)
        : PlainField(mode)
        , layout(*new LevelTextLayout(document()))
    {
        layout.setMeasures(lineHeight, margins);
        QObject::connect(&layout, &LevelTextLayout::shifted, this, [this](double distance) {
            verticalScrollBar()->setValue(verticalScrollBar()->value() + int(distance));
        });
    }

    void scrollContentsBy(int dx, int dy) override
    {
        layout.setVisible(verticalScrollBar()->value(), viewport()->height());
        QTextEdit::scrollContentsBy(dx, dy);
    }

    LevelTextLayout &layout;
};

QString randomText(Dice &dice, int size)
{
    static const QStringList pieces{u"word "_s,
                                    u"a"_s,
                                    u"longerword "_s,
                                    u"\n"_s,
                                    u"骨架与门"_s,
                                    u"שלום "_s,
                                    u"عربي "_s,
                                    u"😀"_s,
                                    u"👩‍👩‍👧‍👦"_s,
                                    u"1️⃣"_s,
                                    u"\t"_s,
                                    u"\u2028"_s,
                                    u"e\u0301"_s,
                                    u"(12.5) "_s,
                                    u"   "_s,
                                    u"\u00a0"_s,
                                    u"कि"_s,
                                    u"🇨🇳"_s,
                                    u"https://ex.org/a/b "_s};
    QString text;
    while (text.size() < size)
        text += pieces[qsizetype(dice.below(std::uint64_t(pieces.size())))];
    return text;
}

void addTexts()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QTextOption::WrapMode>("mode");

    constexpr auto words = QTextOption::WrapAtWordBoundaryOrAnywhere;
    QTest::newRow("nothing") << QString() << words;
    QTest::newRow("a line") << u"one"_s << words;
    QTest::newRow("empty lines") << u"\n\n one \n\n"_s << words;
    QTest::newRow("wrapped") << u"All work and no play makes a note. "_s.repeated(9) << words;
    QTest::newRow("Chinese") << u"骨架与门，“引号”。"_s.repeated(9) << words;
    QTest::newRow("right to left") << u"שלום עולם "_s.repeated(20) << words;
    QTest::newRow("both directions") << u"abc שלום 123 def عربي. "_s.repeated(9) << words;
    QTest::newRow("emoji")
        << u"a 👩‍👩‍👧‍👦 b 🇨🇳 1️⃣ ✔ ✔️ "_s.repeated(9) << words;
    QTest::newRow("tabs") << u"a\tb\t\tc\nd\te"_s << words;
    QTest::newRow("line separators") << u"one\u2028two\u2028\u2028three"_s << words;
    QTest::newRow("one word") << QString(400, u'x') << words;
    QTest::newRow("anywhere") << u"All work and no play. "_s.repeated(20)
                              << QTextOption::WrapAnywhere;
    for (int seed = 1; seed <= 12; ++seed) {
        Dice dice(static_cast<std::uint64_t>(seed));
        QTest::addRow("random %d", seed) << randomText(dice, 20 * seed) << words;
    }
}

QRect rectAt(QTextEdit &field, int position)
{
    QTextCursor cursor(field.document());
    cursor.setPosition(position);
    return field.cursorRect(cursor);
}

/// For each place of the cursor the same rectangle, and for its middle the same place.
void compare(LevelField &ours, ToolkitField &toolkits)
{
    // The toolkit's is laid out as far as it is seen.
    static_cast<void>(toolkits.document()->documentLayout()->documentSize());
    QCOMPARE(ours.document()->toRawText(), toolkits.document()->toRawText());
    QCOMPARE(ours.layout.documentSize().height(),
             toolkits.document()->documentLayout()->documentSize().height());
    QCOMPARE(ours.verticalScrollBar()->maximum(), toolkits.verticalScrollBar()->maximum());
    ours.verticalScrollBar()->setValue(0);
    toolkits.verticalScrollBar()->setValue(0);
    for (int at = 0; at < ours.document()->characterCount(); ++at) {
        const QRect rect = rectAt(ours, at);
        QCOMPARE(rect, rectAt(toolkits, at));
        for (const int x : {0, 3, -3}) {
            const QPoint point = rect.center() + QPoint(x, 0);
            QCOMPARE(ours.cursorForPosition(point).position(),
                     toolkits.cursorForPosition(point).position());
        }
    }
}

} // namespace

void LevelTextLayoutTest::putsEverythingWhereTheToolkitDoes_data()
{
    addTexts();
}

void LevelTextLayoutTest::putsEverythingWhereTheToolkitDoes()
{
    QFETCH(const QString, text);
    QFETCH(const QTextOption::WrapMode, mode);
    LevelField ours(mode);
    ToolkitField toolkits(mode);
    ours.show();
    toolkits.show();

    ours.setAll(text);
    toolkits.setAll(text);

    compare(ours, toolkits);
}

void LevelTextLayoutTest::drawsWhatTheToolkitDraws_data()
{
    addTexts();
}

void LevelTextLayoutTest::drawsWhatTheToolkitDraws()
{
    QFETCH(const QString, text);
    QFETCH(const QTextOption::WrapMode, mode);
    LevelField ours(mode);
    ToolkitField toolkits(mode);
    for (PlainField *field : std::initializer_list<PlainField *>{&ours, &toolkits}) {
        field->show();
        field->setAll(text);
        QTextCursor some = field->textCursor();
        some.setPosition(static_cast<int>(text.size() / 3));
        some.setPosition(static_cast<int>(text.size() / 2), QTextCursor::KeepAnchor);
        field->setTextCursor(some);
        field->verticalScrollBar()->setValue(10);
    }

    for (const double ratio : {1.0, 2.0}) {
        const QImage image = Pixels::draw(*ours.viewport(), ratio);
        QVERIFY(text.trimmed().isEmpty() || !Pixels::inkBounds(image).isEmpty());
        QCOMPARE(image, Pixels::draw(*toolkits.viewport(), ratio));
    }
}

/// As long as it stays laid out, a text has the places that it would have if it were set at once.
void LevelTextLayoutTest::followsRandomEdits()
{
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        Dice dice(seed);
        LevelField ours;
        ToolkitField toolkits(QTextOption::WrapAtWordBoundaryOrAnywhere);
        ours.show();
        toolkits.show();
        for (int edit = 0; edit < 12; ++edit) {
            const auto characters = std::uint64_t(ours.document()->characterCount());
            const int from = int(dice.below(characters));
            const int to = int(dice.below(characters));
            const QString text = randomText(dice, int(dice.below(30)));
            const bool isUndo = dice.hasChance(20);
            const bool removes = dice.hasChance(40);
            for (PlainField *field : std::initializer_list<PlainField *>{&ours, &toolkits}) {
                QTextCursor cursor(field->document());
                cursor.setPosition(from);
                if (removes)
                    cursor.setPosition(to, QTextCursor::KeepAnchor);
                if (isUndo)
                    field->undo();
                else
                    cursor.insertText(text);
            }
            toolkits.document()->setUndoRedoEnabled(false);
            toolkits.setFormats();
            toolkits.document()->setUndoRedoEnabled(true);
            ours.document()->clearUndoRedoStacks();
            compare(ours, toolkits);
            if (QTest::currentTestFailed())
                QFAIL(qPrintable(u"seed %1, edit %2"_s.arg(seed).arg(edit)));
        }
    }
}

void LevelTextLayoutTest::laysOutOnlyWhatIsLookedAt()
{
    LevelField field;
    field.show();

    field.setAll(u"one line of words, and then another one that is wrapped\n"_s.repeated(5000));
    field.moveCursor(QTextCursor::End);

    int laidOut = 0;
    for (QTextBlock block = field.document()->begin(); block.isValid(); block = block.next())
        laidOut += block.layout()->lineCount() > 0 ? 1 : 0;
    QVERIFY(laidOut > 5);
    QVERIFY(laidOut < 100);
}

/// Whatever the paragraphs above turn out to be like when they are laid out.
void LevelTextLayoutTest::keepsWhatIsSeenInItsPlace()
{
    LevelField field;
    field.show();
    QString text;
    for (int i = 0; i < 400; ++i)
        text += QString(30, i % 2 == 0 ? u'i' : u'骨') + u" %1\n"_s.arg(i);
    field.setAll(text);
    field.moveCursor(QTextCursor::End);
    QScrollBar &bar = *field.verticalScrollBar();
    QVERIFY(bar.maximum() - bar.value() < lineHeight);

    while (bar.value() > 0) {
        const QTextCursor seen = field.cursorForPosition({10, 90});
        const int before = field.cursorRect(seen).top();
        const int value = bar.value();
        bar.setValue(value - 40);
        QVERIFY(bar.value() != value || value == 0);
        const int by = field.cursorRect(seen).top() - before;
        if (bar.value() > 0)
            QCOMPARE(by, 40);
    }

    // All of them have been seen by now.
    ToolkitField toolkits(QTextOption::WrapAtWordBoundaryOrAnywhere);
    toolkits.show();
    toolkits.setAll(text);
    QCOMPARE(field.layout.documentSize().height(),
             toolkits.document()->documentLayout()->documentSize().height());
}

void LevelTextLayoutTest::putsEmojiInTheirFont()
{
    LevelField field;
    field.show();

    field.setAll(u"ab 😀"_s);

    const QTextBlock block = field.document()->firstBlock();
    QCOMPARE(block.layout()->formats().size(), qsizetype(1));
    // The document itself stays without.
    QVERIFY(!block.begin().fragment().charFormat().hasProperty(QTextFormat::FontFamilies));
    QCOMPARE(field.document()->toPlainText(), u"ab 😀"_s);
}

void LevelTextLayoutTest::keepsWhatIsComposedUnderlined()
{
    LevelField field;
    field.show();
    field.setAll(u"a😀b😀c"_s);
    QTextCursor cursor = field.textCursor();
    cursor.setPosition(4);
    field.setTextCursor(cursor);
    QTextCharFormat underlined;
    underlined.setFontUnderline(true);

    QInputMethodEvent event(u"ni"_s, {{QInputMethodEvent::TextFormat, 0, 2, underlined}});
    QCoreApplication::sendEvent(&field, &event);

    QStringList found;
    for (const auto &range : field.document()->firstBlock().layout()->formats())
        found += u"%1+%2%3"_s.arg(range.start)
                     .arg(range.length)
                     .arg(range.format.fontUnderline() ? u"_"_s : QString());
    found.sort();
    QCOMPARE(found, QStringList({u"1+2"_s, u"4+2_"_s, u"6+2"_s}));
}

/// What laying out does to the document is nobody's change, and not part of a later one.
void LevelTextLayoutTest::reportsOnlyTheUsersChanges()
{
    LevelField field;
    field.show();
    field.setAll(u"😀\n"_s.repeated(200));
    QList<QList<int>> changes;
    connect(field.document(), &QTextDocument::contentsChange, this,
            [&](int at, int removed, int added) {
                changes.append({at, removed, added});
            });

    field.moveCursor(QTextCursor::Start);
    field.moveCursor(QTextCursor::End);
    field.insertPlainText(u"x"_s);

    QCOMPARE(changes, QList<QList<int>>({{600, 0, 1}}));
}

void LevelTextLayoutTest::reachesTheEndOfAMillionLines()
{
    LevelField field;
    field.show();

    // Beyond what a fixed-point number of 26.6 bits holds.
    field.setAll(QString(1'400'000, QChar(QChar::LineSeparator)).replace(700'000, 1, u'\n'));
    field.moveCursor(QTextCursor::End);
    field.insertPlainText(u"end"_s);

    QVERIFY(field.viewport()->rect().contains(field.cursorRect()));
    const QRect ink = Pixels::inkBounds(Pixels::draw(*field.viewport()));
    QVERIFY(ink.bottom() > field.cursorRect().top());
    QCOMPARE(field.cursorForPosition(field.cursorRect().center()).position(), 1'400'003);
}

QTEST_MAIN(LevelTextLayoutTest)
#include "LevelTextLayoutTest.moc"
