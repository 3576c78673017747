// SPDX-License-Identifier: MIT
// One storage operation on a data folder, as the program does it, for faults to be injected into.
//
//   StorageDriver OPERATION FOLDER
//
// prints "ok" or "failed: " and the sentence that the user would read, and ends with 0 or 1.
// Identifiers and times are fixed, so that every run of an operation writes the same bytes.
#include "LocalNoteRepository.h"
#include "NoteId.h"
#include "StorageError.h"

#include <cstdio>
#include <map>
#include <string>
#include <sys/uio.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

Note makeNote(int number, const QString &body)
{
    const QString digits = QString::number(number).rightJustified(12, u'0');
    const Timestamp time{700'000'000.0 + number};
    return {*parseId(u"00000000-0000-4000-8000-"_s + digits), body, time, time};
}

void load(NoteRepository &repository)
{
    static_cast<void>(repository.load());
}

/// What a new folder is filled with before the faults begin.
void fill(NoteRepository &repository)
{
    NoteSnapshot snapshot = repository.load();
    for (int i = 1; i <= 5; ++i) {
        snapshot.notes.prepend(makeNote(i, u"Note %1\nwith a second line."_s.arg(i)));
    }
    snapshot.captureDraft = u"unfinished"_s;
    snapshot.editingDrafts[canonicalText(snapshot.notes[2].id)] = u"an edit"_s;
    repository.save(snapshot);
}

/// One note more, one changed, both drafts gone.
void save(NoteRepository &repository)
{
    NoteSnapshot snapshot = repository.load();
    if (!snapshot.notes.isEmpty()) {
        snapshot.notes[0].body = u"changed"_s;
    }
    const Note newest = makeNote(99, u"The newest thought."_s);
    snapshot.notes.removeIf([&](const Note &note) { return note.id == newest.id; });
    snapshot.notes.prepend(newest);
    snapshot.captureDraft.clear();
    snapshot.editingDrafts.clear();
    repository.save(snapshot);
}

void deleteNote(NoteRepository &repository)
{
    NoteSnapshot snapshot = repository.load();
    snapshot.notes.removeFirst();
    repository.save(snapshot);
}

/// The capture draft alone.
void saveDraft(NoteRepository &repository)
{
    NoteSnapshot snapshot = repository.load();
    snapshot.captureDraft = u"a thought"_s;
    repository.save(snapshot);
}

/// Two drafts at once.
void saveDrafts(NoteRepository &repository)
{
    NoteSnapshot snapshot = repository.load();
    snapshot.captureDraft = u"a thought"_s;
    snapshot.editingDrafts[canonicalText(snapshot.notes[0].id)] = u"an afterthought"_s;
    repository.save(snapshot);
}

const std::map<std::string, void (*)(NoteRepository &)> operations = {
    {"load", load},         {"fill", fill},       {"save", save},
    {"delete", deleteNote}, {"draft", saveDraft}, {"drafts", saveDrafts}};

/// By another call than those that write files, so that it is heard while these fail.
void say(const QByteArray &text)
{
    const iovec part{const_cast<char *>(text.data()), static_cast<std::size_t>(text.size())};
    static_cast<void>(::writev(STDOUT_FILENO, &part, 1));
}

} // namespace

int main(int argc, char **argv)
{
    const auto operation = argc == 3 ? operations.find(argv[1]) : operations.end();
    if (operation == operations.end()) {
        std::fputs("StorageDriver load|fill|save|delete|draft|drafts FOLDER\n", stderr);
        return 2;
    }
    LocalNoteRepository repository(std::filesystem::path(argv[2]) / "notes.json");
    // Where the faults may begin: what comes before is the loading of the program itself.
    ::access("/storage-driver-begins", F_OK);
    try {
        operation->second(repository);
        while (repository.tidy(std::chrono::hours(1))) {
        }
    } catch (const StorageError &error) {
        say("failed: " + error.description().toUtf8() + '\n');
        return 1;
    }
    say("ok\n");
    return 0;
}
