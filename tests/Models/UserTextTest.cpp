// SPDX-License-Identifier: MIT
#include "UserText.h"
#include "Dice.h"

#include <QRandomGenerator>
#include <QTest>
#include <memory>
#include <unicode/brkiter.h>

using namespace Qt::Literals::StringLiterals;

class UserTextTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void countsWhatAReaderCallsACharacter_data();
    void countsWhatAReaderCallsACharacter();
    void agreesWithTheRulesOnMixedTexts();
    void agreesWithTheRulesOnEveryUnitBesideOthers();
    void countsWhatAChangeAdds();
    void findsOnlyWhiteSpaceBlank();
};

namespace {

/// The plain way: the rules asked of the whole text.
qsizetype countByRules(const QString &text)
{
    static UErrorCode status = U_ZERO_ERROR;
    static const std::unique_ptr<icu::BreakIterator> rules(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    if (U_FAILURE(status))
        return -1;
    rules->setText(icu::UnicodeString(false, text.utf16(), static_cast<int32_t>(text.size())));
    qsizetype count = 0;
    while (rules->next() != icu::BreakIterator::DONE)
        ++count;
    return count;
}

} // namespace

void UserTextTest::countsWhatAReaderCallsACharacter_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("count");

    QTest::newRow("nothing") << u""_s << qsizetype(0);
    QTest::newRow("letters") << u"milk"_s << qsizetype(4);
    QTest::newRow("line breaks") << u"a\nb\n"_s << qsizetype(4);
    QTest::newRow("CR LF") << u"a\r\nb"_s << qsizetype(3);
    QTest::newRow("Chinese") << u"买牛奶。"_s << qsizetype(4);
    QTest::newRow("accent after its letter") << u"cafe\u0301s"_s << qsizetype(5);
    QTest::newRow("emoji") << u"a😀b"_s << qsizetype(3);
    QTest::newRow("family") << u"👨‍👩‍👧‍👦"_s << qsizetype(1);
    QTest::newRow("skin tone") << u"👍🏽"_s << qsizetype(1);
    QTest::newRow("two flags") << u"🇩🇪🇫🇷"_s << qsizetype(2);
    QTest::newRow("keycap") << u"1\uFE0F\u20E3"_s << qsizetype(1);
    QTest::newRow("Hangul syllable of letters") << u"\u1112\u1161\u11AB"_s << qsizetype(1);
    QTest::newRow("accent alone") << u"\u0301"_s << qsizetype(1);
    QTest::newRow("half a surrogate pair") << QString(QChar(0xD83D)) << qsizetype(1);
}

void UserTextTest::countsWhatAReaderCallsACharacter()
{
    QFETCH(const QString, text);
    QFETCH(const qsizetype, count);

    QCOMPARE(characterCount(text), count);
}

void UserTextTest::agreesWithTheRulesOnMixedTexts()
{
    const QStringList pieces{u"a"_s,      u"é"_s,      u"\u0301"_s, u"\r"_s,     u"\n"_s,
                             u" "_s,      u"中"_s,     u"が"_s,     u"\u3099"_s, u"。"_s,
                             u"\u200D"_s, u"👩"_s,      u"🇩"_s,      u"\uFE0F"_s, u"\u0600"_s,
                             u"\u1100"_s, u"\u1161"_s, u"\u0E33"_s, u"ｶ"_s,      u"\uFF9E"_s,
                             u"©"_s,      u"\u00AD"_s, u"〰"_s,     u"\u302A"_s, u"ʰ"_s};
    QRandomGenerator random(7);
    for (int i = 0; i < 20000; ++i) {
        QString text;
        for (int length = random.bounded(12); length > 0; --length)
            text += pieces[random.bounded(pieces.size())];
        QVERIFY2(characterCount(text) == countByRules(text), qUtf8Printable(text));
    }
}

void UserTextTest::agreesWithTheRulesOnEveryUnitBesideOthers()
{
    for (int unit = 0; unit <= 0xFFFF; ++unit) {
        const QChar c(unit);
        for (const char16_t other : {u'a', u'\n', u'\r', u'\u0301', u'\u200D', u'中'}) {
            const QString text = QString(c) + c + QChar(other) + c;

            QVERIFY2(characterCount(text) == countByRules(text),
                     qPrintable(QString::number(unit, 16)));
        }
    }
}

void UserTextTest::findsOnlyWhiteSpaceBlank()
{
    QVERIFY(isBlank(u""));
    QVERIFY(isBlank(u" \t\n\v\f\r\u0085\u00A0\u1680\u2003\u2028\u2029\u202F\u205F\u3000"));
    QVERIFY(!isBlank(u"  .  "));
    QVERIFY(!isBlank(u"\u200B"));
}

/// Whatever the change joins or parts: the difference is that of counting both texts.
void UserTextTest::countsWhatAChangeAdds()
{
    static const QStringList pieces{u"a"_s,      u"\n"_s,     u"\r\n"_s,   u"骨"_s, u"e\u0301"_s,
                                    u"\u0301"_s, u"\u200d"_s, u"👩"_s,      u"🇨🇳"_s, u"🇨"_s,
                                    u"ع"_s,      u"\ufe0f"_s, u"한"_s,     u"ᄒ"_s, u"ᅡ"_s,
                                    u" "_s,      u"अ"_s,      u"\u094d"_s, u"क"_s,  u"\r"_s};
    for (std::uint64_t seed = 1; seed <= 3000; ++seed) {
        Dice dice(seed);
        const auto random = [&dice](int most) {
            QString text;
            for (auto i = dice.below(std::uint64_t(most)); i > 0; --i)
                text += pieces[qsizetype(dice.below(std::uint64_t(pieces.size())))];
            return text;
        };
        const QString before = random(20);
        const QString after = random(20);
        const TextChange change{before.size(), random(4), random(4)};
        const QString old = before + change.removed + after;
        const QString now = before + change.added + after;

        QVERIFY2(characterCountChange(now, change) == characterCount(now) - characterCount(old),
                 QByteArray::number(qulonglong(seed)).constData());
    }
}

QTEST_GUILESS_MAIN(UserTextTest)
#include "UserTextTest.moc"
