// SPDX-License-Identifier: MIT
#include "Commands.h"

#include "Console.h"
#include "FileError.h"
#include "NoteFolder.h"
#include "ProgressLine.h"
#include "SignalDelay.h"
#include "StoredNotes.h"
#include "UserText.h"
#include "Utf8.h"

#include <QFile>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

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

std::optional<Complaint> readNote(Disk &disk, const std::string &path, Note &note)
{
    std::string bytes;
    const Result<FileStatus> status = readFile(disk, path, bytes);
    if (!status)
        return unreadable(path, status.failure());
    Utf8Decoder decoder;
    const std::optional<QStringView> text = decoder.decode(bytes);
    if (!text)
        return complaintAbout(path, ExitStatus::notUtf8, u"“%@” is not UTF-8 text."_s);
    if (isBlank(*text))
        return complaintAbout(path, ExitStatus::blank, u"“%@” holds no text."_s);
    const Timestamp time = Timestamp::fromNanosecondsSince1970(status->modified);
    if (!time.hasTextForm())
        return complaintAbout(path, ExitStatus::limits,
                              u"“%@” has a time that no note can have."_s);
    note = {QUuid::createUuid(), text->toString(), time, time};
    return std::nullopt;
}

} // namespace

ExitStatus Commands::import(Console &console, StoredNotes &notes, const Words &words)
{
    if (words.empty())
        return refuseUsage(console);
    SystemDisk disk;
    QList<Note> made;
    std::size_t total = 0;
    std::optional<Complaint> complaint;
    {
        const ProgressLine progress(console, u"Importing notes…"_s);
        for (const std::string &path : words) {
            Note note;
            if (complaint = readNote(disk, path, note); complaint)
                break;
            total += static_cast<std::size_t>(note.body.size());
            made << note;
            if (total > NoteFolder::mostBytes || words.size() > NoteFolder::mostNotes) {
                complaint = Complaint{ExitStatus::limits,
                                      {u"These files are more than the notes may hold."_s, {}},
                                      std::nullopt};
                break;
            }
        }
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
