// SPDX-License-Identifier: MIT
#pragma once

#include "Timestamp.h"

#include <QString>

/// The parts of a time that a place in the interface has room for. A language decides their order,
/// their separators and whether the clock has 12 or 24 hours.
enum class DateStyle {
    monthAndDay,        ///< the full month: "March 1", "3月1日"
    monthDayAndTime,    ///< the month in two digits: "03/1, 8:15 AM", "03/1 08:15"
    yearMonthDayAndTime ///< the short month: "Mar 1, 2025, 8:15 AM", "2025年3月1日 08:15"
};

/// The time as a reader of the language ("en", "zh-Hans") writes it, in the local time zone.
/// Empty for a time without a text form. The first call for a language and style costs a few
/// milliseconds, each later one microseconds.
[[nodiscard]] QString dateText(Timestamp time, DateStyle style, const QString &language);
