// SPDX-License-Identifier: MIT
#include "Timestamp.h"

#include <QDateTime>
#include <QRandomGenerator>
#include <QTest>
#include <chrono>
#include <cmath>
#include <limits>

using namespace Qt::Literals::StringLiterals;

class TimestampTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesTheTextForm();
    void roundsToTheNearestMillisecond();
    void readsBackWhatItWritesToTheMillisecond();
    void agreesWithTheCalendarOfQt();
    void readsANumericZoneOffset();
    void readsOtherFractionsToTheMillisecond();
    void refusesEverythingElse_data();
    void refusesEverythingElse();
    void hasATextFormFromYear0To9999();
    void isOfAFileToTheMillisecondBefore();
    void isNowAndEqualToWhatIsReadBack();
};

namespace {

constexpr double secondsFrom1970To2001 = 978307200.0;

/// Those that are over. Qt's own clock rounds to the nearest one in newer releases, and is ahead
/// of the time then.
double wholeMillisecondsSince1970()
{
    using namespace std::chrono;
    return static_cast<double>(floor<milliseconds>(system_clock::now()).time_since_epoch().count());
}

} // namespace

void TimestampTest::writesTheTextForm()
{
    QCOMPARE(Timestamp{0.0}.toIso8601(), u"2001-01-01T00:00:00.000Z"_s);
    QCOMPARE(Timestamp{-0.25}.toIso8601(), u"2000-12-31T23:59:59.750Z"_s);
    QCOMPARE(Timestamp{762509730.25}.toIso8601(), u"2025-03-01T08:15:30.250Z"_s);
}

void TimestampTest::roundsToTheNearestMillisecond()
{
    QCOMPARE(Timestamp{1.0004}.toIso8601(), u"2001-01-01T00:00:01.000Z"_s);
    QCOMPARE(Timestamp{1.0006}.toIso8601(), u"2001-01-01T00:00:01.001Z"_s);
    QCOMPARE(Timestamp{59.9996}.toIso8601(), u"2001-01-01T00:01:00.000Z"_s);
}

void TimestampTest::readsBackWhatItWritesToTheMillisecond()
{
    QRandomGenerator random(20250301);
    for (int i = 0; i < 20000; ++i) {
        const double milliseconds = std::round((random.generateDouble() - 0.05) * 4e12);
        const Timestamp timestamp{milliseconds / 1000.0};

        const auto read = Timestamp::fromIso8601(timestamp.toIso8601());

        QCOMPARE(read, timestamp);
    }
}

void TimestampTest::agreesWithTheCalendarOfQt()
{
    QRandomGenerator random(42);
    for (int i = 0; i < 5000; ++i) {
        const auto milliseconds = static_cast<qint64>((random.generateDouble() - 0.1) * 2e13);
        const Timestamp timestamp{static_cast<double>(milliseconds) / 1000.0 -
                                  secondsFrom1970To2001};

        const QDateTime dateTime = QDateTime::fromMSecsSinceEpoch(milliseconds).toUTC();

        QCOMPARE(timestamp.toIso8601(), dateTime.toString(Qt::ISODateWithMs));
        QCOMPARE(std::round(timestamp.millisecondsSince1970()), static_cast<double>(milliseconds));
    }
}

void TimestampTest::readsANumericZoneOffset()
{
    const auto utc = Timestamp::fromIso8601(u"2025-03-01T08:15:30.250Z");
    QVERIFY(utc);

    QCOMPARE(Timestamp::fromIso8601(u"2025-03-01T16:15:30.250+08:00"), utc);
    QCOMPARE(Timestamp::fromIso8601(u"2025-02-28T22:45:30.250-09:30"), utc);
    QCOMPARE(Timestamp::fromIso8601(u"2025-03-01T08:15:30.250-00:00"), utc);
}

void TimestampTest::readsOtherFractionsToTheMillisecond()
{
    const auto expected = Timestamp::fromIso8601(u"2025-03-01T08:15:30.500Z");
    QVERIFY(expected);

    QCOMPARE(Timestamp::fromIso8601(u"2025-03-01T08:15:30.5Z"), expected);
    QCOMPARE(Timestamp::fromIso8601(u"2025-03-01T08:15:30.500999Z"), expected);
    QCOMPARE(Timestamp::fromIso8601(u"2025-03-01T08:15:30.500999999Z"), expected);
}

void TimestampTest::refusesEverythingElse_data()
{
    QTest::addColumn<QString>("text");

    for (const char *text : {"",
                             "Z",
                             "2025-03-01",
                             "2025-03-01T08:15:30Z",
                             "2025-03-01T08:15:30.Z",
                             "2025-03-01T08:15:30.250",
                             "2025-03-01T08:15:30.250z",
                             "2025-03-01t08:15:30.250Z",
                             "2025-03-01 08:15:30.250Z",
                             "2025-03-01T08:15:30,250Z",
                             "2025-03-01T08:15.250Z",
                             "2025-3-01T08:15:30.250Z",
                             "25-03-01T08:15:30.250Z",
                             "+2025-03-01T08:15:30.250Z",
                             "12025-03-01T08:15:30.250Z",
                             "-025-03-01T08:15:30.250Z",
                             " 2025-03-01T08:15:30.250Z",
                             "2025-03-01T08:15:30.250Z ",
                             "2025-03-01T08:15:30.250ZZ",
                             "20250301T081530.250Z",
                             "2025-00-01T08:15:30.250Z",
                             "2025-13-01T08:15:30.250Z",
                             "2025-03-00T08:15:30.250Z",
                             "2025-03-32T08:15:30.250Z",
                             "2025-02-29T08:15:30.250Z",
                             "1900-02-29T08:15:30.250Z",
                             "2025-04-31T08:15:30.250Z",
                             "2025-03-01T24:00:00.000Z",
                             "2025-03-01T08:60:30.250Z",
                             "2025-03-01T08:15:60.000Z",
                             "2025-03-01T08:15:30.1234567890Z",
                             "2025-03-01T08:15:30.250+08",
                             "2025-03-01T08:15:30.250+0800",
                             "2025-03-01T08:15:30.250+8:00",
                             "2025-03-01T08:15:30.250+24:00",
                             "2025-03-01T08:15:30.250+08:60",
                             "2025-03-01T08:15:30.250+08:00Z",
                             "2025-03-01T08:15:30.-50Z",
                             "0000-01-01T00:00:00.000+00:01",
                             "9999-12-31T23:59:59.999-00:01"})
        QTest::newRow(text) << QString::fromLatin1(text);
    QTest::newRow("digits of another script") << u"\u0662025-03-01T08:15:30.250Z"_s;
}

void TimestampTest::refusesEverythingElse()
{
    QFETCH(const QString, text);

    QVERIFY(!Timestamp::fromIso8601(text));
}

void TimestampTest::hasATextFormFromYear0To9999()
{
    const auto first = Timestamp::fromIso8601(u"0000-01-01T00:00:00.000Z");
    const auto last = Timestamp::fromIso8601(u"9999-12-31T23:59:59.999Z");
    QVERIFY(first && last);
    QCOMPARE(first->toIso8601(), u"0000-01-01T00:00:00.000Z"_s);
    QCOMPARE(last->toIso8601(), u"9999-12-31T23:59:59.999Z"_s);

    QVERIFY(first->hasTextForm());
    QVERIFY(last->hasTextForm());
    QVERIFY(!Timestamp{first->secondsSince2001 - 0.001}.hasTextForm());
    QVERIFY(!Timestamp{last->secondsSince2001 + 0.001}.hasTextForm());
    QVERIFY(!Timestamp{std::numeric_limits<double>::quiet_NaN()}.hasTextForm());
    QVERIFY(!Timestamp{std::numeric_limits<double>::infinity()}.hasTextForm());
    QVERIFY(!Timestamp{-1e300}.hasTextForm());
}

void TimestampTest::isOfAFileToTheMillisecondBefore()
{
    constexpr std::int64_t start = 978'307'200'000'000'000;
    QCOMPARE(Timestamp::fromNanosecondsSince1970(start), Timestamp{0.0});
    QCOMPARE(Timestamp::fromNanosecondsSince1970(start + 1'999'999), Timestamp{0.001});
    QCOMPARE(Timestamp::fromNanosecondsSince1970(start - 1), Timestamp{-0.001});
}

void TimestampTest::isNowAndEqualToWhatIsReadBack()
{
    const double before = wholeMillisecondsSince1970();
    const Timestamp now = Timestamp::now();
    const double after = wholeMillisecondsSince1970();

    QVERIFY(std::round(now.millisecondsSince1970()) >= before);
    QVERIFY(std::round(now.millisecondsSince1970()) <= after);
    QCOMPARE(Timestamp::fromIso8601(now.toIso8601()), now);
}

QTEST_GUILESS_MAIN(TimestampTest)
#include "TimestampTest.moc"
