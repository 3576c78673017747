// SPDX-License-Identifier: MIT
// The part of a StorageRun that decides what goes wrong and what must hold then.
#include "StorageRun.h"

#include "OtherProgram.h"

#include "StorageError.h"

#include <algorithm>
#include <cerrno>

namespace {

constexpr std::array<int, 8> errors{ENOSPC, EIO, EACCES, EMFILE, EDQUOT, EROFS, EINTR, ENOMEM};

/// What a call of this kind may fail with that says nothing of the file system's abilities.
constexpr std::array<DiskCall::Kind, 8> failingKinds{
    DiskCall::Kind::sync,     DiskCall::Kind::rename, DiskCall::Kind::unlink,
    DiskCall::Kind::write,    DiskCall::Kind::list,   DiskCall::Kind::statusOfEntry,
    DiskCall::Kind::makeFile, DiskCall::Kind::close};

std::set<std::string> namesOf(const std::vector<std::string> &names)
{
    return {names.begin(), names.end()};
}

bool isSave(Operation operation)
{
    return operation != Operation::load && operation != Operation::tidy &&
           operation != Operation::typing;
}

} // namespace

StorageRun::Outcome StorageRun::attempt(const std::function<void()> &action)
{
    try {
        action();
        return {};
    } catch (const StorageError &error) {
        return {false, error.reason(), error.description().toStdString()};
    }
}

StopPlan StorageRun::plan(Operation operation)
{
    const std::uint32_t usualCalls =
        std::max<std::uint32_t>(m_usualCalls.at(static_cast<std::size_t>(operation)), 10);
    StopPlan plan;
    plan.error = errors.at(m_dice.below(errors.size()));
    const std::uint32_t kind = m_dice.below(100);
    const bool canLosePower = m_disk.abilities().canLosePower;
    if (kind < 25) {
        return plan;
    } else if (kind < 60) {
        plan.kind = canLosePower && m_dice.hasChance(75) ? StopKind::powerCut : StopKind::kill;
        return plan;
    } else if (kind < 75) {
        plan.kind = StopKind::failure;
    } else if (kind < 84) {
        plan.kind = StopKind::lastingFailure;
        if (m_dice.hasChance(40)) {
            plan.only = failingKinds.at(m_dice.below(failingKinds.size()));
            plan.call = m_dice.below(6);
            return plan;
        }
    } else if (kind < 88) {
        plan.kind = StopKind::lostAnswer;
        plan.only = DiskCall::Kind::rename;
        plan.error = m_dice.hasChance(50) ? EINTR : EIO;
        plan.call = m_dice.below(5);
        return plan;
    } else if (kind < 90) {
        plan.kind = StopKind::shortTransfer;
        return plan;
    } else {
        plan.kind = StopKind::otherProgram;
    }
    plan.call = m_dice.below(usualCalls + 2);
    return plan;
}

Expectation StorageRun::expectation(const std::vector<StoredState> &allowed) const
{
    Expectation expected;
    add(expected, allowed);
    expected.stagesBefore = m_stages;
    expected.mayLeaveStage = true;
    expected.foreign = m_foreign;
    // Only where what is kept can be lost, or cannot be brought up to date, may another one show.
    if (m_plan.kind == StopKind::powerCut || m_plan.kind == StopKind::lastingFailure ||
        m_hasOldJournal)
        expected.everKept = &m_everKept;
    return expected;
}

StorageRun::Outcome StorageRun::perform(Operation operation, const StoredState &after,
                                        const std::function<void()> &action)
{
    m_plan = plan(operation);
    m_hasOldJournal = m_hasOldJournal && !m_disk.namesAt(SimulatedFolder::journal).empty();
    m_edit.reset();
    m_hasGoneOn = false;
    if (m_plan.kind == StopKind::otherProgram)
        m_edit = randomEdit();
    say(std::string("== ") + nameOf(operation) + ", " + nameOf(m_plan.kind) + " at " +
        std::to_string(m_plan.call) + (isStale() ? ", changed outside" : ""));
    m_namesBefore = namesOf(SimulatedFolder::names(m_disk, SimulatedFolder::stagePrefix));
    lookAtFiles();

    // A busy program does more than one thing with its own files.
    if (m_edit && m_edit->isForeign && m_dice.hasChance(50))
        m_plan.every = 1 + m_dice.below(12);
    constexpr int mostEdits = 6;
    m_watcher.begin(m_plan, [this, edits = 0]() mutable {
        if (edits != 0) {
            // Of what is written twice at the same moment nobody can tell which is which.
            m_disk.letTimePass(MemoryDisk::tick);
            m_edit = foreignEdit();
        }
        return ++edits <= mostEdits && apply(*m_edit);
    });
    m_disk.setCallCount(0);
    m_disk.setWatcher(&m_watcher);
    const Outcome outcome = attempt(action);
    m_disk.setWatcher(nullptr);
    if (!outcome.isDone)
        say("   failed: " + outcome.error);
    if (!m_watcher.hasMet())
        m_usualCalls.at(static_cast<std::size_t>(operation)) = m_disk.callCount();

    if (isSave(operation)) {
        StoredState prepared = m_state;
        prepared.prepareSave(after.saved, m_known, m_captureId);
        rememberKept(prepared);
    }
    const Subject subject{operation, isSave(operation) && isStale() ? m_state : after, action,
                          after.saved};
    if (!m_watcher.hasMet())
        judgeStops(subject, outcome);
    else if (m_plan.kind == StopKind::otherProgram)
        judgeEdit(subject, outcome);
    else
        judgeFault(subject, outcome);
    return outcome;
}

void StorageRun::add(Expectation &expected, const std::vector<StoredState> &states)
{
    for (const StoredState &state : states) {
        expected.allowed.push_back(state.shown());
        expected.saved.push_back(state.saved);
    }
}

/// The old state, the new one, and whatever there may be between them.
std::vector<StoredState> StorageRun::statesOf(const Subject &subject) const
{
    std::vector<StoredState> states{m_state, subject.after};
    if (isSave(subject.operation)) {
        states.push_back(m_state);
        states.back().prepareSave(subject.next, m_known, m_captureId);
    }
    return states;
}

/// Stops that the operation knows nothing of, and its success.
void StorageRun::judgeStops(const Subject &subject, const Outcome &outcome)
{
    const Operation operation = subject.operation;
    const bool isRefused = isSave(operation) && isStale();
    if (isRefused && outcome.isDone)
        throw BrokenPromise{"What another program wrote was not seen."};
    if (isRefused ? outcome.reason != Reason::externalChange : !outcome.isDone)
        throw BrokenPromise{"It failed without a reason: " + outcome.error};

    Expectation between = expectation(statesOf(subject));
    between.mayNeedRecovery = operation != Operation::typing && operation != Operation::tidy;
    if (m_plan.kind == StopKind::powerCut && !m_notYetOver.empty()) {
        add(between, m_notYetOver);
        between.mayNeedRecovery = true;
    }
    const std::vector<MemoryDisk::Image> &images = m_watcher.images();
    for (std::size_t i = 0; i < images.size(); ++i) {
        say("   stop " + std::to_string(i));
        m_check.check(images[i], between);
    }
    count(m_plan.kind, operation, images.size());

    Expectation done = expectation(isRefused ? statesOf(subject) : std::vector{subject.after});
    say("   afterwards");
    m_check.check(m_disk.image(), done);
    count(StopKind::nothing, operation);
    if (isSave(operation) && !isRefused) {
        checkFiles(subject.after.saved);
        if (!m_disk.namesAt(SimulatedFolder::journal).empty())
            throw BrokenPromise{"What was typed is kept although it is saved."};
    }
    if (m_disk.abilities().canLosePower && isSave(operation)) {
        say("   power cut afterwards");
        done.everKept = &m_everKept;
        if (isRefused) {
            add(done, m_notYetOver);
            done.mayNeedRecovery = !m_notYetOver.empty();
        }
        m_check.check(m_disk.afterPowerCut(m_dice), done);
        count(StopKind::powerCut, operation);
    }

    if (!images.empty() && m_dice.hasChance(25)) {
        const std::size_t stop = m_dice.below(images.size());
        say("   the program ends at stop " + std::to_string(stop));
        const StopCheck::Found found = m_check.find(images[stop], between, m_dice);
        const NoteSnapshot saved = between.saved.at(found.state);
        // What a program did that was killed is not yet on the disk.
        if (m_plan.kind == StopKind::kill)
            m_notYetOver.insert(m_notYetOver.end(), {m_state, subject.after});
        else
            m_notYetOver.clear();
        goOn(found, saved);
        return;
    }
    if (outcome.isDone && isSave(operation))
        m_notYetOver.clear();
    m_state = subject.after;
    if (outcome.isDone)
        m_hasFolder = m_disk.statusAt(SimulatedFolder::markdown).has_value();
    if (outcome.isDone && isSave(operation))
        takeAsSaved();
    else if (isSave(operation))
        keepScreen();
}

/// The screen and the repository know of what is in the folder.
void StorageRun::takeAsSaved()
{
    m_known = m_state.saved;
    m_screen = m_state.shown();
}

/// Whether all that a save does is to make one file that there was not.
bool StorageRun::makesOneFile(const NoteSnapshot &saved) const
{
    const std::vector<std::string> changed = filesThatDiffer(m_state.saved, saved);
    return changed.size() == 1 && !m_files.contains(changed.front());
}

/// A call failed, or answered otherwise than it should.
void StorageRun::judgeFault(const Subject &subject, const Outcome &outcome)
{
    const Operation operation = subject.operation;
    const bool isLasting = m_plan.kind == StopKind::lastingFailure;
    count(m_plan.kind, operation);
    if (outcome.isDone && isSave(operation) && isStale())
        throw BrokenPromise{"What another program wrote was not seen."};

    Expectation expected = expectation(statesOf(subject));
    expected.mayNeedRecovery =
        !outcome.isDone && operation != Operation::typing && operation != Operation::tidy;
    // A fault in the last clean-up may leave a stage: it blocks nothing and is in nobody's way.
    expected.mayLeaveStage =
        outcome.isDone || isLasting || operation == Operation::tidy || operation == Operation::load;
    expected.stagesBefore = m_namesBefore;
    // There may be nothing to take back the very first notes with, or a file that is new.
    const bool isFirst = (!m_hasFolder && (isLasting || operation == Operation::load)) ||
                         (isLasting && makesOneFile(subject.after.saved));
    if (outcome.isDone)
        expected.required = 1;
    else if (!isFirst && operation != Operation::typing)
        expected.required = 0;
    say("   afterwards");
    const StopCheck::Found found = m_check.find(m_disk.image(), expected, m_dice);
    // A start that finds nothing in it that is not saved removes it as well.
    const bool removesJournal =
        isSave(operation) || (operation == Operation::load && m_state.shown() == m_state.saved);
    if (outcome.isDone && removesJournal)
        m_hasOldJournal = !m_disk.namesAt(SimulatedFolder::journal).empty();
    for (const std::string &name : SimulatedFolder::names(m_disk, SimulatedFolder::stagePrefix))
        m_stages.insert(name);

    // Once a disk works again, the system writes by itself what it could not write before.
    if (outcome.isDone && isLasting)
        OtherProgram(m_disk).syncAll();
    if (!outcome.isDone)
        m_notYetOver.insert(m_notYetOver.end(), {m_state, subject.after});
    else if (isSave(operation))
        m_notYetOver.clear();
    if (outcome.isDone) {
        m_state = subject.after;
        m_hasFolder = m_disk.statusAt(SimulatedFolder::markdown).has_value();
        if (isSave(operation))
            takeAsSaved();
    } else if (found.neededRecovery || operation == Operation::load ||
               operation == Operation::typing || found.state != 0 ||
               (isFirst && m_disk.statusAt(SimulatedFolder::markdown))) {
        goOn(found, found.state == 1 ? subject.after.saved : m_state.saved);
    } else if (isSave(operation)) {
        keepScreen();
        if (!isStale())
            repeat(subject);
    }
}

/// The next save works once the faults are over.
void StorageRun::repeat(const Subject &subject)
{
    say("== " + std::string(nameOf(subject.operation)) + " again");
    const Outcome outcome = attempt(subject.action);
    if (!outcome.isDone)
        throw BrokenPromise{"It fails although nothing else fails any more: " + outcome.error};
    m_notYetOver.clear();
    m_state = subject.after;
    takeAsSaved();
    m_hasFolder = true;
    m_check.check(m_disk.image(), expectation({m_state}));
    count(StopKind::nothing, subject.operation);
}

/// Another program did something meanwhile.
void StorageRun::judgeEdit(const Subject &subject, const Outcome &outcome)
{
    const Operation operation = subject.operation;
    count(StopKind::otherProgram, operation);
    const Edit &edit = *m_edit;
    StoredState before = m_state;
    StoredState after = subject.after;
    applyTo(before.saved, edit);
    applyTo(after.saved, edit);
    const bool wasStale = isStale();
    if (outcome.isDone && isSave(operation) && wasStale)
        throw BrokenPromise{"What another program wrote was not seen."};
    // A file that is gone while it is looked at is an error of the system.
    const bool isRefusal = outcome.isDone || operation == Operation::load ||
                           outcome.reason == Reason::externalChange ||
                           outcome.reason == Reason::system ||
                           outcome.reason == Reason::recoveryRequired;
    if (!isRefusal)
        throw BrokenPromise{"It failed for no reason: " + outcome.error};
    if (edit.isForeign && !outcome.isDone && !wasStale)
        throw BrokenPromise{"It failed because of a file that is none of the notes: " +
                            outcome.error};

    Expectation expected = expectation({before, after, m_state, subject.after});
    if (isSave(operation)) {
        StoredState prepared = before;
        prepared.prepareSave(subject.next, m_known, m_captureId);
        add(expected, {prepared});
    }
    expected.mayNeedRecovery = !outcome.isDone && outcome.reason == Reason::recoveryRequired;
    if (expected.mayNeedRecovery) {
        // It is in one of the two.
        expected.foreign.erase(edit.path);
        if (edit.way != Edit::Way::remove)
            expected.edited = {edit.path, edit.bytes};
    } else {
        expected.required = outcome.isDone ? 1 : 0;
    }
    say("   afterwards");
    const StopCheck::Found found = m_check.find(m_disk.image(), expected, m_dice);
    if (!outcome.isDone)
        m_notYetOver.insert(m_notYetOver.end(), {m_state, subject.after, before, after});
    else if (isSave(operation))
        m_notYetOver.clear();
    if (found.neededRecovery || (!outcome.isDone && operation == Operation::load)) {
        const std::array<const StoredState *, 5> states{&before, &after, &m_state, &subject.after,
                                                        &before};
        goOn(found, states.at(found.state)->saved);
        return;
    }
    m_state = outcome.isDone ? after : before;
    if (outcome.isDone && isSave(operation)) {
        m_known = subject.after.saved;
        m_screen = subject.after.shown();
    }
    if (outcome.isDone)
        m_hasFolder = m_disk.statusAt(SimulatedFolder::markdown).has_value();
    else if (isSave(operation))
        keepScreen();
}

/// The program is started anew on what was found.
void StorageRun::goOn(const StopCheck::Found &found, const NoteSnapshot &saved)
{
    m_hasGoneOn = true;
    m_repository.reset();
    if (m_disk.openHandleCount() != 0)
        throw BrokenPromise{"A folder or file is open that nobody needs."};
    m_disk.become(found.image);
    // What is saved and what is only kept of the typing may look the same.
    m_state = {.saved = saved, .kept = {}};
    std::set<QString> keys{captureKey()};
    for (const NoteSnapshot *snapshot : {&found.shown, &saved})
        keys.insert(snapshot->editingDrafts.keyBegin(), snapshot->editingDrafts.keyEnd());
    for (const QString &key : keys) {
        const std::string file =
            SimulatedFolder::markdown + ("/Drafts/" + key.toStdString()) + ".md";
        const std::string *draft = m_disk.contentAt(file.c_str());
        m_state.saved.editingDrafts.remove(key);
        if (draft || key == captureKey())
            setText(m_state.saved, key, draft ? QString::fromStdString(*draft) : QString());
        const std::optional<QString> text = savedText(found.shown, key);
        const std::optional<QString> base = savedText(m_state.saved, key);
        const bool isShownOnly = !draft && found.shown.editingDrafts.contains(key);
        if (base && text && (*base != *text || isShownOnly))
            m_state.kept[key] = {*base, *text};
    }
    if (m_edit && m_edit->isForeign && !m_disk.statusAt(m_edit->path.c_str()))
        m_foreign.erase(m_edit->path);
    else if (m_edit && m_edit->isForeign)
        m_foreign[m_edit->path] = {*m_disk.contentAt(m_edit->path.c_str()),
                                   m_disk.statusAt(m_edit->path.c_str())->identity.inode};
    m_stages = namesOf(SimulatedFolder::names(m_disk, SimulatedFolder::stagePrefix));
    start();
}

// -- What did not change -----------------------------------------------------------------------

void StorageRun::lookAtFiles()
{
    m_files.clear();
    for (const char *section : {"Notes/", "Drafts/"}) {
        const std::string folder = std::string(SimulatedFolder::markdown) + '/' + section;
        for (const std::string &name : m_disk.namesAt(folder.c_str()))
            m_files[section + name] = *m_disk.statusAt((folder + name).c_str());
    }
}

/// What did not change is not touched, and nothing lies between the notes that is not theirs.
void StorageRun::checkFiles(const NoteSnapshot &saved)
{
    const std::vector<std::string> changed = filesThatDiffer(m_state.saved, saved);
    const auto before = std::exchange(m_files, {});
    lookAtFiles();
    for (const auto &[name, status] : m_files) {
        const bool isChanged = std::ranges::count(changed, name) != 0;
        const auto old = before.find(name);
        if (old == before.end()) {
            if (!isChanged && name != "Drafts/capture.md")
                throw BrokenPromise{"There is a file that nobody asked for: " + name};
            continue;
        }
        if (isChanged || status.kind == FileKind::folder || m_disk.abilities().linkError != 0)
            continue;
        if (old->second.identity != status.identity || old->second.modified != status.modified)
            throw BrokenPromise{"A file was touched that did not change: " + name};
    }
    for (const auto &[name, status] : before) {
        if (!m_files.contains(name) && std::ranges::count(changed, name) == 0)
            throw BrokenPromise{"A file is gone that did not change: " + name};
    }
}
