// SPDX-License-Identifier: MIT
#include "TextSearch.h"
#include "TextFolding.h"

#include <QRandomGenerator>
#include <QTest>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

using namespace Qt::Literals::StringLiterals;

namespace {

/// The plain way: normalise the whole text, strip the marks, fold the whole text.
icu::UnicodeString plainlyFolded(const QString &text)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString decomposed = icu::Normalizer2::getNFKDInstance(status)->normalize(
        icu::UnicodeString(reinterpret_cast<const char16_t *>(text.utf16()),
                           static_cast<int32_t>(text.size())),
        status);
    icu::UnicodeString bases;
    for (int32_t i = 0; i < decomposed.length(); i = decomposed.moveIndex32(i, 1)) {
        const UChar32 codePoint = decomposed.char32At(i);
        if (u_charType(codePoint) != U_NON_SPACING_MARK && u_getCombiningClass(codePoint) == 0) {
            bases.append(codePoint);
        }
    }
    return bases.foldCase();
}

bool isPlainlyFound(const QString &query, const QString &text)
{
    const icu::UnicodeString wanted = plainlyFolded(query);
    return wanted.isEmpty() || plainlyFolded(text).indexOf(wanted) >= 0;
}

/// Texts of few characters, so that queries are often found, of every kind that folds oddly.
QString generatedText(QRandomGenerator &random, int longest)
{
    static const QList<char32_t> alphabet = {
        U'a',  U'A',  U'e',  U'E',      U'i',      U'I',      U's',      U'S',      U'f',
        U'l',  U't',  U'k',  U' ',      U'0',      U'1',      U'é',      U'É',      U'å',
        U'Å',  U'ß',  U'ẞ',  U'İ',      U'ı',      U'ſ',      U'K',      U'ﬁ',      U'ﬀ',
        U'ﬃ',  U'ﬅ',  U'Ǆ',  U'\u0301', U'\u0307', U'\u0323', U'\u0345', U'\u3099', U'ŉ',
        U'ǰ',  U'ΐ',  U'ς',  U'σ',      U'Σ',      U'ά',      U'я',      U'Й',      U'й',
        U'ё',  U'가', U'각', U'ᄀ',     U'ᅡ',     U'ᆨ',     U'ㄱ',     U'ﾡ',      U'ｶ',
        U'ﾞ',  U'ガ', U'が', U'Ａ',     U'ａ',     U'１',     U'　',     U'，',     U'，',
        U',',  U'想', U'到', U'就',     U'记',     U'記',     U'豈',     U'⼀',     U'一',
        U'㈱', U'①',  U'½',  U'ﷺ',      U'क',      U'ि',      U'ु',       U'𝐀',      U'𝒶',
        U'𐐀',  U'𐐨',  U'😀',  U'👩',      U'\u200D', U'\u00A0', U'\n',     U'…',      U'.'};
    QString text;
    const int length = random.bounded(longest + 1);
    for (int i = 0; i < length; ++i) {
        const char32_t codePoint = alphabet[random.bounded(alphabet.size())];
        text += QString::fromUcs4(&codePoint, 1);
    }
    return text;
}

} // namespace

class TextSearchTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void findsCapitalsWithAccentsBySmallLettersWithout()
    {
        QVERIFY(TextSearch(u"resume"_s).isFoundIn(u"My RÉSUMÉ, finished"_s));
        QVERIFY(TextSearch(u"RÉSUMÉ"_s).isFoundIn(u"my resume"_s));
    }

    void findsOneFormByAnother_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<QString>("text");
        QTest::newRow("sharp s") << u"strasse"_s << u"Straße"_s;
        QTest::newRow("ligature in the text") << u"fish"_s << u"ﬁsh"_s;
        QTest::newRow("ligature in the query") << u"ﬁsh"_s << u"FISH"_s;
        QTest::newRow("inside a ligature") << u"ish"_s << u"ﬁsh"_s;
        QTest::newRow("dotted capital I") << u"istanbul"_s << u"İstanbul"_s;
        QTest::newRow("combining mark") << u"cafe\u0301s"_s << u"cafés"_s;
        QTest::newRow("full width") << u"abc"_s << u"ＡＢＣ"_s;
        QTest::newRow("half-width katakana") << u"ガ"_s << u"ｶﾞ"_s;
        QTest::newRow("decomposed Hangul") << u"각"_s << u"\u1100\u1161\u11A8"_s;
        QTest::newRow("Chinese") << u"就记"_s << u"想到就记下来"_s;
        QTest::newRow("beyond the basic plane") << u"a"_s << u"𝒶"_s;
    }
    void findsOneFormByAnother()
    {
        QFETCH(const QString, query);
        QFETCH(const QString, text);
        QVERIFY(TextSearch(query).isFoundIn(text));
        // Also where whole blocks are passed over before and behind it.
        const QString filling = u"想到就记 lorem ipsum "_s.repeated(20);
        QVERIFY(TextSearch(query).isFoundIn(filling + text + filling));
        QVERIFY(!TextSearch(query + u"qq"_s).isFoundIn(filling + text + filling));
    }

    void findsNothingBehindTheEnd()
    {
        QVERIFY(!TextSearch(u"k"_s + QChar(u'\0')).isFoundIn(u"milk"_s));
        QVERIFY(!TextSearch(u"k"_s + QChar(u'\0')).isFoundIn(u"café, milk"_s));
    }

    void keepsDotlessIApart() { QVERIFY(!TextSearch(u"i"_s).isFoundIn(u"ı"_s)); }

    void treatsTheQueryAsOneText()
    {
        QVERIFY(!TextSearch(u"milk bread"_s).isFoundIn(u"bread and milk"_s));
        QVERIFY(!TextSearch(u"milk  bread"_s).isFoundIn(u"milk bread"_s));
    }

    void findsAQueryOfMarksOnlyEverywhere() { QVERIFY(TextSearch(u"\u0301"_s).isFoundIn(u"x"_s)); }

    void foldsEveryCodePointAsThePlainReferenceDoes()
    {
        for (char32_t codePoint = 1; codePoint < 0x110000; ++codePoint) {
            if (QChar::isSurrogate(codePoint)) {
                continue;
            }
            const QString text = QString::fromUcs4(&codePoint, 1);
            const icu::UnicodeString expected = plainlyFolded(text);
            const QString folded = TextFolding::folded(text);
            if (expected != icu::UnicodeString(reinterpret_cast<const char16_t *>(folded.utf16()),
                                               static_cast<int32_t>(folded.size()))) {
                QFAIL(qPrintable(u"U+%1 folds differently"_s.arg(codePoint, 4, 16)));
            }
        }
    }

    void callsPlainOnlyWhatFoldsToOneUnitOfItsOwn()
    {
        for (char32_t unit = 1; unit < 0x10000; ++unit) {
            if (!TextFolding::isPlain(static_cast<char16_t>(unit))) {
                continue;
            }
            const QString text = QString::fromUcs4(&unit, 1);
            const QString folded = TextFolding::folded(text);
            const QChar narrow = unit >= 0xFF01 ? QChar(unit - 0xFEE0) : QChar(unit);
            QCOMPARE(folded, QString(unit < 0x80 || unit >= 0xFF01 ? narrow.toLower() : narrow));
        }
    }

    void leavesHalvesOfSurrogatePairsAlone()
    {
        const QChar high(0xD83D);
        const QChar low(0xDE00);
        for (const QString &text :
             {QString(high), high + u"a"_s, u"a"_s + low, QString(low) + high}) {
            QCOMPARE(TextFolding::folded(text), text);
            QVERIFY(TextSearch(text).isFoundIn(u"a milk"_s + text));
        }
    }

    void findsEachSignInBothWidths()
    {
        for (char16_t unit = u'!'; unit <= u'~'; ++unit) {
            const QString narrow{QChar(unit)};
            const QString wide{QChar(unit + 0xFEE0)};
            for (const QString &filling : {u"到"_s, u"é"_s}) {
                const QString text = filling.repeated(40);
                for (const QString &query : {narrow, wide}) {
                    QVERIFY(TextSearch(query).isFoundIn(text + narrow + text));
                    QVERIFY(TextSearch(query).isFoundIn(text + wide));
                    QCOMPARE(TextSearch(query).isFoundIn(text), isPlainlyFound(query, text));
                }
            }
        }
    }

    void seesAnOddUnitAtEveryPlace()
    {
        for (const QString &filling : {u"."_s, u"到"_s}) {
            for (qsizetype place = 0; place < 100; ++place) {
                QString text = filling.repeated(100);
                text[place] = u'é';
                QVERIFY(TextSearch(u"e"_s).isFoundIn(text));
            }
        }
    }

    void findsAtEveryPlace()
    {
        for (const QString &filling : {u"."_s, u"é"_s}) {
            for (qsizetype place = 0; place < 100; ++place) {
                QString text = filling.repeated(102);
                text.replace(place, 2, u"Xy"_s);
                QVERIFY(TextSearch(u"x"_s).isFoundIn(text));
                QVERIFY(TextSearch(u"xy"_s).isFoundIn(text));
                QVERIFY(TextSearch(u"XY"_s + filling).isFoundIn(text + filling));
                QVERIFY(!TextSearch(u"yx"_s).isFoundIn(text));
                QVERIFY(!TextSearch(u"xx"_s).isFoundIn(text));
            }
        }
    }

    void agreesWithThePlainReferenceOnGeneratedCases()
    {
        QRandomGenerator random(20250301);
        int found = 0;
        constexpr int cases = 100'000;
        for (int i = 0; i < cases; ++i) {
            const QString text = generatedText(random, 120);
            // Half of the queries are cut out of the text, in another form where there is one.
            QString query = generatedText(random, 3);
            const QList<uint> characters = text.toUcs4();
            if (i % 2 == 0 && !characters.isEmpty()) {
                const QList<uint> part =
                    characters.mid(random.bounded(characters.size()), 1 + random.bounded(5));
                query =
                    QString::fromUcs4(reinterpret_cast<const char32_t *>(part.data()), part.size());
                query =
                    i % 4 == 0 ? query.normalized(QString::NormalizationForm_KD).toUpper() : query;
            }
            const bool expected = isPlainlyFound(query, text);
            found += expected ? 1 : 0;
            if (TextSearch(query).isFoundIn(text) != expected) {
                QFAIL(
                    qPrintable(u"\"%1\" in \"%2\": expected %3"_s.arg(query, text).arg(expected)));
            }
        }
        QVERIFY(found > cases / 4 && found < cases * 3 / 4);
    }

    void agreesWithThePlainReferenceWhereNothingFoldsOddly()
    {
        // Such texts are scanned in another way, so they are tried by themselves.
        const QString alphabet = u"aAbBzZ1 .~想到就，Ａｂ１～"_s;
        const auto generated = [&alphabet](QRandomGenerator &random, int longest) {
            QString text;
            for (int length = random.bounded(longest + 1); length > 0; --length)
                text += alphabet[random.bounded(static_cast<int>(alphabet.size()))];
            return text;
        };
        QRandomGenerator random(19);
        int found = 0;
        constexpr int cases = 20'000;
        for (int i = 0; i < cases; ++i) {
            const QString text = generated(random, 200);
            const QString query = generated(random, 4);
            const bool expected = isPlainlyFound(query, text);
            found += expected ? 1 : 0;
            QVERIFY2(TextSearch(query).isFoundIn(text) == expected,
                     qUtf8Printable(u"\"%1\" in \"%2\""_s.arg(query, text)));
        }
        QVERIFY(found > cases / 4 && found < cases * 3 / 4);
    }
};

QTEST_GUILESS_MAIN(TextSearchTest)
#include "TextSearchTest.moc"
