// SPDX-License-Identifier: MIT
#include "FoundNotes.h"

#include <algorithm>
#include <utility>

FoundNotes::FoundNotes(QList<Note> among, QList<Place> places)
    : m_among(std::move(among))
    , m_places(std::move(places))
{
}

bool FoundNotes::isOfTheSame(const FoundNotes &other) const noexcept
{
    return m_among.constData() == other.m_among.constData() &&
           m_among.size() == other.m_among.size();
}

void FoundNotes::remove(qsizetype first, qsizetype count)
{
    m_places.remove(first, count);
}

void FoundNotes::insert(qsizetype first, qsizetype count, const FoundNotes &others)
{
    m_places.insert(first, count, 0);
    std::copy_n(others.m_places.begin() + first, count, m_places.begin() + first);
}

QList<Note> FoundNotes::toList() const
{
    QList<Note> notes;
    notes.reserve(size());
    for (const Place place : m_places)
        notes.append(m_among.at(place));
    return notes;
}
