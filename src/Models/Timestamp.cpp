// SPDX-License-Identifier: MIT
#include "Timestamp.h"

#include <chrono>
#include <cmath>

using namespace std::chrono;

namespace {

constexpr sys_days epoch2001 = 2001y / January / 1;
constexpr sys_days firstDay = year(0) / January / 1;
constexpr sys_days dayAfterLast = year(10000) / January / 1;

constexpr double firstMillisecond = static_cast<double>(milliseconds(firstDay - epoch2001).count());
constexpr double millisecondAfterLast =
    static_cast<double>(milliseconds(dayAfterLast - epoch2001).count());

/// Takes a text apart from its front; what does not fit makes it fail for good.
class Scanner {
public:
    explicit Scanner(QStringView text)
        : m_next(text.utf16())
        , m_end(m_next + text.size())
    {
    }

    /// A number of exactly so many digits, from 0 to the largest.
    int number(int digits, int largest)
    {
        int value = 0;
        for (int i = 0; i < digits; ++i)
            value = value * 10 + digit();
        if (value > largest)
            m_fits = false;
        return value;
    }

    /// The digits of a fraction, one to nine of them; those after the third do not count.
    milliseconds fraction()
    {
        int value = digit();
        int count = 1;
        for (; count < 9 && isDigit(); ++count) {
            const int next = digit();
            if (count < 3)
                value = value * 10 + next;
        }
        for (; count < 3; ++count)
            value *= 10;
        return milliseconds(value);
    }

    bool takes(char16_t c)
    {
        if (m_next == m_end || *m_next != c)
            return false;
        ++m_next;
        return true;
    }

    void expect(char16_t c) { m_fits = takes(c) && m_fits; }

    [[nodiscard]] bool isDone() const { return m_fits && m_next == m_end; }

private:
    [[nodiscard]] bool isDigit() const
    {
        return m_next != m_end && *m_next >= u'0' && *m_next <= u'9';
    }

    int digit()
    {
        if (!isDigit()) {
            m_fits = false;
            return 0;
        }
        return *m_next++ - u'0';
    }

    const char16_t *m_next;
    const char16_t *m_end;
    bool m_fits = true;
};

/// The distance of local time from UTC: "Z", "+hh:mm" or "-hh:mm".
minutes zoneOffset(Scanner &scanner)
{
    if (scanner.takes(u'Z'))
        return 0min;
    const bool isWest = scanner.takes(u'-');
    if (!isWest)
        scanner.expect(u'+');
    const hours wholeHours(scanner.number(2, 23));
    scanner.expect(u':');
    const minutes offset = wholeHours + minutes(scanner.number(2, 59));
    return isWest ? -offset : offset;
}

double roundedMilliseconds(double secondsSince2001)
{
    return std::round(secondsSince2001 * 1000.0);
}

} // namespace

Timestamp Timestamp::now()
{
    // No finer than the text form, so that what is in memory equals what is read back.
    const auto since1970 = system_clock::now().time_since_epoch();
    return fromNanosecondsSince1970(duration_cast<nanoseconds>(since1970).count());
}

Timestamp Timestamp::fromNanosecondsSince1970(std::int64_t count) noexcept
{
    const auto elapsed = floor<milliseconds>(sys_time<nanoseconds>(nanoseconds(count))) - epoch2001;
    return {static_cast<double>(elapsed.count()) / 1000.0};
}

std::optional<Timestamp> Timestamp::fromIso8601(QStringView text)
{
    Scanner scanner(text);
    const year year(scanner.number(4, 9999));
    scanner.expect(u'-');
    const month month(static_cast<unsigned>(scanner.number(2, 12)));
    scanner.expect(u'-');
    const day day(static_cast<unsigned>(scanner.number(2, 31)));
    scanner.expect(u'T');
    const hours hour(scanner.number(2, 23));
    scanner.expect(u':');
    const minutes minute(scanner.number(2, 59));
    scanner.expect(u':');
    const seconds second(scanner.number(2, 59));
    scanner.expect(u'.');
    const milliseconds fraction = scanner.fraction();
    const minutes offset = zoneOffset(scanner);

    const year_month_day date(year, month, day);
    if (!scanner.isDone() || !date.ok())
        return std::nullopt;
    const milliseconds elapsed =
        (sys_days(date) - epoch2001) + hour + minute + second + fraction - offset;
    const Timestamp timestamp{static_cast<double>(elapsed.count()) / 1000.0};
    return timestamp.hasTextForm() ? std::optional(timestamp) : std::nullopt;
}

QString Timestamp::toIso8601() const
{
    const milliseconds elapsed(std::llround(roundedMilliseconds(secondsSince2001)));
    const auto day = floor<days>(epoch2001 + elapsed);
    const year_month_day date(day);
    const hh_mm_ss time(epoch2001 + elapsed - day);
    return QString::asprintf(
        "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
        static_cast<int>(time.seconds().count()), static_cast<int>(time.subseconds().count()));
}

bool Timestamp::hasTextForm() const noexcept
{
    const double elapsed = roundedMilliseconds(secondsSince2001);
    return elapsed >= firstMillisecond && elapsed < millisecondAfterLast;
}

double Timestamp::millisecondsSince1970() const noexcept
{
    constexpr auto between = duration_cast<milliseconds>(epoch2001.time_since_epoch());
    return secondsSince2001 * 1000.0 + static_cast<double>(between.count());
}
