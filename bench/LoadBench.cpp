// SPDX-License-Identifier: MIT

// How long it takes to load many notes, beside a plain program that lists the folder and reads
// every file. Ends with an error when a limit is missed.

#include "PlainStorage.h"
#include "StorageMeasure.h"

#include <cstdlib>
#include <optional>

namespace {

bool measure(int count, int turns)
{
    const MeasuredFolder folder("LoadBench");
    LocalNoteRepository(folder.fileURL()).save(manyNotes(count));
    NoteSnapshot snapshot;
    std::optional<LocalNoteRepository> repository;
    std::size_t size = 0;

    const bool isMet = compare(
        qPrintable(u"load of %1 notes"_s.arg(count)), turns, 1.5,
        [&] {
            snapshot = {};
            repository.emplace(folder.fileURL());
        },
        [&] { snapshot = repository->load(); },
        [&] { size = PlainStorage::load(folder.path().native()); });
    return isMet && snapshot.notes.size() == count && size > static_cast<std::size_t>(count) * 500;
}

} // namespace

int main()
{
    bool isMet = measure(1000, 51);
    isMet = measure(10000, 21) && isMet;
    return isMet ? EXIT_SUCCESS : EXIT_FAILURE;
}
