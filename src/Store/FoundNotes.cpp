// SPDX-License-Identifier: MIT
#include "FoundNotes.h"

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

QList<Note> FoundNotes::toList() const
{
    QList<Note> notes;
    notes.reserve(size());
    for (const Place place : m_places)
        notes.append(m_among[place]);
    return notes;
}
