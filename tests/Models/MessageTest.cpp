// SPDX-License-Identifier: MIT
#include "Message.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

class MessageTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fillsNumbersAndTextsInOrder();
    void padsNumbersWithZeros();
    void writesNumbersAsInTheLocale();
    void takesAPhraseForItsKey();
    void writesAPerCentSignForTwo();
    void leavesAPlaceWithoutItsArgumentAsWritten();
    void doesNotLookForPlacesInsideAnArgument();
    void leavesAnOrdinaryPerCentSignAlone();
    void isComparedByKeyAndArguments();
};

void MessageTest::fillsNumbersAndTextsInOrder()
{
    QCOMPARE(formatted(u"%d notes"_s, {12}), u"12 notes"_s);
    QCOMPARE(formatted(u"Open note: %@"_s, {u"milk"_s}), u"Open note: milk"_s);
    QCOMPARE(formatted(u"%@ has %d, %@"_s, {u"a"_s, -3, u"b"_s}), u"a has -3, b"_s);
}

void MessageTest::padsNumbersWithZeros()
{
    QCOMPARE(formatted(u"%02d:%02d"_s, {7, 30}), u"07:30"_s);
    QCOMPARE(formatted(u"%04d"_s, {-7}), u"-007"_s);
    QCOMPARE(formatted(u"%02d"_s, {1234}), u"1234"_s);
    QCOMPARE(formatted(u"%09d"_s, {7}), u"000000007"_s);
    QCOMPARE(formatted(u"%010d"_s, {7}), u"0000000007"_s);
    QCOMPARE(formatted(u"%0999999999999d"_s, {7}).size(), qsizetype(99));
}

void MessageTest::writesNumbersAsInTheLocale()
{
    const QLocale english(QLocale::English);
    QCOMPARE(formatted(u"%d characters"_s, {12345}, english), u"12,345 characters"_s);
    QCOMPARE(formatted(u"%02d"_s, {12345}, english), u"12,345"_s);
    QCOMPARE(formatted(u"%02d"_s, {7}, english), u"07"_s);
    QCOMPARE(formatted(u"%d Zeichen"_s, {12345}, QLocale(QLocale::German)), u"12.345 Zeichen"_s);
}

void MessageTest::takesAPhraseForItsKey()
{
    QCOMPARE(formatted(u"“%@”: %@."_s, {u"a.md"_s, Phrase{u"File exists"_s}}),
             u"“a.md”: File exists."_s);
}

void MessageTest::writesAPerCentSignForTwo()
{
    QCOMPARE(formatted(u"%d%% of %%d"_s, {50}), u"50% of %d"_s);
}

void MessageTest::leavesAPlaceWithoutItsArgumentAsWritten()
{
    QCOMPARE(formatted(u"%d notes"_s, {}), u"%d notes"_s);
    QCOMPARE(formatted(u"%02d notes"_s, {}), u"%02d notes"_s);
    QCOMPARE(formatted(u"%d of %@"_s, {u"text"_s}), u"%d of text"_s);
    QCOMPARE(formatted(u"all of %d notes"_s, {}), u"all of %d notes"_s);
}

void MessageTest::doesNotLookForPlacesInsideAnArgument()
{
    QCOMPARE(formatted(u"%@ and %@"_s, {u"%@ %% %d"_s, u"b"_s}), u"%@ %% %d and b"_s);
}

void MessageTest::leavesAnOrdinaryPerCentSignAlone()
{
    QCOMPARE(formatted(u"100 % sure, 5%"_s, {1}), u"100 % sure, 5%"_s);
    QCOMPARE(formatted(u"5%0"_s, {1}), u"5%0"_s);
    QCOMPARE(formatted(u"%x %0 %05x %0@ %0%"_s, {1, u"t"_s}), u"%x %0 %05x %0@ %0%"_s);
}

void MessageTest::isComparedByKeyAndArguments()
{
    const Message message{u"%d notes"_s, {2}};

    QCOMPARE(message.english(), u"2 notes"_s);
    QVERIFY(message == (Message{u"%d notes"_s, {2}}));
    QVERIFY(!(message == Message{u"%d notes"_s, {3}}));
    QVERIFY(!(message == Message{u"%d note"_s, {2}}));
}

QTEST_GUILESS_MAIN(MessageTest)
#include "MessageTest.moc"
