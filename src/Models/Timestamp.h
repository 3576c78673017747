// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>
#include <cstdint>
#include <optional>

/// A point in time, as seconds since 2001-01-01 00:00:00 UTC in double precision.
///
/// The text form is ISO 8601 internet date-time in UTC with three fractional digits,
/// "2025-03-01T08:15:30.250Z", so a time that went through text is exact to the millisecond.
struct Timestamp {
    double secondsSince2001 = 0.0;

    [[nodiscard]] static Timestamp now();

    /// Of a file or a clock, in nanoseconds since 1970-01-01 00:00:00 UTC, to the millisecond
    /// before.
    [[nodiscard]] static Timestamp fromNanosecondsSince1970(std::int64_t count) noexcept;

    /// Reads the text form; a numeric zone offset ("+08:00") may stand in place of "Z".
    /// Nothing when the text is anything else, names no real date, or lacks the fraction.
    [[nodiscard]] static std::optional<Timestamp> fromIso8601(QStringView text);

    /// The text form, rounded to the nearest millisecond.
    [[nodiscard]] QString toIso8601() const;

    /// False for what the text form cannot carry: not a number, or a year outside 0000 to 9999.
    [[nodiscard]] bool hasTextForm() const noexcept;

    /// Milliseconds since 1970-01-01 00:00:00 UTC, as calendars and date formatters take it.
    [[nodiscard]] double millisecondsSince1970() const noexcept;

    friend bool operator==(const Timestamp &, const Timestamp &) = default;
    friend auto operator<=>(const Timestamp &, const Timestamp &) = default;
};
