// SPDX-License-Identifier: MIT
#include "TypingJournal.h"

#include "Directory.h"
#include "FileNames.h"
#include "NoteFolder.h"
#include "NoteId.h"
#include "SnapshotMerge.h"

#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto captureKey = "capture"_L1;

/// More than what is written, and less than what would fill the memory.
constexpr std::size_t largestFile = 4 * NoteFolder::largestFile;

/// A draft as it stands in the notes: of a note without a draft its body. Nothing when there is no
/// such note.
std::optional<QString> textIn(const NoteSnapshot &notes, const QString &key)
{
    if (key == captureKey)
        return notes.captureDraft;
    if (const auto draft = notes.editingDrafts.find(key); draft != notes.editingDrafts.end())
        return *draft;
    const auto note = std::ranges::find(notes.notes, parseId(QStringView(key)), &Note::id);
    return note != notes.notes.end() ? std::optional(note->body) : std::nullopt;
}

bool isAmong(const QList<Note> &notes, const QUuid &id)
{
    return std::ranges::find(notes, id, &Note::id) != notes.end();
}

bool holdsCapture(const std::vector<TypedDraft> &drafts)
{
    return std::ranges::find(drafts, captureKey, &TypedDraft::key) != drafts.end();
}

} // namespace

TypingJournal::TypingJournal(Disk &disk, std::vector<std::filesystem::path> folders,
                             const std::filesystem::path &dataFolder)
    : m_disk(disk)
    , m_folders(std::move(folders))
    , m_dataFolder(dataFolder)
    , m_prefix(prefixOf(dataFolder))
    , m_name(FileNames::fresh(m_prefix))
{
}

std::string TypingJournal::prefixOf(const std::filesystem::path &dataFolder)
{
    constexpr qsizetype bytes = 16;
    const QByteArray digest =
        QByteArrayView(sha256(dataFolder.native())).first(bytes).toByteArray();
    return std::string(FileNames::journalPrefix) + digest.toHex().toStdString() + '-';
}

template <typename Predicate>
Result<void> TypingJournal::remove(Predicate isKept) noexcept
{
    Result<void> result;
    std::erase_if(m_places, [&](const Place &place) {
        if (isKept(place))
            return false;
        // By its path alone: nothing here may need memory.
        const auto handle = uninterrupted([&] { return m_disk.openPath(place.folder.c_str()); });
        Result<void> removed;
        if (handle) {
            const Descriptor folder(m_disk, *handle);
            removed = uninterrupted(
                [&] { return m_disk.unlink(folder.get(), place.name.c_str(), FileKind::file); });
        } else {
            removed = handle.failure();
        }
        const bool isGone = removed || removed.failure().is(ENOENT);
        if (!isGone)
            result = removed;
        return isGone;
    });
    return result;
}

// -- Reading -----------------------------------------------------------------------------------

void TypingJournal::restore(NoteSnapshot &snapshot)
{
    const NoteSnapshot saved = snapshot;
    m_leftAlone.reset();
    m_places.clear();
    m_folder.reset();
    m_captureId.reset();
    m_file.drafts.clear();
    std::vector<Found> files;
    for (std::size_t i = 0; i < m_folders.size(); ++i)
        read(i, files);
    std::ranges::sort(files, {}, [](const Found &found) { return found.file.number; });
    for (auto found = files.begin(); found != files.end(); ++found) {
        // Of one file in two folders the later one counts.
        if (std::ranges::find(found + 1, files.end(), found->name, &Found::name) != files.end())
            continue;
        std::vector<TypedDraft> drafts = found->file.drafts;
        std::erase_if(drafts, [&](const TypedDraft &draft) {
            return isOver(draft, found->file.captureId, saved);
        });
        // Later, another program's text would look like one that was typed over.
        if (drafts.empty()) {
            static_cast<void>(remove([&](const Place &place) {
                return place.folder != m_folders[found->folder] || place.name != found->name;
            }));
            continue;
        }
        for (const TypedDraft &draft : drafts)
            putInto(snapshot, saved, draft);
        m_name = found->name;
        m_folder = found->folder;
        m_file = found->file;
        if (holdsCapture(drafts))
            m_captureId = m_file.captureId;
    }
    readOlder(snapshot, saved);
    m_hasRestored = snapshot != saved;
}

void TypingJournal::read(std::size_t place, std::vector<Found> &files)
{
    const std::filesystem::path &path = m_folders[place];
    const Result<Directory> folder = Directory::open(m_disk, path);
    if (!folder) {
        if (!folder.failure().is(ENOENT))
            m_leftAlone.emplace(path, folder.failure());
        return;
    }
    const Result<DirectoryListing> listing = folder->list();
    if (!listing) {
        m_leftAlone.emplace(path, listing.failure());
        return;
    }
    std::string bytes;
    for (const DirectoryListing::Entry &entry : listing->entries()) {
        const std::string name = listing->name(entry);
        if (!name.starts_with(m_prefix))
            continue;
        if (name.ends_with('~')) {
            remember({path, name});
            continue;
        }
        if (const auto found = folder->readFile(name.c_str(), largestFile, bytes); !found) {
            m_leftAlone.emplace(path / name, found.failure());
            continue;
        }
        // What is no such file was torn by a power cut before its first byte was on the disk.
        remember({path, name});
        if (std::optional<JournalFile> file = JournalFile::decoded(bytes))
            files.push_back({name, place, *std::move(file)});
    }
}

void TypingJournal::readOlder(NoteSnapshot &snapshot, const NoteSnapshot &saved)
{
    const std::filesystem::path &path = m_dataFolder;
    const Result<Directory> folder = Directory::open(m_disk, path);
    const Result<DirectoryListing> listing =
        folder ? folder->list() : Result<DirectoryListing>(folder.failure());
    if (!listing)
        return;
    std::string bytes;
    for (const DirectoryListing::Entry &entry : listing->entries()) {
        const std::string name = listing->name(entry);
        if (!name.starts_with(FileNames::olderTypedPrefix) || entry.kind != FileKind::file)
            continue;
        if (const auto found = folder->readFile(name.c_str(), largestFile, bytes); !found) {
            m_leftAlone.emplace(path / name, found.failure());
            continue;
        }
        remember({path, name});
        const QString key = QString::fromStdString(name.substr(FileNames::olderTypedPrefix.size()));
        const std::optional<QString> text = textIn(saved, key);
        const auto draft = JournalFile::decodedOlder(key, bytes);
        // Of another text nothing tells whether it is later.
        if (draft && text && TextMark(text) == draft->base)
            putInto(snapshot, saved, *draft);
    }
}

bool TypingJournal::isOver(const TypedDraft &draft, const QUuid &captureId,
                           const NoteSnapshot &saved)
{
    const std::optional<QString> text = textIn(saved, draft.key);
    const TextMark mark(text);
    // A later text that begins with it holds all of it.
    if (text == draft.text || draft.successor == mark ||
        (text && mark != draft.base && text->startsWith(draft.text)))
        return true;
    // The draft is as empty after a capture as it was before the first key.
    return draft.key == captureKey && isAmong(saved.notes, captureId);
}

void TypingJournal::putInto(NoteSnapshot &snapshot, const NoteSnapshot &saved,
                            const TypedDraft &draft)
{
    const std::optional<QString> text = textIn(saved, draft.key);
    const bool isNext = TextMark(text) == draft.base;
    if (!text)
        snapshot.captureDraft = joined(snapshot.captureDraft, draft.text);
    else if (draft.key == captureKey)
        snapshot.captureDraft = isNext ? draft.text : joined(draft.text, snapshot.captureDraft);
    else
        snapshot.editingDrafts[draft.key] = isNext ? draft.text : joined(draft.text, *text);
}

// -- Writing -----------------------------------------------------------------------------------

void TypingJournal::keep(const NoteSnapshot &typed, const NoteSnapshot &saved,
                         const QUuid &captureId)
{
    JournalFile next;
    next.number = m_file.number + 1;
    next.captureId = captureId;
    const auto add = [&](const QString &key, const QString &text) {
        const std::optional<QString> base = textIn(saved, key);
        if (text != base)
            next.drafts.push_back({key, text, markOf(key, base), {}});
    };
    add(captureKey, typed.captureDraft);
    for (auto draft = typed.editingDrafts.begin(); draft != typed.editingDrafts.end(); ++draft)
        add(draft.key(), draft.value());
    if (next.drafts.empty())
        takeBack();
    else if (next.drafts != m_file.drafts || captureId != m_file.captureId || !isInPlace())
        write(std::move(next));
}

/// What is typed on goes on from the same text again and again.
TextMark TypingJournal::markOf(const QString &key, const std::optional<QString> &base)
{
    if (!base)
        return TextMark();
    const auto known = m_marks.find(key);
    const bool isKnown = known != m_marks.end() && known->second.text.size() == base->size() &&
                         known->second.text.constData() == base->constData();
    if (isKnown)
        return known->second.mark;
    return (m_marks[key] = {*base, TextMark(*base)}).mark;
}

bool TypingJournal::isInPlace() const
{
    if (!m_folder)
        return false;
    const Result<Directory> folder = Directory::open(m_disk, m_folders[*m_folder]);
    return folder && folder->status(m_name.c_str());
}

void TypingJournal::separate()
{
    if (std::exchange(m_isSeparate, true))
        return;
    m_name = FileNames::fresh(m_prefix);
    m_places.clear();
    m_folder.reset();
    m_file.drafts.clear();
}

void TypingJournal::prepareSave(const NoteSnapshot &next, const NoteSnapshot &saved)
{
    JournalFile file = m_file;
    ++file.number;
    const bool isCaptured = isAmong(next.notes, file.captureId);
    for (TypedDraft &draft : file.drafts) {
        const std::optional<QString> text = textIn(next, draft.key);
        // The note that a capture makes says so itself.
        if ((draft.key == captureKey && isCaptured) || text == draft.text)
            continue;
        // What is saved unchanged was taken back since it was kept.
        const bool isDraft = draft.key == captureKey || next.editingDrafts.contains(draft.key);
        if (text && (isDraft || text == textIn(saved, draft.key)))
            draft.text = *text;
        else
            draft.successor = TextMark(text);
    }
    if (file.drafts == m_file.drafts)
        return;
    const std::string bytes = file.encoded();
    if (m_folder && tryToWrite(m_folders[*m_folder], bytes))
        m_file = std::move(file);
}

void TypingJournal::write(JournalFile file)
{
    const std::string bytes = file.encoded();
    if (bytes.size() > largestFile)
        throw FileError(m_folders.empty() ? m_dataFolder : m_folders.front(), Reason::tooLarge);
    std::optional<Failure> first;
    for (std::size_t i = 0; i < m_folders.size(); ++i) {
        if (const Result<void> written = tryToWrite(m_folders[i], bytes); !written) {
            first = first.value_or(written.failure());
            continue;
        }
        m_folder = i;
        m_file = std::move(file);
        m_captureId.reset();
        if (holdsCapture(m_file.drafts))
            m_captureId = m_file.captureId;
        removeOthers();
        return;
    }
    if (first)
        throw FileError(m_folders.front() / m_name, *first);
}

Result<void> TypingJournal::tryToWrite(const std::filesystem::path &folder,
                                       const std::string &bytes)
{
    const Result<Directory> directory = Directory::tryToOpenOrMake(m_disk, folder);
    if (!directory)
        return directory.failure();
    const std::string fresh = m_name + '~';
    // Before there is a file, of which nobody would know if there was no memory afterwards.
    remember({folder, fresh});
    remember({folder, m_name});
    // One that a killed program left half written.
    static_cast<void>(directory->unlink(fresh.c_str(), FileKind::file));
    if (const auto made = directory->makeFile(fresh.c_str(), bytes); !made) {
        static_cast<void>(directory->unlink(fresh.c_str(), FileKind::file));
        return made.failure();
    }
    return directory->rename(fresh.c_str(), *directory, m_name.c_str());
}

void TypingJournal::sync()
{
    if (!m_folder)
        return;
    const std::filesystem::path &path = m_folders[*m_folder];
    const Result<Directory> folder = Directory::open(m_disk, path);
    if (!folder)
        throw FileError(path, folder.failure());
    folder->orThrow(folder->syncFile(m_name.c_str()), m_name);
    folder->orThrow(folder->sync());
    folder->syncPath();
}

void TypingJournal::remember(const Place &place)
{
    if (std::ranges::find(m_places, place) == m_places.end())
        m_places.push_back(place);
}

/// What was found is part of what was written, and what lies in another folder is older.
void TypingJournal::removeOthers() noexcept
{
    const auto isCurrent = [this](const Place &place) {
        return place.folder == m_folders[*m_folder] && place.name == m_name;
    };
    static_cast<void>(remove(isCurrent));
}

/// All that was typed is what is saved.
void TypingJournal::takeBack()
{
    if (const Result<void> removed = remove([](const Place &) { return false; }); !removed)
        throw FileError(m_places.front().folder / m_places.front().name, removed.failure());
    forget();
}

void TypingJournal::forget() noexcept
{
    m_marks.clear();
    m_file.drafts.clear();
    m_folder.reset();
    m_captureId.reset();
    m_hasRestored = false;
    static_cast<void>(remove([](const Place &) { return false; }));
}

std::optional<std::filesystem::path> TypingJournal::path() const
{
    return m_folder ? std::optional(m_folders[*m_folder] / m_name) : std::nullopt;
}
