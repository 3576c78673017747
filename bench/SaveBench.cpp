// SPDX-License-Identifier: MIT

// How long it takes to save one changed note among many, beside a plain program that does the same
// links, writes, reads and syncs. Ends with an error when a limit is missed.

#include "NoteId.h"
#include "NoteMarkdownCodec.h"
#include "PlainStorage.h"
#include "StorageMeasure.h"

#include <cstdlib>

namespace {

bool measure(int count, int turns)
{
    const MeasuredFolder ours("SaveBench-ours");
    const MeasuredFolder plain("SaveBench-plain");
    NoteSnapshot snapshot = manyNotes(count);
    LocalNoteRepository repository(ours.fileURL());
    repository.save(snapshot);
    LocalNoteRepository(plain.fileURL()).save(snapshot);

    Note &note = snapshot.notes[count / 2];
    const std::string name = canonicalText(note.id).toStdString() + ".md";
    const QString body = note.body;
    int number = 0;
    return compare(
        qPrintable(u"one note of %1"_s.arg(count)), turns, 1.3,
        [&] { note.body = body + QString::number(++number); }, [&] { repository.save(snapshot); },
        [&] {
            const QString text = NoteMarkdownCodec::encode(note);
            PlainStorage::saveOneNote(plain.path().native(), name, text.toUtf8().toStdString());
        });
}

} // namespace

int main()
{
    bool isMet = measure(100, 41);
    isMet = measure(1000, 31) && isMet;
    isMet = measure(10000, 15) && isMet;
    return isMet ? EXIT_SUCCESS : EXIT_FAILURE;
}
