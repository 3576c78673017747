// SPDX-License-Identifier: MIT
#include "StoredNotes.h"

#include "Directory.h"
#include "FileNames.h"
#include "FolderLock.h"
#include "LocalNoteRepository.h"
#include "NoteAddition.h"
#include "NoteId.h"
#include "NotesInterface.h"
#include "SessionBus.h"

#include <QCoreApplication>
#include <QFile>
#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto interval = 10ms;

/// For which a folder that others add to is waited for in one try.
constexpr auto longestClaim = 50ms;

/// What the D-Bus library needs, made when it is needed: nothing of it is for an addition that goes
/// without the window.
void prepareBus()
{
    static int count = 1;
    static char name[] = "quillmark-notes";
    static char *arguments[] = {name, nullptr};
    if (!QCoreApplication::instance()) {
        doWithoutSilentSessionBus();
        new QCoreApplication(count, arguments); // Lives as long as the process.
    }
}

} // namespace

StoredNotes::StoredNotes(std::filesystem::path fileURL)
    : m_fileURL(std::move(fileURL))
{
}

StoredNotes::~StoredNotes() = default;

bool StoredNotes::isFree() const
{
    const Result<Directory> data = Directory::open(m_disk, dataFolder());
    FolderLock lock;
    return !data || lock.take(*data, Disk::Lock::together);
}

std::optional<Complaint> StoredNotes::read(NoteSnapshot &snapshot) const
{
    const LocalNoteRepository repository(m_fileURL, LocalNoteRepository::Folders());
    const auto deadline = std::chrono::steady_clock::now() + longestTry;
    for (;;) {
        // Asked first: what is read after that no other program has touched.
        const Result<Directory> data = Directory::open(m_disk, dataFolder());
        FolderLock lock;
        const bool isLast = std::chrono::steady_clock::now() >= deadline;
        const bool isAlone = data && lock.take(*data, Disk::Lock::together) && lock.isHeld();
        auto complaint = attempt([&] { snapshot = repository.read(); });
        if (!complaint || isAlone || isLast)
            return complaint;
        std::this_thread::sleep_for(interval);
    }
}

std::filesystem::path StoredNotes::pathOf(const Note &note) const
{
    return dataFolder() / FileNames::markdownFolder / FileNames::ofSection(Section::notes) /
           NoteFileName::ofNote(note.id).c_str();
}

Complaint StoredNotes::inUse() const
{
    return {
        ExitStatus::inUse,
        {u"“%@” is in use by another Quillmark that cannot be asked to add notes. Quit that one, then try again."_s,
         {QFile::decodeName(dataFolder().c_str())}},
        std::nullopt};
}

std::optional<Complaint> StoredNotes::planTakeIn(TakeInPlan &plan)
{
    m_claimed = std::make_unique<LocalNoteRepository>(m_fileURL);
    bool isClaimed = false;
    auto complaint = attempt([&] {
        isClaimed = m_claimed->claim(longestTry);
        if (isClaimed)
            plan = m_claimed->planTakeIn();
    });
    if (complaint || isClaimed)
        return complaint;
    return Complaint{
        ExitStatus::inUse,
        {u"“%@” is in use by another Quillmark. Choose “Take in copies…” in its window, or quit it, then try again."_s,
         {QFile::decodeName(dataFolder().c_str())}},
        std::nullopt};
}

std::optional<Complaint> StoredNotes::takeIn(const TakeInPlan &shown, std::filesystem::path &target)
{
    return attempt([&] { target = m_claimed->takeIn(shown); });
}

std::optional<Complaint> StoredNotes::add(const QList<Note> &notes)
{
    const auto deadline = std::chrono::steady_clock::now() + longestTry;
    for (;;) {
        const bool isLastTry = std::chrono::steady_clock::now() >= deadline;
        Step step = tryToAdd(notes, isLastTry);
        if (step.road == Road::done)
            return step.complaint;
        if (isLastTry)
            return inUse();
        std::this_thread::sleep_for(interval);
    }
}

StoredNotes::Step StoredNotes::tryToAdd(const QList<Note> &notes, bool isLastTry)
{
    const Result<Directory> data = Directory::open(m_disk, dataFolder());
    FolderLock lock;
    const bool isFree = data && lock.take(*data, Disk::Lock::together);
    // Who has the lock knows that there is no window. Where there is no lock, or nothing to lock
    // yet, the window has to be asked.
    if (!lock.isHeld()) {
        Step there = addThere(notes);
        if (there.road == Road::done || (there.road == Road::later && !isLastTry))
            return there;
        if (data && !isFree)
            return {Road::later, std::nullopt};
    }
    if (data && notes.size() == 1) {
        Step here = addOneHere(*data, notes.first());
        if (here.road == Road::done)
            return here;
    }
    lock = FolderLock();
    return addAllHere(notes);
}

StoredNotes::Step StoredNotes::addThere(const QList<Note> &notes) const
{
    using Kind = NotesInterface::Answer::Kind;
    prepareBus();
    const NotesInterface::Answer answer =
        NotesInterface::addThere(dataFolder(), notes, longestAnswer);
    switch (answer.kind) {
    case Kind::saved:
        return {Road::done, std::nullopt};
    case Kind::refused:
        return {Road::done, complaintOf(answer.refusal)};
    case Kind::silent: {
        std::error_code ignored;
        if (std::filesystem::exists(pathOf(notes.last()), ignored))
            return {Road::done, std::nullopt};
        return {
            Road::done,
            Complaint{
                ExitStatus::silent,
                {u"Quillmark runs but does not answer. Look whether it has saved the text before you try again."_s,
                 {}},
                std::nullopt}};
    }
    case Kind::elsewhere:
    case Kind::absent:
        return {};
    case Kind::notOffered:
        return {Road::later, std::nullopt};
    }
    Q_UNREACHABLE();
}

StoredNotes::Step StoredNotes::addOneHere(const Directory &data, const Note &note)
{
    std::optional<std::filesystem::path> path;
    auto complaint = attempt([&] { path = addNote(data, note); });
    if (!complaint && !path)
        return {};
    return {Road::done, std::move(complaint)};
}

StoredNotes::Step StoredNotes::addAllHere(const QList<Note> &notes)
{
    bool isClaimed = false;
    auto complaint = attempt([&] {
        // Made first, since only what is there can be kept from others.
        static_cast<void>(Directory::openOrMake(m_disk, dataFolder()));
        LocalNoteRepository repository(m_fileURL, LocalNoteRepository::Folders());
        isClaimed = repository.claim(longestClaim);
        if (!isClaimed)
            return;
        NoteSnapshot snapshot = repository.load();
        snapshot.notes = notes + snapshot.notes;
        repository.save(snapshot);
    });
    if (!complaint && !isClaimed)
        return {Road::later, std::nullopt};
    return {Road::done, std::move(complaint)};
}
