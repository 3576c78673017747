// SPDX-License-Identifier: MIT
#include "Commands.h"

#include "CommandReach.h"
#include "Console.h"
#include "Directory.h"
#include "ExportName.h"
#include "FileError.h"
#include "FileNames.h"
#include "ProgressLine.h"
#include "Renames.h"
#include "SignalDelay.h"
#include "StoredNotes.h"
#include "Utf8.h"

#include <QFile>
#include <algorithm>
#include <cmath>
#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace {

timespec timeOf(Timestamp time)
{
    const double milliseconds = std::round(time.millisecondsSince1970());
    const double seconds = std::floor(milliseconds / 1000);
    return {static_cast<time_t>(seconds),
            static_cast<long>(milliseconds - seconds * 1000) * 1000000};
}

/// Of a file that is open: a confined process may not change others.
Result<void> setTimes(const Directory &folder, const char *name,
                      const std::array<timespec, 2> &times)
{
    Disk &disk = folder.disk();
    const auto handle = uninterrupted([&] { return disk.openFile(folder.handle(), name); });
    if (!handle)
        return handle.failure();
    const Descriptor file(disk, *handle);
    return ::futimens(file.get(), times.data()) == 0 ? Result<void>() : Failure::system(errno);
}

/// Makes one copy, whole or not at all, under the first of its names that is free. The name comes
/// back.
Result<std::string> copyNote(const Directory &folder, ExportNames &names, const Note &note)
{
    std::string bytes;
    if (!encodeUtf8(note.body, bytes))
        return Failure::because(Reason::notUnicode);
    const std::string stage = FileNames::fresh(FileNames::stagePrefix);
    Result<void> done;
    if (const auto made = folder.makeFile(stage.c_str(), bytes); !made)
        done = made.failure();
    const timespec time = timeOf(note.updatedAt);
    const std::array<timespec, 2> times{time, time};
    if (done)
        done = setTimes(folder, stage.c_str(), times);
    std::string name;
    while (done) {
        name = names.next(note.title());
        done = renameToFreeName(folder.disk(), folder.handle(), stage.c_str(), folder.handle(),
                                name.c_str());
        if (done)
            return name;
        if (done.failure().is(EEXIST))
            done = {};
    }
    const Failure failure = done.failure();
    if (!failure.is(EEXIST))
        static_cast<void>(folder.unlink(stage.c_str(), FileKind::file));
    return failure;
}

/// By their creation, so that the copies of a later export have the same names.
void sortForNames(QList<Note> &notes)
{
    std::ranges::stable_sort(notes, [](const Note &a, const Note &b) {
        return a.createdAt != b.createdAt ? a.createdAt < b.createdAt : a.id < b.id;
    });
}

} // namespace

ExitStatus Commands::exportTo(Console &console, StoredNotes &notes, const Words &words)
{
    if (words.size() != 1 || words.front().empty())
        return refuseUsage(console);
    SystemDisk disk;
    std::optional<Directory> opened;
    std::optional<Complaint> complaint = attempt(
        [&] { opened = Directory::openOrMake(disk, std::filesystem::absolute(words.front())); });
    if (complaint) {
        console.complain(*complaint);
        return complaint->status;
    }
    const Directory &folder = *opened;
    confineCommand({folder.path()}, {notes.dataFolder()});
    const ProgressLine progress(console, u"Exporting notes…"_s);
    NoteSnapshot snapshot;
    complaint = notes.read(snapshot);
    if (complaint) {
        console.complain(*complaint);
        return complaint->status;
    }
    sortForNames(snapshot.notes);
    const SignalDelay untilAFileIsDone;
    complaint = attempt([&] {
        ExportNames names;
        for (const Note &note : std::as_const(snapshot.notes)) {
            if (SignalDelay::isAsked())
                return;
            const Result<std::string> name = copyNote(folder, names, note);
            console.writePath(folder.path() / folder.orThrow(name));
        }
        folder.orThrow(folder.syncFileSystem());
    });
    if (complaint) {
        console.complain(*complaint);
        return complaint->status;
    }
    return ExitStatus::done;
}
