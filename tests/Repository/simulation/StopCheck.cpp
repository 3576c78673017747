// SPDX-License-Identifier: MIT
#include "StopCheck.h"

#include "LocalNoteRepository.h"
#include "OtherProgram.h"
#include "RepositoryError.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

[[noreturn]] void broken(const std::string &sentence)
{
    throw BrokenPromise{sentence};
}

std::string statesOf(const Expectation &expectation)
{
    std::string text;
    for (std::size_t i = 0; i < expectation.allowed.size(); ++i) {
        text += expectation.required == i ? "  this must be there:\n" : "  this may be there:\n";
        text += describe(expectation.allowed[i]);
    }
    return text;
}

} // namespace

namespace {

/// Whether a text is made of these parts, each above the next one.
bool isComposed(const QString &text, const QStringList &parts)
{
    return std::ranges::any_of(parts, [&](const QString &part) {
        if (text == part)
            return true;
        const QString above = bothTexts(part, u"."_s).chopped(1);
        return !above.isEmpty() && text.startsWith(above) &&
               isComposed(text.sliced(above.size()), parts);
    });
}

/// Whether a text holds what was saved, or what went on from it, and beside that only what was
/// kept.
bool isOfKept(const QString &text, const QString &saved,
              const QMultiMap<QString, StoredState::Kept> &kept)
{
    QStringList parts{saved};
    bool holdsSaved = text.contains(saved);
    for (const StoredState::Kept &one : kept) {
        parts.append(one.text);
        holdsSaved |= one.base == saved && text.contains(one.text);
    }
    return holdsSaved && isComposed(text, parts);
}

} // namespace

bool isSameButForTyping(const NoteSnapshot &found, const NoteSnapshot &state,
                        const QMultiMap<QString, StoredState::Kept> &kept)
{
    if (found.notes != state.notes)
        return false;
    std::set<QString> keys{captureKey()};
    for (const NoteSnapshot *snapshot : {&found, &state})
        keys.insert(snapshot->editingDrafts.keyBegin(), snapshot->editingDrafts.keyEnd());
    return std::ranges::all_of(keys, [&](const QString &key) {
        const std::optional<QString> wanted = savedText(state, key);
        const std::optional<QString> text = savedText(found, key);
        if (text == wanted || !text || !wanted)
            return text == wanted;
        return isOfKept(*text, *wanted, kept);
    });
}

std::filesystem::path SimulatedFolder::fileURL()
{
    return olderNotes;
}

std::vector<std::string> SimulatedFolder::names(const MemoryDisk &disk, std::string_view prefix)
{
    std::vector<std::string> names = disk.namesAt(path);
    std::erase_if(names, [&](const std::string &name) { return !name.starts_with(prefix); });
    return names;
}

void StopCheck::check(const MemoryDisk::Image &image, const Expectation &expectation)
{
    // Which of several is kept makes no difference to what must hold.
    Dice dice(0);
    static_cast<void>(find(image, expectation, dice));
}

StopCheck::Found StopCheck::find(const MemoryDisk::Image &image, const Expectation &expectation,
                                 Dice &dice)
{
    Loaded loaded = load(image);
    if (loaded.snapshot) {
        const std::optional<std::size_t> state = match(*loaded.snapshot, expectation);
        if (!state)
            broken("The notes are none of the states that there may be:\n" +
                   describe(*loaded.snapshot) + statesOf(expectation));
        if (!expectation.isAllowedNow(*state))
            broken("The notes are a state that is over:\n" + describe(*loaded.snapshot) +
                   statesOf(expectation));
        checkStages(expectation);
        checkForeignFiles(m_disk, expectation.foreign);
        return {*state, *std::move(loaded.snapshot), m_disk.image(), false};
    }
    if (!loaded.needsRecovery)
        broken("The notes cannot be loaded: " + loaded.error);
    if (!expectation.mayNeedRecovery)
        broken("A recovery copy was left.");
    std::vector<Found> parts = findParts(image, expectation);
    const bool hasRequired = std::ranges::any_of(
        parts, [&](const Found &part) { return expectation.isAllowedNow(part.state); });
    if (!hasRequired)
        broken("Neither the notes nor the recovery copy are what they must be:\n" +
               statesOf(expectation));
    const bool hasEdited = std::ranges::any_of(parts, [&](const Found &part) {
        const auto &[path, bytes] = expectation.edited;
        const MemoryDisk disk(part.image);
        const std::string *content = path.empty() ? nullptr : disk.contentAt(path.c_str());
        return path.empty() || (content && *content == bytes);
    });
    if (!hasEdited)
        broken("What another program wrote is lost: " + expectation.edited.first);
    std::erase_if(parts, [&](const Found &part) { return !expectation.isAllowedNow(part.state); });
    return parts[dice.below(parts.size())];
}

StopCheck::Loaded StopCheck::load(const MemoryDisk::Image &image)
{
    m_disk.become(image);
    Loaded loaded;
    try {
        LocalNoteRepository repository(SimulatedFolder::fileURL(), m_disk,
                                       {SimulatedFolder::journal});
        loaded.snapshot = inOrder(repository.load());
    } catch (const RepositoryError &error) {
        loaded.needsRecovery = error.reason() == Reason::recoveryRequired;
        loaded.error = error.description().toStdString();
    } catch (const StorageError &error) {
        loaded.error = error.description().toStdString();
    }
    return loaded;
}

std::optional<std::size_t> StopCheck::match(const NoteSnapshot &found,
                                            const Expectation &expectation) const
{
    // What must be there first, since two of them may be the same.
    for (const bool isRequired : {true, false}) {
        for (std::size_t i = 0; i < expectation.allowed.size(); ++i) {
            if (found == expectation.allowed[i] && expectation.isAllowedNow(i) == isRequired)
                return i;
        }
    }
    if (expectation.required && expectation.everKept &&
        isSameButForTyping(found, expectation.saved[*expectation.required], *expectation.everKept))
        return expectation.required;
    for (std::size_t i = 0; expectation.everKept && i < expectation.saved.size(); ++i) {
        if (isSameButForTyping(found, expectation.saved[i], *expectation.everKept))
            return i;
    }
    return std::nullopt;
}

/// What the notes are with each recovery copy in its place, and without any.
std::vector<StopCheck::Found> StopCheck::findParts(const MemoryDisk::Image &image,
                                                   const Expectation &expectation)
{
    const MemoryDisk before(image);
    const std::vector<std::string> copies =
        SimulatedFolder::names(before, SimulatedFolder::recoveryPrefix);
    std::vector<Found> parts;
    for (const std::string &copy : copies) {
        std::optional<Found> part = findRecovered(image, copy, expectation);
        if (!part)
            broken("The recovery copy is not complete: " + copy + '\n' + statesOf(expectation));
        parts.push_back(*std::move(part));
    }

    MemoryDisk without(image);
    for (const std::string &copy : copies)
        OtherProgram(without).removeAll(std::string(SimulatedFolder::path) + '/' + copy);
    std::optional<Found> live;
    // Where the drafts were exchanged in two steps, there may be none of them that are live.
    if (without.statusAt((std::string(SimulatedFolder::markdown) + "/Drafts").c_str()))
        live = findPart(without, expectation);
    if (live)
        parts.push_back(*std::move(live));
    else if (before.abilities().canExchange)
        broken("Beside the recovery copy the notes are not complete.\n" + statesOf(expectation));
    return parts;
}

std::optional<StopCheck::Found> StopCheck::findPart(const MemoryDisk &arranged,
                                                    const Expectation &expectation)
{
    Loaded loaded = load(arranged.image());
    if (!loaded.snapshot)
        return std::nullopt;
    const std::optional<std::size_t> state = match(*loaded.snapshot, expectation);
    if (!state)
        return std::nullopt;
    checkForeignFiles(m_disk, expectation.foreign);
    return Found{*state, *std::move(loaded.snapshot), m_disk.image(), true};
}

/// A copy is of the whole folder, of the drafts, or of one file that a save changed.
std::optional<StopCheck::Found> StopCheck::findRecovered(const MemoryDisk::Image &image,
                                                         const std::string &copy,
                                                         const Expectation &expectation)
{
    const std::string path = std::string(SimulatedFolder::path) + '/' + copy;
    const std::string markdown = SimulatedFolder::markdown;
    const MemoryDisk before(image);
    std::vector<std::string> places;
    if (before.statusAt((path + "/.format").c_str())) {
        places.push_back(markdown);
    } else if (before.statusAt(path.c_str())->kind == FileKind::folder) {
        places.push_back(markdown + "/Drafts");
    } else {
        for (const NoteSnapshot &state : expectation.saved) {
            for (const std::string &file : filesThatDiffer(state, expectation.saved.front()))
                places.push_back(markdown + '/' + file);
        }
    }
    for (const std::string &place : places) {
        MemoryDisk arranged(image);
        OtherProgram user(arranged);
        if (arranged.statusAt(place.c_str()))
            user.removeAll(place);
        user.rename(path, place);
        for (const std::string &other :
             SimulatedFolder::names(arranged, SimulatedFolder::recoveryPrefix))
            user.removeAll(std::string(SimulatedFolder::path) + '/' + other);
        if (std::optional<Found> part = findPart(arranged, expectation))
            return part;
    }
    return std::nullopt;
}

void StopCheck::checkStages(const Expectation &expectation) const
{
    if (expectation.mayLeaveStage)
        return;
    for (const std::string &name : SimulatedFolder::names(m_disk, SimulatedFolder::stagePrefix)) {
        if (!expectation.stagesBefore.contains(name))
            broken("A stage was left: " + name);
    }
}

void StopCheck::checkForeignFiles(const MemoryDisk &disk, const ForeignFiles &files)
{
    for (const auto &[path, file] : files) {
        const std::string *bytes = disk.contentAt(path.c_str());
        if (!bytes)
            broken("A file of another program is gone: " + path);
        if (*bytes != file.bytes)
            broken("A file of another program is not what it was: " + path);
        // Without hard links it is a copy.
        if (disk.abilities().linkError == 0 &&
            disk.statusAt(path.c_str())->identity.inode != file.inode)
            broken("A file of another program is another one: " + path);
    }
}
