// SPDX-License-Identifier: MIT
#include "WellFormed.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

class WellFormedTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void leavesPairsAlone();
    void replacesHalves_data();
    void replacesHalves();
};

void WellFormedTest::leavesPairsAlone()
{
    const QString text = u"a\U0001FAB6\u0301\0\uFFFF\n"_s;

    QCOMPARE(wellFormed(text), text);
    QCOMPARE(wellFormed(text).constData(), text.constData());
    QCOMPARE(wellFormed(QString()), QString());
}

void WellFormedTest::replacesHalves_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const QChar high(0xD83E);
    const QChar low(0xDEB6);

    QTest::newRow("a first half") << QString(high) << u"\uFFFD"_s;
    QTest::newRow("a second half") << QString(low) << u"\uFFFD"_s;
    QTest::newRow("between others") << u"a"_s + high + u"b"_s << u"a\uFFFDb"_s;
    QTest::newRow("the wrong way round") << QString(low) + high << u"\uFFFD\uFFFD"_s;
    QTest::newRow("one too many") << QString(high) + high + low << u"\uFFFD\U0001FAB6"_s;
}

void WellFormedTest::replacesHalves()
{
    QFETCH(const QString, text);
    QFETCH(const QString, expected);

    QCOMPARE(wellFormed(text), expected);
}

QTEST_GUILESS_MAIN(WellFormedTest)
#include "WellFormedTest.moc"
