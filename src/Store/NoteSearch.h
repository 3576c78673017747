// SPDX-License-Identifier: MIT
#pragma once

#include "FoundNotes.h"
#include "TextSearch.h"

#include <optional>
#include <vector>

/// Puts notes in the order in which they are shown, and finds those that hold a text.
///
/// Asked at every key. So the order and what was found last are remembered while the notes stay the
/// same, and a search that can only find less looks at no more than what was found last
/// (TextSearch::narrows()). What it answers is what it would answer if nothing were remembered.
class NoteSearch final {
public:
    /// Forgets what was remembered of other notes.
    void setNotes(const QList<Note> &notes);

    /// Every note, last updated first; notes of the same time keep their stored order.
    [[nodiscard]] const FoundNotes &all();

    /// The notes, in the same order, whose body contains the trimmed query as TextSearch finds it;
    /// every note for a blank one.
    [[nodiscard]] const FoundNotes &matching(const QString &query);

private:
    struct Last {
        QString query;
        TextSearch search;
        /// By the place of a note. Not by its row, since texts that lie side by side in memory are
        /// read faster.
        std::vector<char> isFound;
        FoundNotes found;
    };

    [[nodiscard]] std::vector<char> mayBeFound(const TextSearch &search) const;

    QList<Note> m_notes;
    std::vector<TextSearch::Letters> m_letters; ///< Of the notes, for the language searched last.
    std::optional<FoundNotes> m_all;
    std::optional<Last> m_last;
};
