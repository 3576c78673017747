// SPDX-License-Identifier: MIT

// Loads the notes of a data folder, changes, adds and removes some, and saves them once. Ends with
// 0 when that was saved, with 1 when it failed. Driven by every-call-fails.

#include "LocalNoteRepository.h"
#include "Notes.h"
#include "StorageError.h"

#include <cstdio>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

int main(int count, char **arguments)
{
    if (count != 2)
        return 2;
    // The driver begins to count calls here.
    static_cast<void>(::access("/the/save/begins", F_OK));
    try {
        LocalNoteRepository repository(std::filesystem::path(arguments[1]) / "notes.json");
        NoteSnapshot snapshot = repository.load();
        if (snapshot.notes.isEmpty()) {
            snapshot.notes = {numberedNote(1, u"one"_s), numberedNote(2, u"two"_s),
                              numberedNote(3, u"three"_s)};
        } else {
            snapshot.notes[0].body += u" changed"_s;
            snapshot.notes.removeLast();
            snapshot.notes.append(numberedNote(9, u"added"_s));
            snapshot.captureDraft = u"changed"_s;
        }
        repository.save(snapshot);
    } catch (const StorageError &error) {
        std::puts(qPrintable(error.description()));
        return error.description().isEmpty() ? 3 : 1;
    }
    return 0;
}
