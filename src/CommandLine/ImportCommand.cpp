// SPDX-License-Identifier: MIT
#include "Commands.h"

#include "CommandReach.h"
#include "Console.h"
#include "FileError.h"
#include "NoteFolder.h"
#include "ProgressLine.h"
#include "SignalDelay.h"
#include "StoredNotes.h"
#include "UserFolders.h"
#include "UserText.h"
#include "Utf8.h"

#include <QFile>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace {

Complaint complaintAbout(const std::string &path, ExitStatus status, const QString &sentence)
{
    return {status, {sentence, {QFile::decodeName(path.c_str())}}, std::nullopt};
}

Complaint unreadable(const std::string &path, Failure failure)
{
    const QString why = failure.reason == Reason::system
                            ? QString::fromLocal8Bit(std::strerror(failure.systemError))
                            : QString();
    if (failure.reason == Reason::tooLarge)
        return complaintAbout(path, ExitStatus::limits, u"“%@” is too large for a note."_s);
    if (why.isEmpty())
        return complaintAbout(path, ExitStatus::file, u"“%@” is not an ordinary file."_s);
    return {ExitStatus::file,
            {u"“%@” cannot be read: %@"_s, {QFile::decodeName(path.c_str()), why}},
            std::nullopt};
}

/// Opens the file wherever it lies; a link that a person names is meant.
Result<FileStatus> readFile(Disk &disk, const std::string &path, std::string &bytes)
{
    std::error_code problem;
    const std::filesystem::path real = std::filesystem::canonical(path, problem);
    if (problem)
        return Failure::system(problem.value());
    const Result<Directory> folder = Directory::open(disk, real.parent_path());
    if (!folder)
        return folder.failure();
    return folder->readFile(real.filename().c_str(), NoteFolder::largestFile, bytes);
}

/// What a note is to be made of: read, and not looked at yet.
struct ReadFile {
    std::string path;
    std::string bytes;
    std::int64_t modified = 0;
};

/// Reads the files in their order, up to the first that is refused: then the complaint says why.
std::vector<ReadFile> readFiles(const Commands::Words &paths, std::optional<Complaint> &complaint)
{
    const Complaint tooMuch{
        ExitStatus::limits, {u"These files are more than the notes may hold."_s, {}}, std::nullopt};
    SystemDisk disk;
    std::vector<ReadFile> files;
    std::size_t total = 0;
    if (paths.size() > NoteFolder::mostNotes)
        complaint = tooMuch;
    for (const std::string &path : paths) {
        if (complaint)
            break;
        std::string bytes;
        const Result<FileStatus> status = readFile(disk, path, bytes);
        total += bytes.size();
        if (!status)
            complaint = unreadable(path, status.failure());
        else if (total > NoteFolder::mostBytes)
            complaint = tooMuch;
        else
            files.push_back({path, std::move(bytes), status->modified});
    }
    return files;
}

std::optional<Complaint> makeNote(const ReadFile &file, Note &note)
{
    Utf8Decoder decoder;
    const std::optional<QStringView> text = decoder.decode(file.bytes);
    if (!text)
        return complaintAbout(file.path, ExitStatus::notUtf8, u"“%@” is not UTF-8 text."_s);
    if (isBlank(*text))
        return complaintAbout(file.path, ExitStatus::blank, u"“%@” holds no text."_s);
    const Timestamp time = Timestamp::fromNanosecondsSince1970(file.modified);
    if (!time.hasTextForm())
        return complaintAbout(file.path, ExitStatus::limits,
                              u"“%@” has a time that no note can have."_s);
    note = {QUuid::createUuid(), text->toString(), time, time};
    return std::nullopt;
}

/// The notes of the files, in their order; nothing, and a complaint, when one of them is refused.
QList<Note> makeNotes(std::vector<ReadFile> files, std::optional<Complaint> &complaint)
{
    QList<Note> notes;
    for (ReadFile &file : files) {
        Note note;
        if (auto refused = makeNote(std::exchange(file, {}), note)) {
            complaint = std::move(refused);
            break;
        }
        notes << note;
    }
    return complaint ? QList<Note>() : notes;
}

} // namespace

ExitStatus Commands::import(Console &console, StoredNotes &notes, const Words &words)
{
    if (words.empty())
        return refuseUsage(console);
    std::optional<Complaint> complaint;
    std::vector<ReadFile> files;
    {
        const ProgressLine progress(console, u"Importing notes…"_s);
        files = readFiles(words, complaint);
    }
    // Made now: there is no right to do so afterwards.
    if (!complaint)
        makeUserFolder(notes.dataFolder());
    confineCommand({notes.dataFolder()});

    QList<Note> made;
    {
        const ProgressLine progress(console, u"Importing notes…"_s);
        made = makeNotes(std::move(files), complaint);
        if (!complaint) {
            const SignalDelay untilItIsDone;
            complaint = notes.add(made);
        }
    }
    if (complaint) {
        console.complain(*complaint);
        return complaint->status;
    }
    for (const Note &note : std::as_const(made))
        console.writePath(notes.pathOf(note));
    return ExitStatus::done;
}
