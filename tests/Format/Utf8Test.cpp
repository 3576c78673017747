// SPDX-License-Identifier: MIT
#include "Utf8.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

class Utf8Test : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void givesBackEveryText_data();
    void givesBackEveryText();
    void refusesWhatIsNoUtf8_data();
    void refusesWhatIsNoUtf8();
    void refusesEachByteThatBeginsNothing();
    void writesNoHalfOfASurrogatePair();
};

void Utf8Test::givesBackEveryText_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("nothing") << u""_s;
    QTest::newRow("ASCII with a NUL") << u"a\0b\n~"_s;
    QTest::newRow("a byte order mark") << u"\uFEFFa"_s;
    QTest::newRow("the first beyond ASCII") << u"\u0080"_s;
    QTest::newRow("of every length") << u"aé中🪶"_s;
    QTest::newRow("long") << u"中"_s.repeated(100'000);
}

void Utf8Test::givesBackEveryText()
{
    QFETCH(QString, text);
    Utf8Decoder decoder;
    std::string bytes = "what was there before";

    QVERIFY(encodeUtf8(text, bytes));
    QCOMPARE(bytes, text.toUtf8().toStdString());
    // Also with a buffer that has held more.
    for (const std::string &before : {std::string(), std::string(1000, 'x')}) {
        QVERIFY(decoder.decode(before).has_value());
        const auto decoded = decoder.decode(bytes);
        QVERIFY(decoded.has_value());
        QCOMPARE(decoded->toString(), text);
    }
}

void Utf8Test::refusesWhatIsNoUtf8_data()
{
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("cut off") << QByteArray("a\xE4\xB8");
    QTest::newRow("longer than needed") << QByteArray("\xC0\x80");
    QTest::newRow("half a surrogate pair") << QByteArray("\xED\xA0\xBD");
    QTest::newRow("beyond the last character") << QByteArray("\xF4\x90\x80\x80");
}

void Utf8Test::refusesWhatIsNoUtf8()
{
    QFETCH(QByteArray, bytes);

    QVERIFY(!Utf8Decoder().decode(bytes.toStdString()).has_value());
}

void Utf8Test::refusesEachByteThatBeginsNothing()
{
    for (int byte = 0; byte < 256; ++byte) {
        const std::string bytes(1, static_cast<char>(byte));
        QCOMPARE(Utf8Decoder().decode(bytes).has_value(), byte < 0x80);
    }
}

void Utf8Test::writesNoHalfOfASurrogatePair()
{
    std::string bytes;
    for (const int half : {0xD83E, 0xDEB6})
        QVERIFY(!encodeUtf8(u"half "_s + QChar(half), bytes));
}

QTEST_GUILESS_MAIN(Utf8Test)
#include "Utf8Test.moc"
