// SPDX-License-Identifier: MIT
#include "NoteStore.h"

#include "FileUrl.h"
#include "NoteId.h"
#include "WellFormed.h"

#include <QSet>
#include <algorithm>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Why the operation failed, or nothing when it succeeded. The only place that catches.
struct Failure {
    Refusal::Kind kind;
    Message message;
    std::optional<RepositoryError> repositoryError;
    std::optional<std::filesystem::path> place;
};

std::optional<std::filesystem::path> placeOf(const StorageError &error)
{
    return error.place() ? std::optional(*error.place()) : std::nullopt;
}

bool isOfFolder(const Failure &failure)
{
    return failure.kind == Refusal::Kind::folder || failure.kind == Refusal::Kind::recoveryCopy;
}

template <class Operation>
std::optional<Failure> failureOf(const Operation &operation)
{
    try {
        operation();
        return std::nullopt;
    } catch (const RepositoryError &error) {
        return Failure{Refusal::of(error).kind, error.message(), error, placeOf(error)};
    } catch (const StorageError &error) {
        return Failure{Refusal::of(error).kind, error.message(), std::nullopt, placeOf(error)};
    } catch (const std::exception &error) {
        return Failure{Refusal::Kind::disk,
                       {u"%@"_s, {QString::fromLocal8Bit(error.what())}},
                       std::nullopt,
                       std::nullopt};
    }
}

/// So often what others change is taken in while one addition is saved: a program that carries
/// many notes over at once goes on meanwhile.
constexpr int mostReloads = 5;

} // namespace

NoteStore::NoteStore(std::unique_ptr<NoteRepository> repository, Clock clock, QObject *parent)
    : QObject(parent)
    , m_repository(std::move(repository))
    , m_clock(std::move(clock))
{
    m_saveTimer.setSingleShot(true);
    m_saveTimer.setTimerType(Qt::PreciseTimer);
    m_saveTimer.setInterval(saveDelay);
    connect(&m_saveTimer, &QTimer::timeout, this, &NoteStore::flush);
    m_keepTimer.setSingleShot(true);
    m_keepTimer.setTimerType(Qt::PreciseTimer);
    m_keepTimer.setInterval(keepDelay);
    connect(&m_keepTimer, &QTimer::timeout, this, &NoteStore::keepTyped);
    m_syncTimer.setSingleShot(true);
    m_syncTimer.setInterval(syncDelay);
    connect(&m_syncTimer, &QTimer::timeout, this, &NoteStore::syncTyped);
    m_tidyTimer.setSingleShot(true);
    connect(&m_tidyTimer, &QTimer::timeout, this, &NoteStore::tidy);

    load();
}

bool NoteStore::load()
{
    NoteSnapshot loaded;
    const auto failure = failureOf([&] { loaded = m_repository->load(); });
    m_isReadOnly = failure.has_value();
    if (failure) {
        m_loadRefusal = {failure->kind, failure->message};
        m_isFolderRefused = isOfFolder(*failure);
        setErrorContext(u"Could not read your notes. Original files were protected."_s);
        setFailure(failure->message, failure->repositoryError, failure->place);
        return false;
    }
    setSnapshot(loaded);
    setHasCopies(m_repository->hasCopies());
    setFailure(std::nullopt, std::nullopt, std::nullopt);
    m_captureId = m_repository->captureId().value_or(m_captureId);
    if (const std::optional<Message> leftAlone = m_repository->leftAlone()) {
        setErrorContext(u"What was typed last could not be read. It was left as it is."_s);
        setFailure(*leftAlone, std::nullopt, std::nullopt);
    }
    if (m_repository->hasRestored())
        scheduleSave();
    return true;
}

void NoteStore::takeInChanges()
{
    if (m_failure || m_hasPendingChanges)
        return;
    bool isChanged = false;
    const auto failure = failureOf([&] { isChanged = m_repository->isChangedOutside(); });
    if (failure || isChanged)
        reload();
}

bool NoteStore::reload()
{
    if (m_isReadOnly)
        return load();
    NoteSnapshot loaded;
    const auto failure = failureOf([&] { loaded = m_repository->reload(m_snapshot); });
    m_hasFailedToReload = failure.has_value();
    if (failure) {
        m_isFolderRefused = isOfFolder(*failure);
        setErrorContext(u"Could not read your notes. Original files were protected."_s);
        setFailure(failure->message, failure->repositoryError, failure->place);
        return false;
    }
    setSnapshot(loaded);
    setHasCopies(m_repository->hasCopies());
    setFailure(std::nullopt, std::nullopt, std::nullopt);
    if (m_hasPendingChanges)
        scheduleSave();
    return true;
}

bool NoteStore::canTakeIn() const noexcept
{
    if (m_hasCopies || m_repositoryError == RepositoryError::recoveryRequired() ||
        m_repositoryError == RepositoryError::invalidMarkdown())
        return true;
    return m_failure && (m_isReadOnly || m_hasFailedToReload) && m_isFolderRefused;
}

std::optional<TakeInPlan> NoteStore::planTakeIn()
{
    TakeInPlan plan;
    if (const auto failure = failureOf([&] { plan = m_repository->planTakeIn(); })) {
        setErrorContext(u"Could not read your notes. Original files were protected."_s);
        setFailure(failure->message, failure->repositoryError, failure->place);
        return std::nullopt;
    }
    return plan;
}

bool NoteStore::takeIn(const TakeInPlan &shown)
{
    if (const auto failure = failureOf([&] { static_cast<void>(m_repository->takeIn(shown)); })) {
        setErrorContext(u"Could not read your notes. Original files were protected."_s);
        setFailure(failure->message, failure->repositoryError, failure->place);
        return false;
    }
    return reload();
}

std::optional<QString> NoteStore::errorMessage() const
{
    return m_failure ? std::optional(m_failure->english()) : std::nullopt;
}

QString NoteStore::status() const
{
    if (m_failure)
        return u"Not saved · Retry"_s;
    if (m_hasPendingChanges)
        return u"Saving draft…"_s;
    return u"Saved on this Mac"_s;
}

QList<Note> NoteStore::notes() const
{
    return m_search.all().toList();
}

FoundNotes NoteStore::matching(const QString &query) const
{
    return m_search.matching(query);
}

QString NoteStore::text(const Note &note) const
{
    return m_snapshot.editingDrafts.value(canonicalText(note.id), note.body);
}

bool NoteStore::hasDraft(const Note &note) const
{
    return m_snapshot.editingDrafts.contains(canonicalText(note.id));
}

std::optional<QUrl> NoteStore::notesFolderURL() const
{
    const auto folder = m_repository->notesFolderURL();
    std::error_code ignored;
    return folder && std::filesystem::exists(localPath(*folder), ignored) ? folder : std::nullopt;
}

void NoteStore::setDraft(const QString &typed)
{
    if (m_isReadOnly)
        return;
    const QString text = wellFormed(typed);
    const bool isChange = m_snapshot.captureDraft != text;
    m_snapshot.captureDraft = text;
    if (isChange)
        Q_EMIT draftChanged();
    scheduleSave();
}

void NoteStore::updateDraft(const Note &note, const QString &typed)
{
    if (m_isReadOnly)
        return;
    const QString text = wellFormed(typed);
    const QString key = canonicalText(note.id);
    const bool isChange =
        !m_snapshot.editingDrafts.contains(key) || m_snapshot.editingDrafts.value(key) != text;
    m_snapshot.editingDrafts[key] = text;
    if (isChange)
        Q_EMIT editsChanged();
    scheduleSave();
}

bool NoteStore::changeDraft(const TextChange &change)
{
    if (m_isReadOnly || !change.fits(m_snapshot.captureDraft))
        return false;
    change.applyTo(m_snapshot.captureDraft);
    Q_EMIT draftChanged();
    scheduleSave();
    return true;
}

bool NoteStore::changeDraft(const Note &note, const TextChange &change)
{
    if (m_isReadOnly || !change.fits(text(note)))
        return false;
    const QString key = canonicalText(note.id);
    if (!m_snapshot.editingDrafts.contains(key))
        m_snapshot.editingDrafts.insert(key, note.body);
    change.applyTo(m_snapshot.editingDrafts[key]);
    Q_EMIT editsChanged();
    scheduleSave();
    return true;
}

bool NoteStore::saveCapture()
{
    const QString body = m_snapshot.captureDraft.trimmed();
    if (body.isEmpty())
        return false;

    const Timestamp now = m_clock();
    NoteSnapshot next = m_snapshot;
    next.notes.prepend({m_captureId, body, now, now});
    next.captureDraft.clear();
    if (!commit(next))
        return false;
    m_captureId = QUuid::createUuid();
    return true;
}

bool NoteStore::add(const QString &text)
{
    const QString body = wellFormed(text).trimmed();
    if (body.isEmpty())
        return false;

    takeInChanges();
    const Timestamp now = m_clock();
    NoteSnapshot next = m_snapshot;
    next.notes.prepend({QUuid::createUuid(), body, now, now});
    return commit(next);
}

bool NoteStore::saveEdit(const Note &note)
{
    const QString body = text(note).trimmed();
    if (body.isEmpty())
        return false;

    NoteSnapshot next = m_snapshot;
    const auto edited = std::find_if(next.notes.begin(), next.notes.end(),
                                     [&note](const Note &other) { return other.id == note.id; });
    if (edited == next.notes.end())
        return false;
    edited->body = body;
    edited->updatedAt = m_clock();
    next.editingDrafts.remove(canonicalText(note.id));
    return commit(next);
}

bool NoteStore::deleteNote(const Note &note)
{
    NoteSnapshot next = m_snapshot;
    next.notes.removeIf([&note](const Note &other) { return other.id == note.id; });
    next.editingDrafts.remove(canonicalText(note.id));
    return commit(next);
}

std::optional<Refusal> NoteStore::addNotes(const QList<Note> &notes)
{
    if (m_isReadOnly)
        return m_loadRefusal;
    NoteSnapshot next;
    const auto save = [&] {
        QSet<QUuid> known;
        for (const Note &note : m_snapshot.notes)
            known.insert(note.id);
        QList<Note> added;
        for (const Note &note : notes) {
            if (!known.contains(note.id))
                added.append(note);
        }
        next = m_snapshot;
        next.notes = added + m_snapshot.notes;
        m_repository->save(next);
    };
    auto failure = failureOf(save);
    for (int i = 0; i < mostReloads && !m_failure && !m_hasPendingChanges; ++i) {
        const bool isOutdated =
            failure && failure->repositoryError == RepositoryError::externalChange();
        if (!isOutdated)
            break;
        failure = failureOf([&] {
            setSnapshot(m_repository->reload(m_snapshot));
            save();
        });
    }
    if (!failure) {
        hasSaved(next);
        return std::nullopt;
    }
    // What the save was to do was noted with what is typed; it must not be taken for done.
    if (m_hasPendingChanges)
        keepTyped();
    return Refusal{failure->kind, failure->message};
}

bool NoteStore::flush()
{
    if (commit(m_snapshot))
        return true;
    const bool isOutdated = m_repositoryError == RepositoryError::externalChange();
    return isOutdated && !m_isReadOnly && !m_hasPendingChanges && reload();
}

std::optional<std::filesystem::path> NoteStore::keepForNextStart()
{
    m_saveTimer.stop();
    keepTyped();
    return syncTyped() ? m_repository->typedPath() : std::nullopt;
}

bool NoteStore::commit(const NoteSnapshot &snapshot)
{
    if (m_isReadOnly)
        return false;
    // Whatever waits to be written is part of this snapshot.
    m_saveTimer.stop();
    const auto failure = failureOf([&] { m_repository->save(snapshot); });
    if (failure) {
        m_hasFailedToReload = false;
        keepTyped();
        setErrorContext(u"Could not save. Your text is still in this window."_s);
        setFailure(failure->message, failure->repositoryError, failure->place);
        return false;
    }
    hasSaved(snapshot);
    return true;
}

void NoteStore::hasSaved(const NoteSnapshot &snapshot)
{
    m_saveTimer.stop();
    m_keepTimer.stop();
    m_syncTimer.stop();
    m_tidyTimer.start(0);
    setSnapshot(snapshot);
    setFailure(std::nullopt, std::nullopt, std::nullopt);
    setHasPendingChanges(false);
}

void NoteStore::scheduleSave()
{
    setHasPendingChanges(true);
    m_saveTimer.start();
    if (!m_keepTimer.isActive())
        m_keepTimer.start();
}

void NoteStore::keepTyped()
{
    m_keepTimer.stop();
    // What goes wrong here goes wrong again when it is saved, and is told then.
    static_cast<void>(failureOf([this] { m_repository->keepTyped(m_snapshot, m_captureId); }));
    if (!m_syncTimer.isActive())
        m_syncTimer.start();
}

bool NoteStore::syncTyped()
{
    m_syncTimer.stop();
    return !failureOf([this] { m_repository->syncTyped(); });
}

void NoteStore::tidy()
{
    std::optional<std::chrono::milliseconds> next;
    const auto failure = failureOf([&] { next = m_repository->tidy(tidySlice); });
    if (failure) {
        setErrorContext(u"Could not save. Your text is still in this window."_s);
        setFailure(failure->message, failure->repositoryError, failure->place);
    } else if (next) {
        m_tidyTimer.start(*next);
    }
}

void NoteStore::setSnapshot(const NoteSnapshot &snapshot)
{
    const bool areOtherNotes = m_snapshot.notes != snapshot.notes;
    const bool isOtherDraft = m_snapshot.captureDraft != snapshot.captureDraft;
    const bool areOtherEdits = m_snapshot.editingDrafts != snapshot.editingDrafts;
    // What is equal stays what it was, and is not kept twice.
    m_snapshot = {snapshot.version, areOtherNotes ? snapshot.notes : m_snapshot.notes,
                  snapshot.captureDraft, snapshot.editingDrafts};
    if (areOtherNotes) {
        m_search.setNotes(m_snapshot.notes);
        Q_EMIT notesChanged();
    }
    if (isOtherDraft)
        Q_EMIT draftChanged();
    if (areOtherEdits)
        Q_EMIT editsChanged();
}

void NoteStore::setFailure(std::optional<Message> failure,
                           const std::optional<RepositoryError> &repositoryError,
                           std::optional<std::filesystem::path> place)
{
    const bool isNewFailure = m_failure != failure;
    const bool isNewError = m_repositoryError != repositoryError;
    m_failure = std::move(failure);
    const bool isNewPlace = m_errorPlace != place;
    m_repositoryError = repositoryError;
    m_errorPlace = std::move(place);
    if (isNewFailure)
        Q_EMIT errorMessageChanged();
    if (isNewError)
        Q_EMIT repositoryErrorChanged();
    if (isNewPlace)
        Q_EMIT errorPlaceChanged();
}

void NoteStore::setErrorContext(const QString &context)
{
    if (m_errorContext == context)
        return;
    m_errorContext = context;
    Q_EMIT errorContextChanged();
}

void NoteStore::setHasPendingChanges(bool pending)
{
    if (m_hasPendingChanges == pending)
        return;
    m_hasPendingChanges = pending;
    Q_EMIT hasPendingChangesChanged();
}

void NoteStore::setHasCopies(bool hasCopies)
{
    if (m_hasCopies == hasCopies)
        return;
    m_hasCopies = hasCopies;
    Q_EMIT hasCopiesChanged();
}
