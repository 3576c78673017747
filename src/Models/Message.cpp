// SPDX-License-Identifier: MIT
#include "Message.h"

#include <optional>

namespace {

/// One "%…" of a format text.
struct Place {
    char16_t kind = 0; // d, @ or %
    qsizetype minimumDigits = 0;
    qsizetype end = 0;
};

/// The place that begins at the per cent sign at the given position; nothing when it is only a
/// per cent sign in a sentence.
std::optional<Place> placeAt(const QString &format, qsizetype begin)
{
    Place place;
    qsizetype at = begin + 1;
    if (at < format.size() && format[at] == u'0') {
        for (++at; at < format.size() && format[at] >= u'0' && format[at] <= u'9'; ++at)
            place.minimumDigits = qMin(place.minimumDigits * 10 + format[at].digitValue(), 99);
    }
    if (at >= format.size())
        return std::nullopt;
    place.kind = format[at].unicode();
    place.end = at + 1;
    const bool isPlain = at == begin + 1;
    if (place.kind == u'd' || (isPlain && (place.kind == u'@' || place.kind == u'%')))
        return place;
    return std::nullopt;
}

QString digits(qint64 number, qsizetype minimumDigits, const QLocale &locale)
{
    QString text = locale.toString(number);
    const qsizetype sign = number < 0 ? 1 : 0;
    if (text.size() < minimumDigits)
        text.insert(sign, QString(minimumDigits - text.size(), u'0'));
    return text;
}

/// The text that belongs in the place, when the argument is of its kind.
std::optional<QString> filling(const Place &place, const FormatArgument &argument,
                               const QLocale &locale)
{
    if (const auto *number = std::get_if<qint64>(&argument); number && place.kind == u'd')
        return digits(*number, place.minimumDigits, locale);
    if (const auto *text = std::get_if<QString>(&argument); text && place.kind == u'@')
        return *text;
    if (const auto *phrase = std::get_if<Phrase>(&argument); phrase && place.kind == u'@')
        return phrase->key;
    return std::nullopt;
}

} // namespace

QString formatted(const QString &format, const QList<FormatArgument> &arguments,
                  const QLocale &locale)
{
    QString result;
    result.reserve(format.size());
    auto next = arguments.cbegin();
    qsizetype at = 0;
    while (at < format.size()) {
        const auto place = format[at] == u'%' ? placeAt(format, at) : std::nullopt;
        if (!place) {
            result += format[at++];
            continue;
        }
        std::optional<QString> text;
        if (place->kind == u'%')
            text = QStringLiteral("%");
        else if (next != arguments.cend() && (text = filling(*place, *next, locale)))
            ++next;
        result += text ? *text : format.sliced(at, place->end - at);
        at = place->end;
    }
    return result;
}
