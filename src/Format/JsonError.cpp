// SPDX-License-Identifier: MIT
#include "JsonError.h"

#include "FileNames.h"

#include <QStringBuilder>
#include <utility>

namespace {

/// As much of a way as a person can make use of: its beginning and its end. The names in it may be
/// anybody's.
QString shown(const QString &way)
{
    constexpr qsizetype mostAtEachEnd = 29;
    if (way.isEmpty())
        return QString::fromLatin1(FileNames::olderNotes);
    if (way.size() <= 2 * mostAtEachEnd + 1)
        return way;
    QStringView begin = QStringView(way).first(mostAtEachEnd);
    QStringView end = QStringView(way).last(mostAtEachEnd);
    if (begin.back().isHighSurrogate())
        begin.chop(1);
    if (end.front().isLowSurrogate())
        end = end.sliced(1);
    return begin % u'…' % end;
}

} // namespace

JsonError::JsonError(Reason reason, QList<FormatArgument> arguments)
    : StorageError(reason)
    , m_arguments(std::move(arguments))
{
}

JsonError JsonError::about(std::filesystem::path file) const
{
    JsonError error = *this;
    error.setPlace(std::move(file));
    return error;
}

JsonError JsonError::notUtf8()
{
    return {Reason::notUtf8, {QString::fromLatin1(FileNames::olderNotes)}};
}

JsonError JsonError::syntax(qint64 line, qint64 column)
{
    return {Reason::jsonSyntax, {line, column}};
}

JsonError JsonError::atWay(Reason reason, const QString &way)
{
    return {reason, {shown(way)}};
}

JsonError JsonError::otherShape(qint64 version, const QString &way)
{
    return {Reason::jsonOtherShape, {version, shown(way)}};
}
