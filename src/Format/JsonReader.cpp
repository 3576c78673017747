// SPDX-License-Identifier: MIT
#include "JsonReader.h"

#include <QLocale>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Deep enough for any file that a person or a program means, and safe for the stack.
constexpr int largestDepth = 500;

/// Below this a double that is an integer was written as that integer.
constexpr double firstInexact = 9007199254740992.0;

bool isDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

} // namespace

JsonReader::JsonReader(QStringView text)
    : m_text(text)
{
}

void JsonReader::readObject(const std::function<void(const QString &name)> &readMember)
{
    expect(u'{');
    enter();
    if (!takes(u'}')) {
        do {
            const QString name = readString();
            expect(u':');
            m_way.push_back({name});
            readMember(name);
            m_way.pop_back();
        } while (takes(u','));
        expect(u'}');
    }
    --m_depth;
}

void JsonReader::readArray(const std::function<void()> &readElement)
{
    expect(u'[');
    enter();
    if (!takes(u']')) {
        m_way.push_back({{}, 0});
        do {
            readElement();
            ++m_way.back().index;
        } while (takes(u','));
        m_way.pop_back();
        expect(u']');
    }
    --m_depth;
}

QString JsonReader::readString()
{
    if (peek() != u'"')
        fail(Problem::notText);
    ++m_place;
    QString text;
    for (;;) {
        const qsizetype begin = m_place;
        while (m_place < m_text.size() && m_text[m_place] >= u' ' && m_text[m_place] != u'"' &&
               m_text[m_place] != u'\\')
            ++m_place;
        text += m_text.sliced(begin, m_place - begin);
        if (m_place == m_text.size() || m_text[m_place] < u' ')
            fail(Problem::endlessText);
        if (m_text[m_place++] == u'"')
            break;
        text += QChar(readEscape());
    }
    if (!text.isValidUtf16())
        fail(Problem::halfCharacter);
    return text;
}

char16_t JsonReader::readEscape()
{
    const char16_t c = m_place < m_text.size() ? m_text[m_place++].unicode() : u'\0';
    switch (c) {
    case u'"':
    case u'\\':
    case u'/':
        return c;
    case u'b':
        return u'\b';
    case u'f':
        return u'\f';
    case u'n':
        return u'\n';
    case u'r':
        return u'\r';
    case u't':
        return u'\t';
    case u'u':
        return readHexadecimal();
    default:
        fail(Problem::unknownEscape);
    }
}

char16_t JsonReader::readHexadecimal()
{
    constexpr qsizetype digits = 4;
    const QStringView text =
        m_text.sliced(m_place).first(std::min(digits, m_text.size() - m_place));
    const bool areDigits = std::all_of(text.begin(), text.end(), [](QChar c) {
        return isDigit(c.unicode()) || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
    });
    if (text.size() < digits || !areDigits)
        fail(Problem::unknownEscape);
    m_place += digits;
    return text.toUShort(nullptr, 16);
}

double JsonReader::readNumber()
{
    bool isRead = false;
    const double number = readNumberText().toDouble(&isRead);
    if (!isRead || !std::isfinite(number))
        fail(Problem::numberTooLarge);
    return number;
}

qint64 JsonReader::readInteger()
{
    const QStringView text = readNumberText();
    bool isRead = false;
    if (const qint64 integer = text.toLongLong(&isRead); isRead)
        return integer;
    const double number = text.toDouble(&isRead);
    if (!isRead || std::abs(number) >= firstInexact || number != std::trunc(number))
        fail(Problem::notInteger);
    return static_cast<qint64>(number);
}

QStringView JsonReader::readNumberText()
{
    const char16_t first = peek();
    if (first != u'-' && !isDigit(first))
        fail(Problem::notNumber);
    const auto takesHere = [this](QStringView choice) {
        const bool isThere = m_place < m_text.size() && choice.contains(m_text[m_place]);
        m_place += isThere ? 1 : 0;
        return isThere;
    };
    const qsizetype begin = m_place;
    takesHere(u"-");
    if (!takesHere(u"0"))
        skipDigits();
    if (takesHere(u"."))
        skipDigits();
    if (takesHere(u"eE")) {
        takesHere(u"+-");
        skipDigits();
    }
    return m_text.sliced(begin, m_place - begin);
}

void JsonReader::skipDigits()
{
    const qsizetype begin = m_place;
    while (m_place < m_text.size() && isDigit(m_text[m_place].unicode()))
        ++m_place;
    if (m_place == begin)
        fail(Problem::notNumber);
}

void JsonReader::skipValue()
{
    switch (peek()) {
    case u'{':
        return readObject([this](const QString &) { skipValue(); });
    case u'[':
        return readArray([this] { skipValue(); });
    case u'"':
        static_cast<void>(readString());
        return;
    case u't':
        return expectWord(u"true");
    case u'f':
        return expectWord(u"false");
    case u'n':
        return expectWord(u"null");
    default:
        static_cast<void>(readNumberText());
    }
}

void JsonReader::finish()
{
    skipWhiteSpace();
    if (m_place < m_text.size())
        fail(Problem::followedByMore);
}

QString JsonReader::Step::text() const
{
    // The sentence is for a person, and the file may be anybody's.
    constexpr qsizetype mostCharacters = 40;
    if (index >= 0)
        return u"[%1]"_s.arg(index);
    return name.size() > mostCharacters ? name.first(mostCharacters) + u'…' : name;
}

void JsonReader::fail(Problem problem, const QString &lacking) const
{
    QString place;
    for (const Step &step : m_way)
        place += (place.isEmpty() || step.index >= 0 ? u""_s : u"."_s) + step.text();
    throw JsonError(problem, place, lacking);
}

void JsonReader::enter()
{
    if (++m_depth > largestDepth)
        fail(Problem::tooDeep);
}

void JsonReader::skipWhiteSpace()
{
    while (m_place < m_text.size() && QStringView(u" \t\n\r").contains(m_text[m_place]))
        ++m_place;
}

char16_t JsonReader::peek()
{
    skipWhiteSpace();
    return m_place < m_text.size() ? m_text[m_place].unicode() : u'\0';
}

bool JsonReader::takes(char16_t c)
{
    if (peek() != c || m_place == m_text.size())
        return false;
    ++m_place;
    return true;
}

void JsonReader::expect(char16_t c)
{
    if (!takes(c))
        fail(Problem::lacks, QChar(c));
}

void JsonReader::expectWord(QStringView word)
{
    if (!m_text.sliced(m_place).startsWith(word))
        fail(Problem::notValue);
    m_place += word.size();
}
