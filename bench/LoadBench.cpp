// SPDX-License-Identifier: MIT

// How long it takes to load many notes, beside a plain program that lists the folder and reads
// every file. Ends with an error when a limit is missed. With few notes the plain program has all
// that it reads in the processor's caches, so that parsing and hashing weigh more.

#include "PlainStorage.h"
#include "StorageMeasure.h"

#include <cstdlib>
#include <optional>

namespace {

bool measure(int count, int turns, double limit)
{
    const MeasuredFolder folder("LoadBench");
    LocalNoteRepository(folder.fileURL()).save(manyNotes(count));
    NoteSnapshot snapshot;
    std::optional<LocalNoteRepository> repository;
    std::size_t size = 0;

    const bool isMet = compare(
        qPrintable(u"load of %1 notes"_s.arg(count)), turns, limit,
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
    bool isMet = measure(1000, 101, 2.0);
    isMet = measure(10000, 51, 1.5) && isMet;
    return isMet ? EXIT_SUCCESS : EXIT_FAILURE;
}
