// SPDX-License-Identifier: MIT
#include "JsonError.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Every sentence names the file, the place in it, and what to do. Each is a translation key.
QString sentence(JsonError::Problem problem)
{
    using enum JsonError::Problem;
    switch (problem) {
    case notText:
        return u"The older notes file “notes.json” cannot be read: %@ is not a text. Mend it or move it away, then reopen the app."_s;
    case endlessText:
        return u"The older notes file “notes.json” cannot be read: %@ holds a text that does not end. Mend it or move it away, then reopen the app."_s;
    case halfCharacter:
        return u"The older notes file “notes.json” cannot be read: %@ holds half a character. Mend it or move it away, then reopen the app."_s;
    case unknownEscape:
        return u"The older notes file “notes.json” cannot be read: %@ holds an unknown escape. Mend it or move it away, then reopen the app."_s;
    case notNumber:
        return u"The older notes file “notes.json” cannot be read: %@ is not a number. Mend it or move it away, then reopen the app."_s;
    case numberTooLarge:
        return u"The older notes file “notes.json” cannot be read: %@ is a number that is too large. Mend it or move it away, then reopen the app."_s;
    case notInteger:
        return u"The older notes file “notes.json” cannot be read: %@ is not an integer of 64 bits. Mend it or move it away, then reopen the app."_s;
    case notIdentifier:
        return u"The older notes file “notes.json” cannot be read: %@ is not an identifier. Mend it or move it away, then reopen the app."_s;
    case notTime:
        return u"The older notes file “notes.json” cannot be read: %@ is not a time of the years 0 to 9999. Mend it or move it away, then reopen the app."_s;
    case notValue:
        return u"The older notes file “notes.json” cannot be read: %@ is no value. Mend it or move it away, then reopen the app."_s;
    case lacks:
        return u"The older notes file “notes.json” cannot be read: %@ lacks “%@”. Mend it or move it away, then reopen the app."_s;
    case comesTwice:
        return u"The older notes file “notes.json” cannot be read: %@ comes twice. Mend it or move it away, then reopen the app."_s;
    case tooDeep:
        return u"The older notes file “notes.json” cannot be read: %@ is nested too deeply. Mend it or move it away, then reopen the app."_s;
    case followedByMore:
        return u"The older notes file “notes.json” cannot be read: %@ is followed by more. Mend it or move it away, then reopen the app."_s;
    case notUtf8:
        return u"The older notes file “notes.json” cannot be read: %@ is not UTF-8 text. Mend it or move it away, then reopen the app."_s;
    }
    Q_UNREACHABLE();
}

} // namespace

JsonError::JsonError(Problem problem, QString place, QString lacking)
    : StorageError(Reason::system)
    , m_problem(problem)
    , m_place(std::move(place))
    , m_lacking(std::move(lacking))
{
}

Message JsonError::message() const
{
    QList<FormatArgument> arguments{m_place.isEmpty() ? u"notes.json"_s : m_place};
    if (m_problem == Problem::lacks)
        arguments.append(m_lacking);
    return {sentence(m_problem), arguments};
}
