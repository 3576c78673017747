// SPDX-License-Identifier: MIT
#include "EmojiFormats.h"
#include "NoteTheme.h"

#include <QFont>
#include <QFontDatabase>
#include <QGlyphRun>
#include <QRawFont>
#include <QTest>
#include <QTextBoundaryFinder>

using namespace Qt::Literals::StringLiterals;

class EmojiFormatsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void findsWholeEmoji_data();
    void findsWholeEmoji();
    void leavesTextAlone_data();
    void leavesTextAlone();
    void asksForAFontWithColoursFirst();
    void drawsEachEmojiAsOne_data();
    void drawsEachEmojiAsOne();
};

void EmojiFormatsTest::findsWholeEmoji_data()
{
    QTest::addColumn<QString>("emoji");
    QTest::newRow("face") << u"😀"_s;
    QTest::newRow("skin tone") << u"👍🏽"_s;
    QTest::newRow("family") << u"👨‍👩‍👧‍👦"_s;
    QTest::newRow("profession") << u"👩🏻‍💻"_s;
    QTest::newRow("flag of a country") << u"🇩🇪"_s;
    QTest::newRow("flag of tags") << u"🏴󠁧󠁢󠁳󠁣󠁴󠁿"_s;
    QTest::newRow("heart") << u"\u2764\uFE0F"_s;
    QTest::newRow("heart on fire") << u"\u2764\uFE0F\u200D🔥"_s;
    QTest::newRow("joined with a sign") << u"🏳\uFE0F\u200D⚧\uFE0F"_s;
    QTest::newRow("keycap") << u"1\uFE0F\u20E3"_s;
    QTest::newRow("watch") << u"⌚"_s;
    QTest::newRow("several") << u"😀👍🏽🇩🇪"_s;
}

void EmojiFormatsTest::findsWholeEmoji()
{
    QFETCH(const QString, emoji);

    const auto ranges = emojiFormats(u"ab "_s + emoji + u" 想1"_s, QFont());

    QCOMPARE(ranges.size(), qsizetype(1));
    QCOMPARE(ranges.first().start, 3);
    QCOMPARE(ranges.first().length, int(emoji.size()));
}

void EmojiFormatsTest::leavesTextAlone_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("letters") << u"Milk, 12 * 3 #1"_s;
    QTest::newRow("signs that are text by default") << u"© ™ ✔ ❤ ↗ ☎"_s;
    QTest::newRow("asked for as text") << u"⌚\uFE0E"_s;
    QTest::newRow("Chinese") << u"想到就记，〇"_s;
    QTest::newRow("beyond the basic plane") << u"𝒶𠀀"_s;
    QTest::newRow("half a character") << u"a"_s + QChar(0xD83D);
    QTest::newRow("joiner alone") << u"\u200D"_s;
}

void EmojiFormatsTest::leavesTextAlone()
{
    QFETCH(const QString, text);
    QVERIFY(emojiFormats(text, QFont()).isEmpty());
}

void EmojiFormatsTest::asksForAFontWithColoursFirst()
{
    const QFont letters(u"DejaVu Sans"_s);

    const auto ranges = emojiFormats(u"😀"_s, letters);

    const QStringList families = ranges.first().format.fontFamilies().toStringList();
    QCOMPARE(families.first(), u"Noto Color Emoji"_s);
    QCOMPARE(families.last(), letters.family());
}

void EmojiFormatsTest::drawsEachEmojiAsOne_data()
{
    findsWholeEmoji_data();
    QTest::newRow("keycap of a sign") << u"#\uFE0F\u20E3"_s;
    QTest::newRow("keycap without the sign for pictures") << u"*\u20E3"_s;
    QTest::newRow("keycap beside another emoji") << u"😀7\uFE0F\u20E3"_s;
}

void EmojiFormatsTest::drawsEachEmojiAsOne()
{
    QFETCH(const QString, emoji);
    const QString colours = NoteTheme::emojiFamilies().first();
    if (!QFontDatabase::families().contains(colours))
        QSKIP("the font with colours is not installed");
    const QString text = u"ab "_s + emoji + u" c"_s;
    const QFont letters(u"DejaVu Sans"_s);
    QTextLayout layout(text, letters);
    layout.setFormats(emojiFormats(text, letters));

    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();

    qsizetype coloured = 0;
    for (const QGlyphRun &run : line.glyphRuns()) {
        if (run.rawFont().familyName() == colours)
            coloured += run.glyphIndexes().size();
    }
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, emoji);
    qsizetype characters = 0;
    while (finder.toNextBoundary() >= 0)
        ++characters;
    QCOMPARE(coloured, characters);
}

QTEST_MAIN(EmojiFormatsTest)
#include "EmojiFormatsTest.moc"
