// SPDX-License-Identifier: MIT
#include "NoteSearch.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

bool isInDisplayOrder(const Note &first, const Note &second)
{
    return first.updatedAt > second.updatedAt;
}

/// The places of the notes in display order. Sorts times and not notes, which lie far apart.
QList<FoundNotes::Place> inDisplayOrder(const QList<Note> &notes)
{
    QList<FoundNotes::Place> places(notes.size());
    std::iota(places.begin(), places.end(), FoundNotes::Place{0});
    if (std::ranges::is_sorted(notes, isInDisplayOrder))
        return places;

    std::vector<Timestamp> times;
    times.reserve(static_cast<size_t>(notes.size()));
    for (const Note &note : notes)
        times.push_back(note.updatedAt);
    std::ranges::stable_sort(places, [&times](FoundNotes::Place first, FoundNotes::Place second) {
        return times[first] > times[second];
    });
    return places;
}

} // namespace

void NoteSearch::setNotes(const QList<Note> &notes)
{
    m_notes = notes;
    m_all.reset();
    m_last.reset();
}

const FoundNotes &NoteSearch::all()
{
    if (!m_all)
        m_all.emplace(m_notes, inDisplayOrder(m_notes));
    return *m_all;
}

const FoundNotes &NoteSearch::matching(const QString &query)
{
    const QString trimmed = query.trimmed();
    if (trimmed.isEmpty())
        return all();
    if (m_last && m_last->query == trimmed)
        return m_last->found;

    Last next{trimmed, TextSearch(trimmed), {}, {}};
    next.isFound = mayBeFound(next.search);
    if (!m_last || !next.search.speakTheSame(m_last->search))
        m_letters.assign(next.isFound.size(), TextSearch::Letters::unknown);
    for (size_t place = 0; place < next.isFound.size(); ++place) {
        const QString &body = m_notes.at(qsizetype(place)).body;
        if (next.isFound[place])
            next.isFound[place] = next.search.isFoundIn(body, m_letters[place]);
    }
    const FoundNotes &notes = all();
    QList<FoundNotes::Place> places;
    for (qsizetype i = 0; i < notes.size(); ++i) {
        if (next.isFound[notes.place(i)])
            places.append(notes.place(i));
    }
    next.found = FoundNotes(m_notes, std::move(places));
    m_last.emplace(std::move(next));
    return m_last->found;
}

/// By the place of a note: whether it has to be looked at.
std::vector<char> NoteSearch::mayBeFound(const TextSearch &search) const
{
    if (m_last && search.narrows(m_last->search))
        return m_last->isFound;
    return std::vector<char>(static_cast<size_t>(m_notes.size()), true);
}
