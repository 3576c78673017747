// SPDX-License-Identifier: MIT
#include "DocumentText.h"

#include <QTextBlock>
#include <QTextDocument>
#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

/// As the document tells them, beside CR LF, which is one to it.
bool endsParagraph(QChar c)
{
    constexpr QChar beginOfFrame(0xfdd0);
    constexpr QChar endOfFrame(0xfdd1);
    return c == u'\n' || c == u'\r' || c == QChar::ParagraphSeparator || c == beginOfFrame ||
           c == endOfFrame;
}

QStringView lineEndAt(QStringView text, qsizetype at)
{
    const bool isPair = text[at] == u'\r' && at + 1 < text.size() && text[at + 1] == u'\n';
    return text.sliced(at, isPair ? 2 : 1);
}

QString withLineEnds(const QString &text, const QString &lineEnd)
{
    const auto isAsWanted = [](QChar c) { return c == u'\n' || !endsParagraph(c); };
    if (lineEnd == "\n"_L1 && std::ranges::all_of(text, isAsWanted))
        return text;
    QString result;
    result.reserve(text.size());
    qsizetype copied = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (!endsParagraph(text[at]))
            continue;
        result += QStringView(text).sliced(copied, at - copied);
        result += lineEnd;
        at += lineEndAt(text, at).size() - 1;
        copied = at + 1;
    }
    return result += QStringView(text).sliced(copied);
}

/// QTextDocument::toPlainText() would turn no-break spaces into spaces and U+2028 into LF.
QString read(const QTextDocument &document, int from, int length, const QString &lineEnd)
{
    const int end = from + length;
    QString text;
    text.reserve(length);
    for (QTextBlock block = document.findBlock(from); from < end; block = block.next()) {
        const QString line = block.text();
        const int rest = std::min(end, block.position() + static_cast<int>(line.size())) - from;
        text += QStringView(line).sliced(from - block.position(), rest);
        from += rest;
        if (from < end) {
            text += lineEnd;
            ++from;
        }
    }
    return text;
}

/// Without what is the same before and after.
TextChange trimmed(const TextChange &change)
{
    const QStringView removed = change.removed;
    const QStringView added = change.added;
    const qsizetype shorter = std::min(removed.size(), added.size());
    qsizetype begin = 0;
    while (begin < shorter && removed[begin] == added[begin])
        ++begin;
    if (begin > 0 && removed[begin - 1].isHighSurrogate())
        --begin;
    qsizetype end = 0;
    while (end < shorter - begin &&
           removed[removed.size() - 1 - end] == added[added.size() - 1 - end])
        ++end;
    if (end > 0 && removed[removed.size() - end].isLowSurrogate())
        --end;
    const auto middle = [&](QStringView text) {
        return text.sliced(begin, text.size() - begin - end).toString();
    };
    return {change.position + begin, middle(removed), middle(added)};
}

} // namespace

void DocumentText::set(const QString &text)
{
    m_text = text;
    m_lineEnd = u"\n"_s;
    m_isMixed = false;
    bool isFirst = true;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (!endsParagraph(text[at]))
            continue;
        const QStringView found = lineEndAt(text, at);
        if (isFirst)
            m_lineEnd = found.toString();
        m_isMixed = found != m_lineEnd || text[at].isNonCharacter();
        if (m_isMixed) {
            m_lineEnd = u"\n"_s;
            return;
        }
        isFirst = false;
        at += found.size() - 1;
    }
}

TextChange DocumentText::follow(const QTextDocument &document, int from, int removed, int added,
                                const DocumentGap &gap)
{
    // The end of the last paragraph is a character to the document alone.
    const int end = document.characterCount() - 1;
    const int beyond = std::max(0, from + added - end);
    removed = std::max(0, removed - beyond);
    added -= beyond;
    if (m_isMixed) {
        // Formats alone are no reason to give up what the line ends were.
        DocumentText before;
        before.set(withLineEnds(m_text, m_lineEnd));
        if (before.follow(document, from, removed, added, gap).isEmpty())
            return {};
        m_isMixed = false;
        const QString old = std::exchange(m_text, before.m_text);
        return trimmed({0, old, m_text});
    }
    const qsizetype position = placeOf(document, from, gap);
    const bool surroundsGap =
        !gap.text.isEmpty() && from <= gap.position && gap.position <= from + added;
    const qsizetype characters = removed + (surroundsGap ? gap.text.size() : 0);
    qsizetype endOfRemoved = position;
    for (qsizetype i = 0; i < characters && endOfRemoved < m_text.size(); ++i)
        endOfRemoved += m_lineEnd.size() == 1 ? 1 : lineEndAt(m_text, endOfRemoved).size();
    QString now;
    if (surroundsGap) {
        const int before = gap.position - from;
        now = read(document, from, before, m_lineEnd) +
              withLineEnds(gap.text.toString(), m_lineEnd) +
              read(document, gap.position, added - before, m_lineEnd);
    } else {
        now = read(document, from, added, m_lineEnd);
    }
    const TextChange change =
        trimmed({position, m_text.sliced(position, endOfRemoved - position), now});
    if (!change.isEmpty())
        change.applyTo(m_text);
    return change;
}

TextChange DocumentText::insert(const QTextDocument &document, int at, const QString &text)
{
    const QString old = m_text;
    if (std::exchange(m_isMixed, false))
        m_text = withLineEnds(m_text, m_lineEnd);
    const TextChange change{placeOf(document, at), {}, withLineEnds(text, m_lineEnd)};
    const bool isWhole = old.size() != m_text.size() || old != m_text;
    change.applyTo(m_text);
    return isWhole ? TextChange{0, old, m_text} : change;
}

qsizetype DocumentText::placeOf(const QTextDocument &document, int position,
                                const DocumentGap &gap) const
{
    const QStringView missing = position > gap.position ? gap.text : QStringView();
    const qsizetype place = position + missing.size();
    // A line end of two characters is one to the document.
    const qsizetype more = m_lineEnd.size() - 1;
    if (more == 0)
        return place;
    return place + more * (document.findBlock(position).blockNumber() + missing.count(u'\n'));
}

QString DocumentText::paragraphs(const QString &text)
{
    return withLineEnds(text, u"\n"_s);
}

QString DocumentText::paragraphsAt(const QTextDocument &document, int from, int length)
{
    return read(document, from, length, u"\n"_s);
}
