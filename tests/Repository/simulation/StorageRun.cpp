// SPDX-License-Identifier: MIT
#include "StorageRun.h"

#include "NoteId.h"
#include "NoteMarkdownCodec.h"
#include "OtherProgram.h"
#include "StorageError.h"

#include <algorithm>
#include <cerrno>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int mostNotes = 8;
constexpr std::int64_t millisecond = 1'000'000;

const std::string markdownFolder = SimulatedFolder::markdown;

QUuid numberedId(int number)
{
    return {0x8C5B6F0E,
            0x3C1D,
            0x4E0A,
            0x9C,
            0x55,
            0,
            0,
            0,
            0,
            static_cast<uchar>(number / 256),
            static_cast<uchar>(number % 256)};
}

std::string noteFile(const QUuid &id)
{
    return markdownFolder + "/Notes/" + canonicalText(id).toStdString() + ".md";
}

std::string noteBytes(const Note &note)
{
    return NoteMarkdownCodec::encode(note).toStdString();
}

std::uint64_t mixed(std::uint64_t seed, std::uint64_t number)
{
    Dice dice(seed);
    return dice.roll() + number;
}

MemoryDisk::Abilities randomAbilities(Dice &dice)
{
    MemoryDisk::Abilities abilities;
    abilities.canExchange = dice.hasChance(85);
    abilities.canKeepFromReplacing = abilities.canExchange || dice.hasChance(50);
    constexpr std::array<int, 3> noLinks{EPERM, EACCES, EOPNOTSUPP};
    if (dice.hasChance(12))
        abilities.linkError = noLinks.at(dice.below(noLinks.size()));
    abilities.hasReliableTimes = dice.hasChance(85);
    abilities.canLosePower = dice.hasChance(40);
    return abilities;
}

} // namespace

const char *nameOf(Operation operation) noexcept
{
    constexpr std::array<const char *, operationCount> names{
        "load", "draft", "typing", "capture", "edit", "deletion", "tidy"};
    return names.at(static_cast<std::size_t>(operation));
}

StorageRun::StorageRun(std::uint64_t seed, std::uint64_t number, StopCounts &counts)
    : m_dice(mixed(seed, number))
    , m_counts(counts)
    , m_disk(randomAbilities(m_dice))
    , m_watcher(m_dice.roll())
{
}

void StorageRun::setLog(std::vector<std::string> *log)
{
    m_log = log;
    m_disk.setLog(log);
}

void StorageRun::say(const std::string &line)
{
    if (m_log)
        m_log->push_back(line);
}

void StorageRun::count(StopKind kind, Operation operation, std::uint64_t stops)
{
    m_counts[static_cast<std::size_t>(kind)][static_cast<std::size_t>(operation)] += stops;
}

void StorageRun::go()
{
    setUp();
    const std::uint32_t steps = 4 + m_dice.below(14);
    for (std::uint32_t i = 0; i < steps; ++i) {
        letTimePass();
        step();
    }
    // In the end everything is as it should be, whatever went wrong before.
    restart();
    saveDrafts();
    tidy(true);
    m_disk.setWatcher(nullptr);
    m_repository.reset();
    if (m_disk.openHandleCount() != 0)
        throw BrokenPromise{"A folder or file is open that nobody needs."};
}

// -- The life before the first stop ------------------------------------------------------------

void StorageRun::setUp()
{
    OtherProgram(m_disk).makeFolder("/data");
    OtherProgram(m_disk).makeFolder("/state");
    const std::uint32_t kind = m_dice.below(10);
    if (kind == 0)
        writeOlderNotes();
    else if (kind > 2)
        fill();
    start();
}

void StorageRun::fill()
{
    NoteSnapshot snapshot;
    const std::uint32_t notes = m_dice.below(mostNotes + 1);
    for (std::uint32_t i = 0; i < notes; ++i) {
        const Note note{numberedId(++m_noteCount), text(), time(), time()};
        snapshot.notes.prepend(note);
        if (m_dice.hasChance(20))
            snapshot.editingDrafts[canonicalText(note.id)] = text();
    }
    if (m_dice.hasChance(50))
        snapshot.captureDraft = text();
    LocalNoteRepository(SimulatedFolder::fileURL(), m_disk).save(snapshot);
    m_state.saved = inOrder(snapshot);
    makeForeignFiles();
}

void StorageRun::writeOlderNotes()
{
    m_state.saved.captureDraft = u"kept"_s;
    m_state.saved.notes = {{numberedId(++m_noteCount), u"old"_s, {7e8}, {7e8 + 1}}};
    OtherProgram older(m_disk);
    older.makeFolder(SimulatedFolder::path);
    older.make(SimulatedFolder::olderNotes,
               R"({"version": 1, "captureDraft": "kept", "editingDrafts": {}, "notes": [{"id": ")" +
                   canonicalText(numberedId(m_noteCount)).toStdString() +
                   R"(", "body": "old", "createdAt": 700000000, "updatedAt": 700000001}]})");
}

void StorageRun::makeForeignFiles()
{
    OtherProgram other(m_disk);
    const auto make = [&](const std::string &path) {
        const std::string bytes = "of another program " + std::to_string(m_dice.below(1000));
        if (!other.make(path, bytes))
            return;
        m_foreign[path] = {bytes, m_disk.statusAt(path.c_str())->identity.inode};
    };
    if (m_dice.hasChance(50))
        make(markdownFolder + "/Notes/cover.jpg");
    if (m_dice.hasChance(30)) {
        other.makeFolder(markdownFolder + "/Notes/Pictures/Old");
        make(markdownFolder + "/Notes/Pictures/one.png");
        make(markdownFolder + "/Notes/Pictures/Old/two.png");
    }
    if (m_dice.hasChance(20))
        make(markdownFolder + "/Drafts/draft.txt");
    if (m_dice.hasChance(20))
        make(markdownFolder + "/list.txt");
    if (m_dice.hasChance(20))
        make(std::string(SimulatedFolder::path) + "/mine.txt");
}

void StorageRun::start()
{
    m_repository = makeRepository();
    const Outcome outcome = attempt([&] { m_screen = inOrder(m_repository->load()); });
    if (!outcome.isDone)
        throw BrokenPromise{"The notes cannot be loaded: " + outcome.error};
    if (!isOnDisk(m_screen))
        throw BrokenPromise{"The notes are not what they were:\n" + describe(m_screen) +
                            "  instead of\n" + describe(m_state.shown())};
    m_captureId = m_repository->captureId().value_or(numberedId(++m_noteCount));
    m_known = m_state.saved;
    m_hasFolder = m_disk.statusAt(SimulatedFolder::markdown).has_value();
    // What is saved by now is kept no longer.
    m_state.kept.clear();
    if (m_repository->hasRestored())
        keepScreen();
}

/// Whether that is what a start finds there; it may find what was typed before, too, where that
/// could not be removed.
bool StorageRun::isOnDisk(const NoteSnapshot &loaded) const
{
    return loaded == m_state.shown() ||
           (m_hasOldJournal && isSameButForTyping(loaded, m_state.saved, m_everKept));
}

std::unique_ptr<LocalNoteRepository> StorageRun::makeRepository()
{
    return std::make_unique<LocalNoteRepository>(
        SimulatedFolder::fileURL(), m_disk, LocalNoteRepository::Folders{SimulatedFolder::journal});
}

/// As the program does after a start that restored something, and after a save that failed.
void StorageRun::keepScreen()
{
    const Outcome outcome = attempt([&] { m_repository->keepTyped(m_screen, m_captureId); });
    if (!outcome.isDone)
        throw BrokenPromise{"What was typed cannot be kept: " + outcome.error};
    m_state.keep(m_screen, m_known);
    rememberKept(m_state);
}

void StorageRun::rememberKept(const StoredState &state)
{
    for (auto kept = state.kept.begin(); kept != state.kept.end(); ++kept) {
        if (!m_everKept.contains(kept.key(), *kept))
            m_everKept.insert(kept.key(), *kept);
    }
}

// -- What happens ------------------------------------------------------------------------------

void StorageRun::step()
{
    const std::uint32_t kind = m_dice.below(100);
    if (kind < 18) {
        type();
        if (m_dice.hasChance(80))
            saveDrafts();
    } else if (kind < 32) {
        type();
        keepTyped();
    } else if (kind < 50) {
        capture();
    } else if (kind < 62) {
        saveEdit();
    } else if (kind < 70) {
        deleteNote();
    } else if (kind < 80) {
        restart();
    } else if (kind < 92) {
        tidy(m_dice.hasChance(60));
    } else {
        actOutside();
    }
}

void StorageRun::letTimePass()
{
    switch (m_dice.below(4)) {
    case 0:
        break;
    case 1:
        m_disk.letTimePass(m_dice.below(10) * millisecond);
        break;
    default:
        m_disk.letTimePass((350 + m_dice.below(5000)) * millisecond);
        break;
    }
}

QString StorageRun::text()
{
    static const std::array<QString, 6> words{u"milk "_s,           u"a line\nand one more "_s,
                                              u"d\u00e9j\u00e0 "_s, u"---\n"_s,
                                              u"CR\r\nLF "_s,       u"x"_s};
    QString text = QString::number(++m_textCount).rightJustified(4, u'0');
    const std::uint32_t count = m_dice.below(4);
    for (std::uint32_t i = 0; i < count; ++i)
        text += words.at(m_dice.below(words.size()));
    return text;
}

Timestamp StorageRun::time()
{
    return {760000000.25 + m_dice.below(1000)};
}

const Note *StorageRun::anyNote()
{
    return m_screen.notes.isEmpty()
               ? nullptr
               : &m_screen.notes.at(m_dice.below(static_cast<std::size_t>(m_screen.notes.size())));
}

void StorageRun::type()
{
    const Note *note = m_dice.hasChance(40) ? anyNote() : nullptr;
    const QString key = note ? canonicalText(note->id) : captureKey();
    // Sometimes what was typed is taken back.
    const QString typed =
        m_dice.hasChance(15) ? savedText(m_state.saved, key).value_or(QString()) : text();
    say("type in " + key.right(4).toStdString());
    setText(m_screen, key, typed);
    if (m_dice.hasChance(15))
        type();
}

void StorageRun::saveDrafts()
{
    save(Operation::draft, m_screen);
}

void StorageRun::keepTyped()
{
    StoredState after = m_state;
    after.keep(m_screen, m_known);
    rememberKept(after);
    static_cast<void>(
        perform(Operation::typing, after, [&] { m_repository->keepTyped(m_screen, m_captureId); }));
}

void StorageRun::capture()
{
    if (m_screen.notes.size() >= mostNotes)
        return;
    if (m_screen.captureDraft.trimmed().isEmpty() || m_dice.hasChance(30)) {
        m_screen.captureDraft = text();
        if (m_dice.hasChance(50))
            keepTyped();
    }
    NoteSnapshot next = m_screen;
    const Timestamp now = time();
    next.notes.prepend({m_captureId, m_screen.captureDraft.trimmed(), now, now});
    next.captureDraft.clear();
    save(Operation::capture, next);
    renewCaptureId();
}

void StorageRun::renewCaptureId()
{
    const QList<Note> &notes = m_state.saved.notes;
    if (std::ranges::find(notes, m_captureId, &Note::id) != notes.end())
        m_captureId = numberedId(++m_noteCount);
}

void StorageRun::saveEdit()
{
    const Note *note = anyNote();
    if (!note)
        return;
    const QString key = canonicalText(note->id);
    const QUuid id = note->id;
    if (!m_screen.editingDrafts.contains(key) || m_dice.hasChance(50)) {
        m_screen.editingDrafts[key] = text();
        if (m_dice.hasChance(50))
            keepTyped();
    }
    NoteSnapshot next = m_screen;
    const auto edited = std::ranges::find(next.notes, id, &Note::id);
    if (edited == next.notes.end() || !next.editingDrafts.contains(key))
        return;
    edited->body = next.editingDrafts.take(key).trimmed();
    edited->updatedAt = time();
    save(Operation::edit, next);
}

void StorageRun::deleteNote()
{
    const Note *note = anyNote();
    if (!note)
        return;
    NoteSnapshot next = m_screen;
    next.notes.removeIf([id = note->id](const Note &other) { return other.id == id; });
    next.editingDrafts.remove(canonicalText(note->id));
    save(Operation::deletion, next);
}

void StorageRun::restart()
{
    std::optional<NoteSnapshot> loaded;
    const NoteSnapshot saved = m_state.saved;
    const Outcome outcome = perform(Operation::load, m_state, [&] {
        m_repository.reset();
        m_repository = makeRepository();
        loaded = inOrder(m_repository->load());
        m_screen = *loaded;
        m_captureId = m_repository->captureId().value_or(numberedId(++m_noteCount));
    });
    const bool isOfOther = m_edit && m_watcher.hasMet() && !m_edit->isForeign;
    // After an end of the program it was started anew already.
    if (!outcome.isDone || m_hasGoneOn)
        return;
    // What could not be read is left for a start that can.
    if (m_repository->leftAlone()) {
        m_repository.reset();
        start();
        return;
    }
    const bool isOld = !isOnDisk(*loaded);
    m_known = isOld ? saved : m_state.saved;
    if (isOld && !isOfOther)
        throw BrokenPromise{"What was loaded is not what is on the disk:\n" + describe(*loaded) +
                            "  instead of\n" + describe(m_state.shown())};
    // What is saved by now is kept no longer.
    m_state.kept.clear();
    if (m_repository->hasRestored())
        keepScreen();
}

void StorageRun::tidy(bool isToTheEnd)
{
    using namespace std::chrono_literals;
    bool isAtEnd = false;
    const Outcome outcome = perform(Operation::tidy, m_state, [&] {
        constexpr int mostCalls = 1000;
        for (int i = 0; i < mostCalls; ++i) {
            const auto again = m_repository->tidy(m_dice.hasChance(50) ? 0ms : 1h);
            isAtEnd = !again;
            if (!again)
                return;
            m_disk.letTimePass(again->count() * millisecond);
            if (!isToTheEnd && m_dice.hasChance(50))
                return;
        }
        throw BrokenPromise{"There is always something left to tidy."};
    });
    if (!isAtEnd || !outcome.isDone || m_hasGoneOn)
        return;
    Expectation tidied = expectation({m_state});
    tidied.mayLeaveStage = m_watcher.hasMet() && !m_edit;
    m_check.check(m_disk.image(), tidied);
}

void StorageRun::save(Operation operation, const NoteSnapshot &next)
{
    StoredState after;
    after.saved = inOrder(next);
    static_cast<void>(perform(operation, after, [&] { m_repository->save(next); }));
}

// -- The other program -------------------------------------------------------------------------

StorageRun::Edit StorageRun::randomEdit()
{
    // What it takes back again would be no change.
    if (!isStale() && m_dice.hasChance(60)) {
        if (std::optional<Edit> edit = editOfNotes())
            return *edit;
    }
    return foreignEdit();
}

StorageRun::Edit StorageRun::foreignEdit()
{
    Edit edit;
    edit.isForeign = true;
    edit.bytes = text().toStdString();
    const bool isNew = m_foreign.empty() || m_dice.hasChance(30);
    if (isNew) {
        constexpr std::array<const char *, 3> folders{"/", "/Notes/", "/Drafts/"};
        edit.way = Edit::Way::make;
        edit.path = markdownFolder + folders.at(m_dice.below(folders.size())) + "new " +
                    std::to_string(++m_textCount);
    } else {
        constexpr std::array<Edit::Way, 3> ways{Edit::Way::overwrite, Edit::Way::replace,
                                                Edit::Way::remove};
        edit.way = ways.at(m_dice.below(ways.size()));
        // Where times stand still, nobody can tell which of two files was written to last.
        if (edit.way == Edit::Way::overwrite && !m_disk.abilities().hasReliableTimes)
            edit.way = Edit::Way::replace;
        edit.path = std::next(m_foreign.begin(),
                              static_cast<std::ptrdiff_t>(m_dice.below(m_foreign.size())))
                        ->first;
    }
    return edit;
}

std::optional<StorageRun::Edit> StorageRun::editOfNotes()
{
    const QList<Note> &notes = m_state.saved.notes;
    Edit edit;
    const std::uint32_t kind = m_dice.below(10);
    if (kind == 0 && m_disk.statusAt((markdownFolder + "/Drafts/capture.md").c_str())) {
        edit.way = m_dice.hasChance(50) ? Edit::Way::overwrite : Edit::Way::replace;
        edit.path = markdownFolder + "/Drafts/capture.md";
        edit.draftKey = captureKey();
        edit.bytes = text().toStdString();
        return edit;
    }
    if (kind == 1 && m_hasFolder) {
        edit.way = Edit::Way::make;
        edit.note = Note{numberedId(++m_noteCount), text(), time(), time()};
    } else if (notes.isEmpty()) {
        return std::nullopt;
    } else {
        edit.note = notes.at(m_dice.below(static_cast<std::size_t>(notes.size())));
        // Who removes a note whose draft is just being made leaves a draft without a note.
        const QString key = canonicalText(edit.note->id);
        if (kind == 2 && !m_state.saved.editingDrafts.contains(key) &&
            !m_screen.editingDrafts.contains(key)) {
            edit.way = Edit::Way::remove;
        } else {
            edit.way = kind < 7 ? Edit::Way::overwrite : Edit::Way::replace;
            // Often of the same length, which then says nothing.
            if (m_dice.hasChance(60))
                edit.note->body.replace(0, 4, QString::number(5000 + ++m_textCount));
            else
                edit.note->body = text();
        }
    }
    edit.path = noteFile(edit.note->id);
    edit.bytes = noteBytes(*edit.note);
    return edit;
}

bool StorageRun::apply(const Edit &edit)
{
    OtherProgram other(m_disk);
    // What may still be lost, and what another program adds to it, would have many outcomes.
    if (!m_notYetOver.empty())
        other.syncAll();
    m_notYetOver.clear();
    bool isDone = false;
    switch (edit.way) {
    case Edit::Way::make:
        isDone = other.make(edit.path, edit.bytes);
        break;
    case Edit::Way::overwrite:
        isDone = other.overwrite(edit.path, edit.bytes);
        break;
    case Edit::Way::replace:
        isDone = other.replace(edit.path, edit.bytes);
        break;
    case Edit::Way::remove:
        isDone = other.remove(edit.path);
        break;
    }
    if (isDone && edit.isForeign && edit.way == Edit::Way::remove)
        m_foreign.erase(edit.path);
    else if (isDone && edit.isForeign)
        m_foreign[edit.path] = {edit.bytes, m_disk.statusAt(edit.path.c_str())->identity.inode};
    say(std::string("    another program did ") + (isDone ? "" : "not ") + "change " + edit.path);
    return isDone;
}

void StorageRun::applyTo(NoteSnapshot &snapshot, const Edit &edit)
{
    if (edit.isForeign)
        return;
    if (!edit.note) {
        setText(snapshot, edit.draftKey, QString::fromStdString(edit.bytes));
        return;
    }
    const bool isThere = std::ranges::count(snapshot.notes, edit.note->id, &Note::id) != 0;
    snapshot.notes.removeIf([&](const Note &note) { return note.id == edit.note->id; });
    if (edit.way == Edit::Way::make || (edit.way != Edit::Way::remove && isThere))
        snapshot.notes.append(*edit.note);
    snapshot = inOrder(snapshot);
}

/// Whether another program changed the notes, so that no save may succeed.
bool StorageRun::isStale() const
{
    return m_known != m_state.saved;
}

void StorageRun::actOutside()
{
    const Edit edit = randomEdit();
    if (!apply(edit) || edit.isForeign)
        return;
    applyTo(m_state.saved, edit);
    if (m_dice.hasChance(30))
        restart();
}
