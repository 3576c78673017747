// SPDX-License-Identifier: MIT
#pragma once

#include "Message.h"
#include "NoteRepository.h"
#include "NoteSearch.h"
#include "Refusal.h"
#include "RepositoryError.h"
#include "TextChange.h"

#include <QObject>
#include <QTimer>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

/// The notes on screen, and whether they are safe on disk.
///
/// Lives on the GUI thread. No call throws: a failure becomes errorMessage() and errorContext(),
/// and what was typed stays in memory until a later save succeeds, and in a file against a sudden
/// end of the program. A store whose load failed is read-only until reload() succeeds, so that
/// files it could not read are never overwritten.
/// Each xChanged() is emitted after the state has changed, and only then.
class NoteStore final : public QObject {
    Q_OBJECT

public:
    /// From the last change of a draft to its write.
    static constexpr std::chrono::milliseconds saveDelay{350};

    /// From the first change that is neither saved nor kept to its being kept against a sudden end
    /// of the program, whether the notes can be saved or not.
    static constexpr std::chrono::milliseconds keepDelay{250};

    /// After this time as the only copy, what is kept is put on the disk.
    static constexpr std::chrono::milliseconds syncDelay{1000};

    /// What a save leaves for later is done in pieces of about this length, between other events.
    static constexpr std::chrono::milliseconds tidySlice{3};

    using Clock = std::function<Timestamp()>;

    /// Loads at once. The clock gives the times of new and edited notes.
    explicit NoteStore(std::unique_ptr<NoteRepository> repository, Clock clock = &Timestamp::now,
                       QObject *parent = nullptr);

    [[nodiscard]] const NoteSnapshot &snapshot() const noexcept { return m_snapshot; }

    /// Present while the last load or save stands as failed: its description in English.
    [[nodiscard]] std::optional<QString> errorMessage() const;

    /// The same as errorMessage(), still translatable.
    [[nodiscard]] const std::optional<Message> &failure() const noexcept { return m_failure; }

    /// What failed and what survived. Keeps its last sentence after a failure is over.
    [[nodiscard]] const std::optional<QString> &errorContext() const noexcept
    {
        return m_errorContext;
    }

    /// The failure, when it was one of the repository's own kinds.
    [[nodiscard]] const std::optional<RepositoryError> &repositoryError() const noexcept
    {
        return m_repositoryError;
    }

    /// The file or folder that the failure is about, when a person should look at it.
    [[nodiscard]] const std::optional<std::filesystem::path> &errorPlace() const noexcept
    {
        return m_errorPlace;
    }

    /// Nothing could be loaded yet.
    [[nodiscard]] bool isReadOnly() const noexcept { return m_isReadOnly; }

    /// The failure is one that reload() may end: another program changed the notes, or they could
    /// not be read.
    [[nodiscard]] bool canReload() const noexcept
    {
        return m_failure && (m_isReadOnly || m_repositoryError || m_hasFailedToReload);
    }

    /// Copies of notes lie beside them, which no failure tells of.
    [[nodiscard]] bool hasCopies() const noexcept { return m_hasCopies; }

    /// There are copies, or the failure may be one that takeIn() ends: files beside the notes keep
    /// them from being used.
    [[nodiscard]] bool canTakeIn() const noexcept;

    /// A draft waits for its write.
    [[nodiscard]] bool hasPendingChanges() const noexcept { return m_hasPendingChanges; }

    [[nodiscard]] const QString &draft() const noexcept { return m_snapshot.captureDraft; }

    /// "Not saved · Retry", "Saving draft…" or "Saved on this Mac": a key for translation.
    [[nodiscard]] QString status() const;

    /// Every note, last updated first; notes of the same time keep their stored order.
    [[nodiscard]] QList<Note> notes() const;

    /// The notes, in display order, whose body contains the trimmed query without regard to case
    /// or accents. Drafts are not searched. A blank query finds every note.
    [[nodiscard]] FoundNotes matching(const QString &query) const;

    /// The note's unsaved edit, even an empty one, or else its body.
    [[nodiscard]] QString text(const Note &note) const;
    [[nodiscard]] bool hasDraft(const Note &note) const;

    /// The folder of the note files, once it exists on disk.
    [[nodiscard]] std::optional<QUrl> notesFolderURL() const;

    /// Keeps the text of the capture screen and writes it after saveDelay without another change.
    /// What is no Unicode in it becomes U+FFFD, since no file could hold it.
    void setDraft(const QString &typed);

    /// Keeps an unsaved edit, exactly as given, and writes it after saveDelay.
    void updateDraft(const Note &note, const QString &typed);

    /// Both for a change of the text that the store has, without a look at the rest of it. One that
    /// does not fit it is not made, and false is given.
    bool changeDraft(const TextChange &change);
    bool changeDraft(const Note &note, const TextChange &change);

    /// Turns the trimmed capture draft into a note. Like the three below, true means that it is
    /// on the disk, and false that nothing was written and nothing typed was lost.
    bool saveCapture();

    /// Makes a note of the trimmed text, and leaves what is on the capture screen alone. False also
    /// for a blank text.
    bool add(const QString &text);

    /// Puts the trimmed edit into the note. False also for a blank text and for an unknown note.
    bool saveEdit(const Note &note);
    bool deleteNote(const Note &note);

    /// Adds notes that another program made, all or none, in front of the others. Nothing when they
    /// are on the disk, with what is typed, which stays as it is; else why not: nothing was written
    /// then, and the screen tells nothing of it, since nobody before it asked. Notes whose
    /// identifiers are there already are passed over.
    std::optional<Refusal> addNotes(const QList<Note> &notes);

    /// Writes the current state now. With nothing to be written, what another program changed
    /// meanwhile is taken in instead of being a reason to fail.
    bool flush();

    /// To be called when the notes are about to be shown: takes in what other programs changed,
    /// unless something waits to be written or an error stands.
    void takeInChanges();

    /// Loads the notes anew and keeps what waits to be written, as merged() says. True when that
    /// went well; otherwise everything is as it was, and the failure says why.
    bool reload();

    /// What takeIn() would do. Nothing when that cannot be told, and the failure says why.
    std::optional<TakeInPlan> planTakeIn();

    /// Takes what was shown into the notes and loads them anew, as reload() does. False when one of
    /// the two failed; the failure says why, and nothing is lost.
    bool takeIn(const TakeInPlan &shown);

    /// For an end that cannot wait until a save succeeds: keeps what was typed, safe on the disk,
    /// for the next start. Where it is; nothing when that failed, too.
    std::optional<std::filesystem::path> keepForNextStart();

Q_SIGNALS:
    /// Other notes, or the same ones with another text or time.
    void notesChanged();
    /// The text of the capture screen.
    void draftChanged();
    /// Which notes have an unsaved edit, or what it is.
    void editsChanged();
    void errorMessageChanged();
    void errorContextChanged();
    void repositoryErrorChanged();
    void errorPlaceChanged();
    void hasPendingChangesChanged();
    void hasCopiesChanged();

private:
    bool load();
    bool commit(const NoteSnapshot &snapshot);
    void hasSaved(const NoteSnapshot &snapshot);
    void scheduleSave();
    void keepTyped();
    bool syncTyped();
    void tidy();
    void setSnapshot(const NoteSnapshot &snapshot);
    void setFailure(std::optional<Message> failure,
                    const std::optional<RepositoryError> &repositoryError,
                    std::optional<std::filesystem::path> place);
    void setErrorContext(const QString &context);
    void setHasPendingChanges(bool pending);
    void setHasCopies(bool hasCopies);

    std::unique_ptr<NoteRepository> m_repository;
    Clock m_clock;
    NoteSnapshot m_snapshot;
    mutable NoteSearch m_search; ///< Among the notes of the snapshot.
    std::optional<Message> m_failure;
    std::optional<QString> m_errorContext;
    std::optional<RepositoryError> m_repositoryError;
    std::optional<std::filesystem::path> m_errorPlace;
    bool m_isReadOnly = false;
    bool m_hasFailedToReload = false;
    bool m_hasCopies = false;

    /// The last load failed for what lies in the folder.
    bool m_isFolderRefused = false;

    /// Why it is read-only.
    Refusal m_loadRefusal;

    /// Of the note that the text of the capture screen will become.
    QUuid m_captureId = QUuid::createUuid();
    bool m_hasPendingChanges = false;
    QTimer m_saveTimer;
    QTimer m_tidyTimer;
    QTimer m_keepTimer;
    QTimer m_syncTimer;
};
