// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"

#include <QList>

/// Some notes of many, in the order in which they are shown: what a search found.
///
/// A value that costs nothing to copy, and little to keep: it shares the notes that it is of, and
/// knows where among them its own are.
class FoundNotes final {
public:
    using Place = quint32;

    FoundNotes() = default;
    FoundNotes(QList<Note> among, QList<Place> places);

    [[nodiscard]] qsizetype size() const noexcept { return m_places.size(); }
    [[nodiscard]] bool isEmpty() const noexcept { return m_places.isEmpty(); }
    [[nodiscard]] const Note &operator[](qsizetype i) const { return m_among.at(place(i)); }

    /// The notes that it is of, in the order in which they are kept.
    [[nodiscard]] const QList<Note> &among() const noexcept { return m_among; }
    /// Where among them a note is.
    [[nodiscard]] Place place(qsizetype i) const { return m_places.at(i); }

    /// Whether the two are of the same notes, so that their places mean the same.
    [[nodiscard]] bool isOfTheSame(const FoundNotes &other) const noexcept;

    [[nodiscard]] QList<Note> toList() const;

    void remove(qsizetype first, qsizetype count);
    /// Takes over what others of the same notes have at these places, in front of what is there.
    void insert(qsizetype first, qsizetype count, const FoundNotes &others);

    friend bool operator==(const FoundNotes &one, const FoundNotes &other) noexcept
    {
        return one.isOfTheSame(other) && one.m_places == other.m_places;
    }

private:
    QList<Note> m_among;
    QList<Place> m_places;
};
