// SPDX-License-Identifier: MIT
#include "DateText.h"

#include <QDateTime>
#include <QHash>
#include <memory>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

namespace {

const char *skeleton(DateStyle style)
{
    switch (style) {
    case DateStyle::monthAndDay:
        return "MMMMd";
    case DateStyle::monthDayAndTime:
        return "MMdjm";
    case DateStyle::yearMonthDayAndTime:
        return "yMMMdjm";
    }
    Q_UNREACHABLE();
}

using Format = std::shared_ptr<const icu::DateFormat>;

/// A format without a time zone: it is given local time as if it were UTC. Qt knows the zone, and
/// notices when the user changes it.
Format makeFormat(DateStyle style, const QString &language)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale locale = icu::Locale::forLanguageTag(language.toStdString(), status);
    std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createInstanceForSkeleton(
        icu::UnicodeString::fromUTF8(skeleton(style)), locale, status));
    if (U_FAILURE(status))
        return nullptr;
    format->setTimeZone(*icu::TimeZone::getGMT());
    return format;
}

Format format(DateStyle style, const QString &language)
{
    thread_local QHash<std::pair<QString, int>, Format> formats;
    Format &known = formats[{language, static_cast<int>(style)}];
    if (!known)
        known = makeFormat(style, language);
    return known;
}

} // namespace

QString dateText(Timestamp time, DateStyle style, const QString &language)
{
    if (!time.hasTextForm())
        return {};
    const double utc = time.millisecondsSince1970();
    const int offset = QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(utc)).offsetFromUtc();
    const Format known = format(style, language);
    if (!known)
        return QLocale(language).toString(QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(utc)),
                                          QLocale::ShortFormat);
    icu::UnicodeString text;
    known->format(utc + 1000.0 * offset, text);
    return QString::fromUtf16(text.getBuffer(), text.length());
}
