// SPDX-License-Identifier: MIT
#include "TakeIn.h"

#include "NoteMarkdownCodec.h"
#include "RecoveryName.h"
#include "RepositoryError.h"
#include "Utf8.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Stands for the note of a text that is a copy of none.
constexpr QUuid ofNoNote(0x6F2C41B8, 0x0D57, 0x4E93, 0xA1, 0x6E, 0x3B, 0x88, 0x52, 0xC4, 0x7D,
                         0x10);

QByteArray viewOf(const std::string &bytes)
{
    return QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

QUuid derivedId(const QUuid &about, const std::string &bytes)
{
    return QUuid::createUuidV5(about.isNull() ? ofNoNote : about, viewOf(bytes));
}

/// That of the file, if a note can have it.
Timestamp timeOf(const FileStatus &status)
{
    const Timestamp time = Timestamp::fromNanosecondsSince1970(status.modified);
    return time.hasTextForm() ? time : Timestamp();
}

/// Throws where nobody can tell.
bool holds(const Directory &folder, Section section)
{
    const char *const name = FileNames::ofSection(section);
    const Result<FileStatus> status = folder.status(name);
    if (!status && status.failure().is(ENOENT))
        return false;
    folder.orThrow(status, name);
    return true;
}

/// Whether an entry cannot be a text of the user's, while other failures may pass.
bool isNoText(const Failure &failure) noexcept
{
    return failure.reason == Reason::notRegularFile || failure.reason == Reason::tooLarge;
}

Message whatOf(const FolderSurvey::Stray &stray)
{
    const std::optional<ConflictName> conflict = conflictNameOf(stray.name);
    if (!conflict) {
        if (stray.kind == FileKind::link && FileNames::isEditorLock(stray.name))
            return {u"The lock of an editor that has a note open, or ended while it had."_s, {}};
        // A sentence that names the file says what to do by hand, too.
        const bool isWhyAlone = stray.refusal && stray.refusal->arguments.isEmpty();
        return isWhyAlone ? *stray.refusal
                          : Message{u"It keeps the notes from being loaded."_s, {}};
    }
    const QString engine = QString::fromLatin1(ConflictName::nameOf(conflict->engine));
    return stray.section == Section::notes
               ? Message{u"A conflict copy of a note, by %@."_s, {engine}}
               : Message{u"A conflict copy of a draft, by %@."_s, {engine}};
}

Message whatOfRecoveryCopy(RecoveryName::Origin origin)
{
    return origin == RecoveryName::Origin::elsewhere
               ? Message{u"A recovery copy that another computer made."_s, {}}
               : Message{u"A recovery copy."_s, {}};
}

} // namespace

TakeIn::TakeIn(const Directory &data)
    : m_data(data)
{
    if (!openFolder())
        return;
    m_folder->checkMarker();
    m_survey.emplace(*m_folder);
    m_known = m_survey->notes();
    m_drafts = m_survey->drafts();
    collectStrays(Section::notes);
    for (const std::string &name : recoveryCopies())
        collectRecoveryCopy(name);
    restoreMissing();
    collectStrays(Section::drafts);
    makeNotes();
    checkRoom();
    tellOutcomes();
}

std::vector<std::string> TakeIn::recoveryCopies() const
{
    DirectoryListing listing = m_data.orThrow(m_data.list());
    listing.sort();
    std::vector<std::string> names;
    for (const DirectoryListing::Entry &entry : listing.entries()) {
        const std::string name = listing.name(entry);
        if (name.starts_with(FileNames::recoveryPrefix) && name != m_onlyCopy)
            names.push_back(name);
    }
    return names;
}

bool TakeIn::openFolder()
{
    m_folder = NoteFolder::openIfExists(m_data);
    if (m_folder)
        return true;
    const std::vector<std::string> copies = recoveryCopies();
    const auto whole = std::ranges::find_if(copies, [this](const std::string &name) {
        const Result<Directory> copy = m_data.openFolder(name.c_str());
        if (!copy && copy.failure().reason == Reason::notFolder)
            return false;
        if (!copy)
            throw m_data.error(copy.failure(), name);
        return holds(*copy, Section::notes);
    });
    if (whole == copies.end() && !copies.empty())
        throw RepositoryError::recoveryRequired().about(m_data.path() / copies.front());
    if (whole == copies.end())
        return false;
    m_onlyCopy = *whole;
    m_folder = NoteFolder::openIfExists(m_data, m_onlyCopy.c_str());
    return m_folder.has_value();
}

// -- What there is -------------------------------------------------------------------------------

std::optional<std::size_t> TakeIn::addStep(const Directory &folder, const std::string &name,
                                           const char *subFolder, Message what)
{
    const Result<FileStatus> status = folder.status(name.c_str());
    if (!status && status.failure().is(ENOENT))
        return std::nullopt;
    m_originals.push_back(
        {&folder, name, folder.orThrow(status, name), subFolder, &folder == &m_data});
    m_plan.steps.push_back({.outcome = TakeInPlan::Step::Outcome::putAway,
                            .file = folder.path() / name,
                            .title = {},
                            .what = std::move(what),
                            .becomes = {}});
    return m_plan.steps.size() - 1;
}

std::optional<TakeIn::Text> TakeIn::readText(const Directory &folder, const char *name,
                                             Section section) const
{
    Text text;
    const Result<FileStatus> status = folder.readFile(name, NoteFolder::largestFile, text.bytes);
    if (!status && isNoText(status.failure()))
        return std::nullopt;
    const Timestamp time = timeOf(folder.orThrow(status, name));
    Utf8Decoder decoder;
    const std::optional<QStringView> decoded = decoder.decode(text.bytes);
    if (!decoded)
        return std::nullopt;
    const auto note =
        section == Section::drafts ? std::nullopt : NoteMarkdownCodec::parse(*decoded);
    text.hasHeader = note.has_value();
    text.note = note.value_or(Note{QUuid(), decoded->trimmed().toString(), time, time});
    text.about = FileNames::parse(name).note.value_or(text.note.id);
    return text;
}

void TakeIn::collectStrays(Section section)
{
    for (const FolderSurvey::Stray &stray : m_survey->strays()) {
        if (stray.section == section)
            collectStray(stray);
    }
}

void TakeIn::collectStray(const FolderSurvey::Stray &stray)
{
    const Directory &folder = m_folder->directory(stray.section);
    if (stray.failure && !isNoText(*stray.failure))
        throw folder.error(*stray.failure, stray.name);
    std::optional<Text> text;
    // What is no file has no text, and is not to be opened.
    if (stray.kind == FileKind::file)
        text = readText(folder, stray.name.c_str(), stray.section);
    // A draft whose note is there again is one.
    if (text && stray.orphanOf && m_known.contains(*stray.orphanOf) &&
        !m_drafts.contains(*stray.orphanOf)) {
        m_drafts.insert(*stray.orphanOf, text->note.body);
        return;
    }
    const auto step =
        addStep(folder, stray.name, FileNames::ofSection(stray.section), whatOf(stray));
    if (const auto id = FileNames::parse(stray.name).note; id && stray.section == Section::notes)
        m_taken.insert(*id);
    if (!step || !text)
        return;
    const std::optional<ConflictName> conflict = conflictNameOf(stray.name);
    if (conflict)
        text->about = FileNames::parse(conflict->original).note.value_or(text->note.id);
    else if (text->hasHeader)
        text->about = text->note.id;
    // rclone renames both files, and leaves none.
    text->mayRestore =
        text->hasHeader && (!conflict || conflict->engine == ConflictName::Engine::rclone);
    text->step = *step;
    m_texts.push_back(*std::move(text));
}

void TakeIn::collectRecoveryCopy(const std::string &name)
{
    const auto step =
        addStep(m_data, name, "", whatOfRecoveryCopy(RecoveryName::originOf(name, m_data.path())));
    if (!step)
        return;
    switch (m_originals.back().status.kind) {
    case FileKind::folder: {
        const Directory copy = m_data.orThrow(m_data.openFolder(name.c_str()), name);
        if (!holds(copy, Section::notes)) {
            collectFolder(copy, Section::drafts, *step);
            return;
        }
        for (const Section section : {Section::notes, Section::drafts}) {
            const char *const part = FileNames::ofSection(section);
            if (holds(copy, section))
                collectFolder(copy.orThrow(copy.openFolder(part), part), section, *step);
        }
        return;
    }
    case FileKind::file:
        // Of a note or of a draft, whichever it looks like.
        if (std::optional<Text> text = readText(m_data, name.c_str(), Section::notes)) {
            text->about = text->note.id;
            text->isRecovered = text->mayRestore = text->hasHeader;
            text->step = *step;
            m_texts.push_back(*std::move(text));
        }
        return;
    case FileKind::link:
    case FileKind::other:
        return;
    }
}

void TakeIn::collectFolder(const Directory &folder, Section section, std::size_t step)
{
    DirectoryListing listing = folder.orThrow(folder.list());
    listing.sort();
    for (const DirectoryListing::Entry &entry : listing.entries()) {
        const char *name = listing.name(entry);
        const bool isText = FileNames::isMarkdown(name) || isCopyOfNote(name);
        if (entry.kind != FileKind::file || !isText)
            continue;
        std::optional<Text> text = readText(folder, name, section);
        if (!text)
            continue;
        if (text->hasHeader)
            text->about = text->note.id;
        text->isRecovered = true;
        text->mayRestore = text->hasHeader;
        text->step = step;
        if (!text->hasHeader || !m_known.contains(text->about) ||
            m_known.value(text->about).body != text->note.body)
            m_texts.push_back(*std::move(text));
    }
}

// -- What becomes of it --------------------------------------------------------------------------

void TakeIn::make(Note note)
{
    m_bodies.insert(note.body.trimmed());
    m_made.append(note);
    m_known.insert(note.id, std::move(note));
}

/// Of several copies of a note that is gone the latest becomes it, the same one everywhere.
void TakeIn::restoreMissing()
{
    const auto isEarlier = [](const Text *a, const Text *b) {
        return std::pair(a->note.updatedAt, std::string_view(a->bytes)) <
               std::pair(b->note.updatedAt, std::string_view(b->bytes));
    };
    QHash<QUuid, Text *> latest;
    for (Text &text : m_texts) {
        const bool isFree = !m_known.contains(text.about) && !m_taken.contains(text.about);
        if (!text.mayRestore || text.about.isNull() || !isFree)
            continue;
        Text *&best = latest[text.about];
        if (!best || isEarlier(best, &text))
            best = &text;
    }
    for (Text &text : m_texts) {
        if (latest.value(text.about) != &text)
            continue;
        text.fate = Fate::restored;
        Note note = text.note;
        note.id = text.about;
        make(std::move(note));
    }
}

void TakeIn::makeNotes()
{
    for (const Note &note : std::as_const(m_known))
        m_bodies.insert(note.body.trimmed());
    for (Text &text : m_texts) {
        if (!text.fate)
            text.fate = fateOf(text);
        if (text.fate != Fate::made)
            continue;
        Note note = text.note;
        note.id = derivedId(text.about, text.bytes);
        make(std::move(note));
    }
}

TakeIn::Fate TakeIn::fateOf(const Text &text) const
{
    const QString body = text.note.body.trimmed();
    if (body.isEmpty())
        return Fate::blank;
    if (m_known.contains(derivedId(text.about, text.bytes)))
        return Fate::there;
    if (!text.hasHeader) {
        const bool isDraft = m_drafts.value(text.about).trimmed() == body;
        return isDraft || m_bodies.contains(body) ? Fate::there : Fate::made;
    }
    const auto note = m_known.find(text.about);
    const bool isThere = note != m_known.end() && note->body == text.note.body &&
                         (text.isRecovered || (note->createdAt == text.note.createdAt &&
                                               note->updatedAt == text.note.updatedAt));
    return isThere ? Fate::there : Fate::made;
}

void TakeIn::checkRoom() const
{
    if (m_made.isEmpty())
        return;
    if (static_cast<std::size_t>(m_known.size()) > NoteFolder::mostNotes)
        throw m_folder->directory(Section::notes).error(Failure::because(Reason::tooManyNotes));
    std::size_t total = m_survey->textSize();
    for (const Text &text : m_texts)
        total += text.bytes.size();
    if (total > NoteFolder::mostBytes)
        throw m_folder->directory().error(Failure::because(Reason::tooMuchText));
}

void TakeIn::tellOutcomes()
{
    for (std::size_t step = 0; step < m_plan.steps.size(); ++step)
        tellOutcome(step);
    if (!m_onlyCopy.empty())
        m_plan.steps.push_back(
            {.outcome = TakeInPlan::Step::Outcome::restored,
             .file = m_data.path() / m_onlyCopy,
             .title = {},
             .what = whatOfRecoveryCopy(RecoveryName::originOf(m_onlyCopy, m_data.path())),
             .becomes = {u"It is all there is of the notes, and gets their place."_s, {}}});
    std::ranges::sort(m_plan.steps, {}, &TakeInPlan::Step::file);
    m_plan.noteCount = m_made.size();
}

void TakeIn::tellOutcome(std::size_t index)
{
    using Outcome = TakeInPlan::Step::Outcome;
    TakeInPlan::Step &step = m_plan.steps[index];
    const Text *first = nullptr;
    qint64 made = 0;
    // They were collected step by step.
    auto text = std::ranges::lower_bound(m_texts, index, {}, &Text::step);
    for (; text != m_texts.end() && text->step == index; ++text) {
        const bool isMade = text->fate == Fate::made || text->fate == Fate::restored;
        made += isMade ? 1 : 0;
        if (!first || (isMade && made == 1))
            first = &*text;
    }
    if (made > 0)
        step.outcome = first->fate == Fate::restored ? Outcome::restored : Outcome::note;
    if (first)
        step.title = first->note.title();
    if (m_originals[index].isRecoveryCopy) {
        step.becomes = made > 0
                           ? Message{u"Texts that only it has become notes: %d."_s, {made}}
                           : Message{u"The notes hold all of its texts. It is put away."_s, {}};
        return;
    }
    if (!first) {
        step.becomes = {u"It is no text. It is put away."_s, {}};
        return;
    }
    switch (*first->fate) {
    case Fate::blank:
        step.becomes = {u"It is empty. It is put away."_s, {}};
        return;
    case Fate::there:
        step.becomes = {u"The notes hold its text already. It is put away."_s, {}};
        return;
    case Fate::made:
        step.becomes = {u"It becomes a note of its own."_s, {}};
        return;
    case Fate::restored:
        step.becomes = {u"It becomes the note that is missing."_s, {}};
        return;
    }
}
