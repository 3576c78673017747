// SPDX-License-Identifier: MIT
#include "DateText.h"

#include <QTest>
#include <ctime>
#include <limits>

using namespace Qt::Literals::StringLiterals;

class DateTextTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();
    void writesTheFullMonthAndTheDay();
    void writesTheMonthInTwoDigitsWithTheTime();
    void writesTheYearWithTheShortMonthAndTheTime();
    void followsTheLocalTimeZone();
    void followsAChangeOfTheTimeZone();
    void isEmptyForATimeWithoutATextForm();
};

namespace {

/// ICU separates the marker of the half day with a narrow no-break space, or a plain one in older
/// releases.
QString withPlainSpaces(QString text)
{
    return text.replace(u'\u202f', u' ');
}

void setTimeZone(const char *name)
{
    qputenv("TZ", name);
    tzset();
}

Timestamp at(const char *text)
{
    return Timestamp::fromIso8601(QString::fromLatin1(text)).value();
}

} // namespace

void DateTextTest::initTestCase()
{
    // ICU keeps the zone that it meets first, which is to matter to nobody.
    setTimeZone("Asia/Tokyo");
    QCOMPARE(dateText(at("2025-03-01T08:15:30.250Z"), DateStyle::monthAndDay, u"en"_s),
             u"March 1"_s);
}

void DateTextTest::init()
{
    setTimeZone("UTC");
}

void DateTextTest::cleanupTestCase()
{
    qunsetenv("TZ");
    tzset();
}

void DateTextTest::writesTheFullMonthAndTheDay()
{
    const Timestamp time = at("2025-03-01T08:15:30.250Z");

    QCOMPARE(dateText(time, DateStyle::monthAndDay, u"en"_s), u"March 1"_s);
    QCOMPARE(dateText(time, DateStyle::monthAndDay, u"zh-Hans"_s), u"3月1日"_s);
}

void DateTextTest::writesTheMonthInTwoDigitsWithTheTime()
{
    const Timestamp time = at("2025-03-01T20:05:30.250Z");

    QCOMPARE(withPlainSpaces(dateText(time, DateStyle::monthDayAndTime, u"en"_s)),
             u"03/1, 8:05 PM"_s);
    QCOMPARE(dateText(time, DateStyle::monthDayAndTime, u"zh-Hans"_s), u"03/1 20:05"_s);
}

void DateTextTest::writesTheYearWithTheShortMonthAndTheTime()
{
    const Timestamp time = at("2025-03-01T08:15:30.250Z");

    QCOMPARE(withPlainSpaces(dateText(time, DateStyle::yearMonthDayAndTime, u"en"_s)),
             u"Mar 1, 2025, 8:15 AM"_s);
    QCOMPARE(dateText(time, DateStyle::yearMonthDayAndTime, u"zh-Hans"_s), u"2025年3月1日 08:15"_s);
}

void DateTextTest::followsTheLocalTimeZone()
{
    setTimeZone("Asia/Shanghai");

    const QString text =
        dateText(at("2025-03-01T20:05:30.250Z"), DateStyle::yearMonthDayAndTime, u"zh-Hans"_s);

    QCOMPARE(text, u"2025年3月2日 04:05"_s);
}

void DateTextTest::followsAChangeOfTheTimeZone()
{
    const Timestamp time = at("2025-07-01T23:30:00.000Z");
    const QString before = dateText(time, DateStyle::monthAndDay, u"en"_s);

    setTimeZone("Europe/Berlin");

    QCOMPARE(before, u"July 1"_s);
    QCOMPARE(dateText(time, DateStyle::monthAndDay, u"en"_s), u"July 2"_s);
}

void DateTextTest::isEmptyForATimeWithoutATextForm()
{
    const Timestamp never{std::numeric_limits<double>::quiet_NaN()};

    QVERIFY(dateText(never, DateStyle::monthAndDay, u"en"_s).isEmpty());
}

QTEST_GUILESS_MAIN(DateTextTest)
#include "DateTextTest.moc"
