// SPDX-License-Identifier: MIT
#include "NoteStore.h"

#include "FailingRepository.h"
#include "FileError.h"
#include "FileUrl.h"
#include "NoteId.h"
#include "PassingTime.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <cerrno>
#include <functional>
#include <stdexcept>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

class NoteStoreTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void startsWithWhatTheRepositoryHolds();
    void addsANoteBesideTheCapture();
    void isReadOnlyForGoodWhenLoadingFails();
    void keepsTheKindOfAFailureOnlyWhenItIsTheRepositorysOwn();
    void saysWhichFileAFailureIsAbout();
    void findsANotesFolderWhoseNameIsNoText();
    void keepsTypingForTheNoteThatItWillBecome();
    void tidiesUpAfterASaveInSlices();
    void tidiesUpNothingAfterASaveThatFailed();
    void saysWhatTidyingUpFinds();
    void ignoresDraftsWhenReadOnly();
    void refusesEveryOperationWhenReadOnly();

    void readsTheDraftOfANoteAndElseItsBody();
    void readsAnEmptyDraftAsADraft();
    void hasAFolderOnlyOnceItExistsOnDisk();

    void turnsTheTrimmedCaptureIntoANoteAtTheFront();
    void createsANoteInOneMoment();
    void savesNoBlankCapture();
    void keepsTheCaptureWhenItsWriteFails();
    void namesTheStateOfTheSaving();
    void keepsTheLastContextAfterAFailureIsOver();

    void putsTheTrimmedEditIntoItsNote();
    void updatesANoteThatWasNotChanged();
    void keepsEverythingWhenTheWriteOfAnEditFails();
    void savesNoEditOfADeletedNote();
    void savesNoBlankEditButKeepsItsDraft();
    void takesNotesOfAnotherProgramAndLeavesWhatIsTyped();
    void tellsWhyItTakesNoNotesAndShowsNothingOfIt();
    void takesNoNotesWhenReadOnly();
    void takesANoteOnceOnly();
    void deletesTheNoteWithItsDraft();
    void deletesEveryNoteOfTheIdentifier();
    void writesEvenWhenTheNoteToDeleteIsUnknown();
    void keepsTheNoteWhenItsDeletionFails();

    void writesOnceAfterABurstOfTyping();
    void waitsAnewAfterAnEqualText_data();
    void waitsAnewAfterAnEqualText();
    void writesNothingMoreAfterACommit_data();
    void writesNothingMoreAfterACommit();
    void describesAnUnknownFailureAsItStands();
    void keepsWhatIsTypedWithoutAPause();
    void keepsEvenAFewLettersInTime();
    void keepsWhatCouldNotBeSavedAtOnce();
    void keepsNothingMoreThatIsSaved();
    void syncsWhatHasBeenTheOnlyCopyForASecond();
    void keepsForTheNextStartAndSaysWhere();
    void savesSoonWhatWasRestored();
    void saysWhatCouldNotBeRestored();
    void takesInNoHalfOfASurrogatePair();
    void followsChangesOfADraft();
    void beginsADraftWithAChange();
    void makesNoChangeThatDoesNotFit();
    void staysPendingWhenTheDelayedWriteFails();
    void keepsADraftExactlyAsTyped();
    void tellsOfChangesOnly();
    void tellsOfAnEditThatChanges();
    void canBeDestroyedWhileADraftWaits();

    void showsTheLastUpdatedNoteFirst();
    void keepsTheStoredOrderOfNotesOfTheSameTime();
    void findsEveryNoteByABlankQuery();
    void findsWithoutRegardToCaseAndAccents();
    void searchesTheSavedBodyAndNotTheDraft();
    void searchesForTheTrimmedQueryAsOneText();
    void showsWhatIsFoundInDisplayOrder();
};

namespace {

Note noteOf(const QString &body, double updatedAt = 10)
{
    return {QUuid::createUuid(), body, {1}, {updatedAt}};
}

NoteSnapshot snapshotOf(const QList<Note> &notes)
{
    return {1, notes, {}, {}};
}

QStringList bodies(const QList<Note> &notes)
{
    QStringList bodies;
    for (const Note &note : notes)
        bodies << note.body;
    return bodies;
}

/// A store over a repository that can be made to fail, at a time that stands still.
struct Fixture {
    explicit Fixture(const NoteSnapshot &snapshot = {})
        : Fixture(std::make_unique<FailingRepository>(snapshot))
    {
    }

    /// A store whose first load fails with the error.
    template <class Error>
    static Fixture unreadable(const NoteSnapshot &snapshot, const Error &error)
    {
        auto repository = std::make_unique<FailingRepository>(snapshot);
        repository->failWith(error);
        return Fixture(std::move(repository));
    }

    static constexpr Timestamp now{1000};

    FailingRepository &repository;
    NoteStore store;

private:
    explicit Fixture(std::unique_ptr<FailingRepository> owned)
        : repository(*owned)
        , store(std::move(owned), [] { return now; })
    {
    }
};

const FileError noSpace("/notes", ENOSPC);

} // namespace

void NoteStoreTest::startsWithWhatTheRepositoryHolds()
{
    const NoteSnapshot snapshot{1, {noteOf(u"milk"_s)}, u"draft"_s, {}};
    const Fixture fixture(snapshot);

    QCOMPARE(fixture.store.snapshot(), snapshot);
    QCOMPARE(fixture.store.draft(), u"draft"_s);
    QCOMPARE(fixture.store.status(), u"Saved on this Mac"_s);
    QVERIFY(!fixture.store.isReadOnly());
    QVERIFY(!fixture.store.hasPendingChanges());
    QVERIFY(!fixture.store.errorMessage());
    QVERIFY(!fixture.store.errorContext());
    QVERIFY(!fixture.store.repositoryError());
    QCOMPARE(fixture.repository.saves(), 0);
}

void NoteStoreTest::addsANoteBesideTheCapture()
{
    auto owned = std::make_unique<FailingRepository>();
    const FailingRepository &repository = *owned;
    NoteStore store(std::move(owned));
    store.setDraft(u"unfinished"_s);

    QVERIFY(!store.add(u" \n"_s));
    QCOMPARE(repository.saves(), 0);
    QVERIFY(store.add(u" from elsewhere \n"_s));

    QCOMPARE(repository.stored().notes.size(), 1);
    QCOMPARE(repository.stored().notes.first().body, u"from elsewhere"_s);
    QCOMPARE(repository.stored().captureDraft, u"unfinished"_s);
    QVERIFY(store.saveCapture());
    QVERIFY(repository.stored().notes.at(0).id != repository.stored().notes.at(1).id);
}

void NoteStoreTest::isReadOnlyForGoodWhenLoadingFails()
{
    const auto fixture =
        Fixture::unreadable(snapshotOf({noteOf(u"milk"_s)}), RepositoryError::invalidMarkdown());

    QVERIFY(fixture.store.isReadOnly());
    QCOMPARE(fixture.store.snapshot(), NoteSnapshot());
    QVERIFY(fixture.store.notes().isEmpty());
    QCOMPARE(fixture.store.status(), u"Not saved · Retry"_s);
    QCOMPARE(fixture.store.errorContext(),
             u"Could not read your notes. Original files were protected."_s);
    QCOMPARE(fixture.store.errorMessage(), RepositoryError::invalidMarkdown().description());
    QCOMPARE(fixture.store.repositoryError(), RepositoryError::invalidMarkdown());
}

void NoteStoreTest::saysWhichFileAFailureIsAbout()
{
    Fixture fixture;
    const QSignalSpy changed(&fixture.store, &NoteStore::errorPlaceChanged);
    const auto failWith = [&](const auto &error) {
        fixture.repository.failWith(error);
        QVERIFY(!fixture.store.flush());
    };

    QVERIFY(!fixture.store.errorPlace());
    failWith(RepositoryError::recoveryRequired().about("/notes/copy"));
    QCOMPARE(fixture.store.errorPlace(), std::filesystem::path("/notes/copy"));
    QCOMPARE(changed.count(), 1);
    failWith(RepositoryError::recoveryRequired().about("/notes/other"));
    QCOMPARE(fixture.store.errorPlace(), std::filesystem::path("/notes/other"));
    QCOMPARE(changed.count(), 2);
    failWith(FileError("/notes/one.md", Reason::notUtf8));
    QCOMPARE(fixture.store.errorPlace(), std::filesystem::path("/notes/one.md"));
    failWith(FileError("/notes/one.md", ENOSPC));
    QVERIFY(!fixture.store.errorPlace());
    failWith(RepositoryError::recoveryRequired().about("/notes/copy"));
    fixture.repository.recover();
    QVERIFY(fixture.store.flush());

    QVERIFY(!fixture.store.errorPlace());
    QCOMPARE(changed.count(), 6);
}

void NoteStoreTest::findsANotesFolderWhoseNameIsNoText()
{
    const QTemporaryDir outer;
    const std::filesystem::path folder =
        std::filesystem::path(QFile::encodeName(outer.path()).toStdString()) / "\xff notes";
    Fixture fixture;
    fixture.repository.setNotesFolderURL(fileUrl(folder));

    QVERIFY(!fixture.store.notesFolderURL());
    std::filesystem::create_directory(folder);

    QVERIFY(fixture.store.notesFolderURL().has_value());
    QCOMPARE(localPath(*fixture.store.notesFolderURL()), folder);
    std::filesystem::remove(folder);
}

void NoteStoreTest::keepsTheKindOfAFailureOnlyWhenItIsTheRepositorysOwn()
{
    Fixture fixture;

    fixture.repository.failWith(RepositoryError::externalChange());
    QVERIFY(!fixture.store.flush());
    QCOMPARE(fixture.store.repositoryError(), RepositoryError::externalChange());

    fixture.repository.failWith(noSpace);
    QVERIFY(!fixture.store.flush());
    QVERIFY(!fixture.store.repositoryError());
    QCOMPARE(fixture.store.errorMessage(), noSpace.description());
}

void NoteStoreTest::keepsTypingForTheNoteThatItWillBecome()
{
    const QUuid kept = QUuid::createUuid();
    auto repository = std::make_unique<FailingRepository>();
    repository->keepTyped({}, kept);
    NoteStore store(std::move(repository));

    // What the last run kept, and then something else.
    store.setDraft(u"milk"_s);
    QVERIFY(store.saveCapture());
    store.setDraft(u"bread"_s);
    QVERIFY(store.saveCapture());

    QCOMPARE(store.snapshot().notes[1].id, kept);
    QVERIFY(store.snapshot().notes[0].id != kept);
}

void NoteStoreTest::tidiesUpAfterASaveInSlices()
{
    using namespace std::chrono_literals;
    Fixture fixture;
    QList<std::chrono::milliseconds> slices;
    fixture.repository.setTidy([&](std::chrono::milliseconds most) {
        slices.append(most);
        return slices.size() < 3 ? std::optional(0ms) : std::nullopt;
    });

    QVERIFY(fixture.store.flush());
    QCOMPARE(slices.size(), 0);

    QTRY_COMPARE(slices.size(), 3);
    for (const std::chrono::milliseconds slice : slices)
        QVERIFY(slice > 0ms && slice <= 4ms);
    // There was nothing left to do.
    QVERIFY(fixture.store.flush());
    QTRY_COMPARE(slices.size(), 4);
    QCoreApplication::processEvents();
    QCOMPARE(slices.size(), 4);
}

void NoteStoreTest::tidiesUpNothingAfterASaveThatFailed()
{
    Fixture fixture;
    bool hasTidied = false;
    fixture.repository.setTidy([&](std::chrono::milliseconds) {
        hasTidied = true;
        return std::nullopt;
    });
    fixture.repository.failWith(noSpace);

    QVERIFY(!fixture.store.flush());
    QCoreApplication::processEvents();

    QVERIFY(!hasTidied);
}

void NoteStoreTest::saysWhatTidyingUpFinds()
{
    Fixture fixture;
    fixture.repository.setTidy(
        [](std::chrono::milliseconds) -> std::optional<std::chrono::milliseconds> {
            throw RepositoryError::recoveryRequired();
        });

    QVERIFY(fixture.store.flush());

    QTRY_COMPARE(fixture.store.repositoryError(), RepositoryError::recoveryRequired());
    QCOMPARE(fixture.store.errorMessage(), RepositoryError::recoveryRequired().description());
    QCOMPARE(fixture.store.status(), u"Not saved · Retry"_s);
}

void NoteStoreTest::ignoresDraftsWhenReadOnly()
{
    const Note note = noteOf(u"milk"_s);
    auto fixture = Fixture::unreadable({}, noSpace);
    const QSignalSpy draft(&fixture.store, &NoteStore::draftChanged);
    const QSignalSpy edits(&fixture.store, &NoteStore::editsChanged);

    fixture.store.setDraft(u"typed"_s);
    fixture.store.updateDraft(note, u"edited"_s);

    QCOMPARE(fixture.store.draft(), QString());
    QCOMPARE(fixture.store.snapshot(), NoteSnapshot());
    QVERIFY(!fixture.store.hasDraft(note));
    QVERIFY(!fixture.store.hasPendingChanges());
    QCOMPARE(draft.count(), 0);
    QCOMPARE(edits.count(), 0);
}

void NoteStoreTest::refusesEveryOperationWhenReadOnly()
{
    NoteSnapshot snapshot = snapshotOf({noteOf(u"milk"_s)});
    snapshot.captureDraft = u"draft"_s;
    auto fixture = Fixture::unreadable(snapshot, noSpace);
    fixture.repository.recover();

    QVERIFY(!fixture.store.flush());
    QVERIFY(!fixture.store.saveCapture());
    QVERIFY(!fixture.store.saveEdit(snapshot.notes.first()));
    QVERIFY(!fixture.store.deleteNote(snapshot.notes.first()));

    QCOMPARE(fixture.repository.saves(), 0);
    QCOMPARE(fixture.repository.stored(), snapshot);
    QVERIFY(fixture.store.isReadOnly());
    QCOMPARE(fixture.store.errorMessage(), noSpace.description());
}

void NoteStoreTest::readsTheDraftOfANoteAndElseItsBody()
{
    const Note note = noteOf(u"milk"_s);
    Fixture fixture(snapshotOf({note}));
    QCOMPARE(fixture.store.text(note), u"milk"_s);
    QVERIFY(!fixture.store.hasDraft(note));

    fixture.store.updateDraft(note, u"  oat milk\n"_s);

    QCOMPARE(fixture.store.text(note), u"  oat milk\n"_s);
    QVERIFY(fixture.store.hasDraft(note));
    QCOMPARE(fixture.store.snapshot().editingDrafts.firstKey(), canonicalText(note.id));
}

void NoteStoreTest::readsAnEmptyDraftAsADraft()
{
    const Note note = noteOf(u"milk"_s);
    Fixture fixture(snapshotOf({note}));

    fixture.store.updateDraft(note, QString());

    QCOMPARE(fixture.store.text(note), QString());
    QVERIFY(fixture.store.hasDraft(note));
}

void NoteStoreTest::hasAFolderOnlyOnceItExistsOnDisk()
{
    const QTemporaryDir dir;
    const QString folder = dir.filePath(u"Notes of one person"_s);
    Fixture fixture;
    QVERIFY(!fixture.store.notesFolderURL());

    fixture.repository.setNotesFolderURL(QUrl::fromLocalFile(folder));
    QVERIFY(!fixture.store.notesFolderURL());

    QVERIFY(QDir().mkdir(folder));
    QCOMPARE(fixture.store.notesFolderURL(), QUrl::fromLocalFile(folder));
}

void NoteStoreTest::turnsTheTrimmedCaptureIntoANoteAtTheFront()
{
    const Note earlier = noteOf(u"earlier"_s);
    NoteSnapshot snapshot = snapshotOf({earlier});
    snapshot.editingDrafts = {{canonicalText(earlier.id), u"edit"_s}};
    Fixture fixture(snapshot);
    fixture.store.setDraft(u"  word\n"_s);

    QVERIFY(fixture.store.saveCapture());

    const NoteSnapshot &saved = fixture.store.snapshot();
    QCOMPARE(bodies(saved.notes), (QStringList{u"word"_s, u"earlier"_s}));
    QCOMPARE(saved.notes.first().createdAt, Fixture::now);
    QCOMPARE(saved.notes.first().updatedAt, Fixture::now);
    QVERIFY(saved.notes.first().id != earlier.id);
    QVERIFY(!saved.notes.first().id.isNull());
    QCOMPARE(saved.captureDraft, QString());
    QCOMPARE(saved.editingDrafts, snapshot.editingDrafts);
    QCOMPARE(fixture.repository.stored(), saved);
}

void NoteStoreTest::createsANoteInOneMoment()
{
    double moments = 0;
    NoteStore store(std::make_unique<FailingRepository>(), [&] { return Timestamp{++moments}; });
    store.setDraft(u"milk"_s);

    QVERIFY(store.saveCapture());

    QCOMPARE(store.notes().first().createdAt, Timestamp{1});
    QCOMPARE(store.notes().first().updatedAt, Timestamp{1});
}

void NoteStoreTest::savesNoBlankCapture()
{
    Fixture fixture;
    const QString blank = u" \n\t\u3000\u2028"_s;
    fixture.store.setDraft(blank);

    QVERIFY(!fixture.store.saveCapture());

    QCOMPARE(fixture.repository.saves(), 0);
    QCOMPARE(fixture.store.draft(), blank);
    QVERIFY(!fixture.store.errorMessage());
}

void NoteStoreTest::keepsTheCaptureWhenItsWriteFails()
{
    Fixture fixture;
    fixture.store.setDraft(u"buy milk "_s);
    fixture.repository.failWith(noSpace);

    QVERIFY(!fixture.store.saveCapture());

    QCOMPARE(fixture.store.draft(), u"buy milk "_s);
    QVERIFY(fixture.store.notes().isEmpty());
    QCOMPARE(fixture.store.status(), u"Not saved · Retry"_s);
    QCOMPARE(fixture.store.errorContext(), u"Could not save. Your text is still in this window."_s);
    QCOMPARE(fixture.store.errorMessage(), noSpace.description());

    fixture.repository.recover();
    QVERIFY(fixture.store.saveCapture());
    QCOMPARE(fixture.store.status(), u"Saved on this Mac"_s);
    QCOMPARE(bodies(fixture.repository.stored().notes), QStringList{u"buy milk"_s});
}

void NoteStoreTest::namesTheStateOfTheSaving()
{
    Fixture fixture;
    QCOMPARE(fixture.store.status(), u"Saved on this Mac"_s);

    fixture.store.setDraft(u"a"_s);
    QCOMPARE(fixture.store.status(), u"Saving draft…"_s);

    fixture.repository.failWith(noSpace);
    QVERIFY(!fixture.store.flush());
    QVERIFY(fixture.store.hasPendingChanges());
    QCOMPARE(fixture.store.status(), u"Not saved · Retry"_s);

    fixture.repository.recover();
    QVERIFY(fixture.store.flush());
    QVERIFY(!fixture.store.hasPendingChanges());
    QCOMPARE(fixture.store.status(), u"Saved on this Mac"_s);
}

void NoteStoreTest::keepsTheLastContextAfterAFailureIsOver()
{
    Fixture fixture;
    fixture.repository.failWith(RepositoryError::recoveryRequired());
    QVERIFY(!fixture.store.flush());
    fixture.repository.recover();

    QVERIFY(fixture.store.flush());

    QVERIFY(!fixture.store.errorMessage());
    QVERIFY(!fixture.store.repositoryError());
    QCOMPARE(fixture.store.errorContext(), u"Could not save. Your text is still in this window."_s);
}

void NoteStoreTest::putsTheTrimmedEditIntoItsNote()
{
    const Note other = noteOf(u"other"_s);
    const Note note = noteOf(u"milk"_s);
    Fixture fixture(snapshotOf({other, note}));
    fixture.store.setDraft(u"capture"_s);
    fixture.store.updateDraft(note, u"\n oat milk\nand bread \n"_s);

    QVERIFY(fixture.store.saveEdit(note));

    const Note edited{note.id, u"oat milk\nand bread"_s, note.createdAt, Fixture::now};
    QCOMPARE(fixture.store.snapshot(), (NoteSnapshot{1, {other, edited}, u"capture"_s, {}}));
    QCOMPARE(fixture.repository.stored(), fixture.store.snapshot());
}

void NoteStoreTest::updatesANoteThatWasNotChanged()
{
    const Note note = noteOf(u"milk"_s);
    Fixture fixture(snapshotOf({note}));

    QVERIFY(fixture.store.saveEdit(note));

    QCOMPARE(fixture.store.snapshot().notes.first().body, u"milk"_s);
    QCOMPARE(fixture.store.snapshot().notes.first().updatedAt, Fixture::now);
}

void NoteStoreTest::keepsEverythingWhenTheWriteOfAnEditFails()
{
    const Note note = noteOf(u"milk"_s);
    Fixture fixture(snapshotOf({note}));
    fixture.store.updateDraft(note, u"oat milk"_s);
    const NoteSnapshot before = fixture.store.snapshot();
    fixture.repository.failWith(noSpace);

    QVERIFY(!fixture.store.saveEdit(note));

    QCOMPARE(fixture.store.snapshot(), before);
    QCOMPARE(fixture.store.text(note), u"oat milk"_s);
}

void NoteStoreTest::savesNoEditOfADeletedNote()
{
    const Note note = noteOf(u"milk"_s);
    Fixture fixture(snapshotOf({note}));
    QVERIFY(fixture.store.deleteNote(note));
    const int saves = fixture.repository.saves();

    QVERIFY(!fixture.store.saveEdit(note));

    QCOMPARE(fixture.repository.saves(), saves);
    QVERIFY(!fixture.store.errorMessage());
}

void NoteStoreTest::savesNoBlankEditButKeepsItsDraft()
{
    const Note note = noteOf(u"milk"_s);
    Fixture fixture(snapshotOf({note}));
    fixture.store.updateDraft(note, u" \n"_s);

    QVERIFY(!fixture.store.saveEdit(note));

    QCOMPARE(fixture.store.text(note), u" \n"_s);
    QCOMPARE(fixture.store.snapshot().notes, QList<Note>{note});
    QCOMPARE(fixture.repository.saves(), 0);
}

void NoteStoreTest::takesNotesOfAnotherProgramAndLeavesWhatIsTyped()
{
    const Note old = noteOf(u"old"_s);
    Fixture fixture(snapshotOf({old}));
    fixture.store.setDraft(u"half a thought"_s);
    fixture.store.updateDraft(old, u"old edited"_s);

    QVERIFY(!fixture.store.addNotes({noteOf(u"a"_s), noteOf(u"b"_s)}));

    QCOMPARE(bodies(fixture.store.snapshot().notes), (QStringList{u"a"_s, u"b"_s, u"old"_s}));
    QCOMPARE(fixture.store.draft(), u"half a thought"_s);
    QCOMPARE(fixture.store.text(old), u"old edited"_s);
    QCOMPARE(fixture.repository.stored(), fixture.store.snapshot());
    QVERIFY(!fixture.store.hasPendingChanges());
}

void NoteStoreTest::tellsWhyItTakesNoNotesAndShowsNothingOfIt()
{
    Fixture fixture;
    fixture.store.setDraft(u"half a thought"_s);
    fixture.repository.failWith(noSpace);

    const std::optional<Refusal> refusal = fixture.store.addNotes({noteOf(u"a"_s)});

    QVERIFY(refusal == Refusal::of(noSpace));
    QCOMPARE(refusal->kind, Refusal::Kind::diskFull);
    QVERIFY(fixture.store.snapshot().notes.isEmpty());
    QCOMPARE(fixture.store.draft(), u"half a thought"_s);
    QVERIFY(!fixture.store.errorMessage());
    QVERIFY(fixture.store.hasPendingChanges());
    fixture.repository.recover();
    QTRY_COMPARE(fixture.repository.stored().captureDraft, u"half a thought"_s);
}

void NoteStoreTest::takesNoNotesWhenReadOnly()
{
    auto fixture = Fixture::unreadable({}, RepositoryError::recoveryRequired());

    const std::optional<Refusal> refusal = fixture.store.addNotes({noteOf(u"a"_s)});

    QVERIFY(refusal == Refusal::of(RepositoryError::recoveryRequired()));
    QCOMPARE(fixture.repository.saves(), 0);
}

void NoteStoreTest::takesANoteOnceOnly()
{
    const Note note = noteOf(u"a"_s);
    Fixture fixture;

    QVERIFY(!fixture.store.addNotes({note}));
    QVERIFY(!fixture.store.addNotes({note}));

    QCOMPARE(fixture.store.snapshot().notes, QList<Note>{note});
}

void NoteStoreTest::deletesTheNoteWithItsDraft()
{
    const QList<Note> notes{noteOf(u"a"_s), noteOf(u"b"_s), noteOf(u"c"_s)};
    Fixture fixture(snapshotOf(notes));
    fixture.store.updateDraft(notes[0], u"a edited"_s);
    fixture.store.updateDraft(notes[1], u"b edited"_s);

    QVERIFY(fixture.store.deleteNote(notes[1]));

    QCOMPARE(bodies(fixture.store.snapshot().notes), (QStringList{u"a"_s, u"c"_s}));
    QVERIFY(!fixture.store.hasDraft(notes[1]));
    QCOMPARE(fixture.store.text(notes[0]), u"a edited"_s);
    QCOMPARE(fixture.repository.stored(), fixture.store.snapshot());
}

void NoteStoreTest::deletesEveryNoteOfTheIdentifier()
{
    const Note note = noteOf(u"milk"_s);
    const Note other = noteOf(u"bread"_s);
    Fixture fixture(snapshotOf({note, other, note}));

    QVERIFY(fixture.store.deleteNote(note));

    QCOMPARE(fixture.store.snapshot().notes, QList<Note>{other});
}

void NoteStoreTest::writesEvenWhenTheNoteToDeleteIsUnknown()
{
    const NoteSnapshot snapshot = snapshotOf({noteOf(u"milk"_s)});
    Fixture fixture(snapshot);

    QVERIFY(fixture.store.deleteNote(noteOf(u"stranger"_s)));

    QCOMPARE(fixture.repository.saves(), 1);
    QCOMPARE(fixture.store.snapshot(), snapshot);

    fixture.repository.failWith(noSpace);
    QVERIFY(!fixture.store.deleteNote(noteOf(u"stranger"_s)));
}

void NoteStoreTest::keepsTheNoteWhenItsDeletionFails()
{
    const NoteSnapshot snapshot = snapshotOf({noteOf(u"milk"_s)});
    Fixture fixture(snapshot);
    fixture.repository.failWith(noSpace);

    QVERIFY(!fixture.store.deleteNote(snapshot.notes.first()));

    QCOMPARE(fixture.store.snapshot(), snapshot);
}

void NoteStoreTest::writesOnceAfterABurstOfTyping()
{
    Fixture fixture;
    QTimer typist;
    QString text;
    connect(&typist, &QTimer::timeout, &fixture.store,
            [&] { fixture.store.setDraft(text += u'x'); });
    typist.setTimerType(Qt::PreciseTimer);
    typist.start(NoteStore::saveDelay / 2);

    while (text.size() < 10)
        PassingTime::pass(1s);
    typist.stop();

    QCOMPARE(NoteStore::saveDelay, 350ms);
    QCOMPARE(fixture.repository.saves(), 0);
    PassingTime::pass(1s);
    QCOMPARE(fixture.repository.saves(), 1);
    QCOMPARE(fixture.repository.stored().captureDraft, text);
    QVERIFY(!fixture.store.hasPendingChanges());
}

void NoteStoreTest::waitsAnewAfterAnEqualText_data()
{
    using Typing = std::function<void(NoteStore &)>;
    QTest::addColumn<Typing>("type");

    QTest::newRow("capture") << Typing([](NoteStore &store) { store.setDraft(u"milk"_s); });
    QTest::newRow("edit") << Typing(
        [](NoteStore &store) { store.updateDraft(store.snapshot().notes.first(), u"milk"_s); });
}

void NoteStoreTest::waitsAnewAfterAnEqualText()
{
    QFETCH(std::function<void(NoteStore &)>, type);
    Fixture fixture(snapshotOf({noteOf(u"tea"_s)}));
    // Due before the write of the first text.
    QTimer::singleShot(NoteStore::saveDelay / 2, Qt::PreciseTimer, &fixture.store,
                       [&] { type(fixture.store); });
    type(fixture.store);

    PassingTime::pass(1s);
    QCOMPARE(fixture.repository.saves(), 0);

    PassingTime::pass(1s);
    QCOMPARE(fixture.repository.saves(), 1);
}

void NoteStoreTest::writesNothingMoreAfterACommit_data()
{
    using Commit = std::function<bool(NoteStore &)>;
    QTest::addColumn<Commit>("commit");
    QTest::addColumn<bool>("fails");

    const auto first = [](const NoteStore &store) { return store.snapshot().notes.first(); };
    const QList<std::pair<const char *, Commit>> commits{
        {"flush", [](NoteStore &store) { return store.flush(); }},
        {"capture", [](NoteStore &store) { return store.saveCapture(); }},
        {"edit", [=](NoteStore &store) { return store.saveEdit(first(store)); }},
        {"deletion", [=](NoteStore &store) { return store.deleteNote(first(store)); }},
    };
    for (const auto &[name, commit] : commits) {
        QTest::addRow("%s", name) << commit << false;
        QTest::addRow("%s that fails", name) << commit << true;
    }
}

void NoteStoreTest::writesNothingMoreAfterACommit()
{
    QFETCH(std::function<bool(NoteStore &)>, commit);
    QFETCH(bool, fails);
    Fixture fixture(snapshotOf({noteOf(u"tea"_s)}));
    fixture.store.setDraft(u"milk"_s);
    if (fails)
        fixture.repository.failWith(noSpace);
    QCOMPARE(commit(fixture.store), !fails);
    QCOMPARE(fixture.repository.saves(), 1);
    fixture.repository.recover();

    PassingTime::pass(1s);

    QCOMPARE(fixture.repository.saves(), 1);
}

void NoteStoreTest::describesAnUnknownFailureAsItStands()
{
    Fixture fixture;
    fixture.repository.failWith(std::length_error("too much"));

    QVERIFY(!fixture.store.flush());

    QCOMPARE(fixture.store.errorMessage(), u"too much"_s);
    QVERIFY(!fixture.store.repositoryError().has_value());
    fixture.repository.recover();
    QVERIFY(fixture.store.flush());
    QVERIFY(!fixture.store.errorMessage().has_value());
}

void NoteStoreTest::keepsWhatIsTypedWithoutAPause()
{
    const PassingTime::Standstill standstill;
    Fixture fixture;
    for (int i = 0; i < 40; ++i) {
        fixture.store.setDraft(u"x"_s.repeated(i + 1));
        PassingTime::pass(50ms);
    }

    // Two seconds without a pause, and so without a save.
    QCOMPARE(fixture.repository.saves(), 0);
    const QList<NoteSnapshot> &kept = fixture.repository.kept();
    const auto keys = static_cast<qsizetype>((NoteStore::keepDelay + 50ms) / 50ms);
    qsizetype last = 0;
    for (const NoteSnapshot &snapshot : kept) {
        QVERIFY(snapshot.captureDraft.size() <= last + keys);
        last = snapshot.captureDraft.size();
    }
    QVERIFY(40 - last < keys);
    PassingTime::pass(1s);
    QCOMPARE(fixture.repository.stored().captureDraft, u"x"_s.repeated(40));
}

void NoteStoreTest::keepsEvenAFewLettersInTime()
{
    const PassingTime::Standstill standstill;
    Fixture fixture;
    fixture.store.setDraft(u"m"_s);
    PassingTime::pass(200ms);
    fixture.store.setDraft(u"mi"_s);
    QVERIFY(fixture.repository.kept().isEmpty());

    // Counted from the first letter, and not from the last.
    PassingTime::pass(100ms);

    QCOMPARE(fixture.repository.saves(), 0);
    QCOMPARE(fixture.repository.kept().size(), qsizetype(1));
    QCOMPARE(fixture.repository.kept().last().captureDraft, u"mi"_s);
}

void NoteStoreTest::keepsWhatCouldNotBeSavedAtOnce()
{
    const PassingTime::Standstill standstill;
    Fixture fixture;
    fixture.repository.failWith(noSpace);
    fixture.store.setDraft(u"milk"_s);

    QVERIFY(!fixture.store.flush());

    QCOMPARE(fixture.repository.kept().size(), qsizetype(1));
    QCOMPARE(fixture.repository.kept().last().captureDraft, u"milk"_s);
    // And nothing more, as long as nothing more is typed.
    PassingTime::pass(3s);
    QCOMPARE(fixture.repository.kept().size(), qsizetype(1));
}

void NoteStoreTest::keepsNothingMoreThatIsSaved()
{
    const PassingTime::Standstill standstill;
    Fixture fixture;
    fixture.store.setDraft(u"milk"_s);
    QVERIFY(fixture.store.flush());

    PassingTime::pass(3s);

    QVERIFY(fixture.repository.kept().isEmpty());
    QCOMPARE(fixture.repository.syncs(), 0);
}

void NoteStoreTest::syncsWhatHasBeenTheOnlyCopyForASecond()
{
    const PassingTime::Standstill standstill;
    Fixture fixture;
    fixture.repository.failWith(noSpace);
    fixture.store.setDraft(u"milk"_s);
    PassingTime::pass(400ms);
    QVERIFY(!fixture.repository.kept().isEmpty());
    PassingTime::pass(900ms);
    QCOMPARE(fixture.repository.syncs(), 0);

    PassingTime::pass(200ms);
    QCOMPARE(fixture.repository.syncs(), 1);

    // At rest nothing more happens, and a save makes an end of it.
    PassingTime::pass(5s);
    QCOMPARE(fixture.repository.syncs(), 1);
    fixture.store.setDraft(u"milk!"_s);
    fixture.repository.recover();
    QVERIFY(fixture.store.flush());
    PassingTime::pass(5s);
    QCOMPARE(fixture.repository.syncs(), 1);
}

void NoteStoreTest::keepsForTheNextStartAndSaysWhere()
{
    Fixture fixture;
    fixture.repository.failWith(noSpace);
    fixture.store.setDraft(u"milk"_s);

    QCOMPARE(fixture.store.keepForNextStart(), std::filesystem::path("/kept"));
    QCOMPARE(fixture.repository.kept().last().captureDraft, u"milk"_s);
    QCOMPARE(fixture.repository.syncs(), 1);

    fixture.repository.failToKeep();
    QVERIFY(!fixture.store.keepForNextStart());
}

void NoteStoreTest::savesSoonWhatWasRestored()
{
    auto repository = std::make_unique<FailingRepository>();
    FailingRepository &kept = *repository;
    kept.keepTyped({}, QUuid::createUuid());
    NoteStore store(std::move(repository));

    QVERIFY(store.hasPendingChanges());
    QCOMPARE(store.status(), u"Saving draft…"_s);
    PassingTime::pass(1s);

    QCOMPARE(kept.saves(), 1);
    QVERIFY(!store.hasPendingChanges());
}

void NoteStoreTest::saysWhatCouldNotBeRestored()
{
    auto repository = std::make_unique<FailingRepository>();
    FailingRepository &unreadable = *repository;
    unreadable.leaveAlone(Message{u"“%@” is too large."_s, {u"/kept"_s}});
    NoteStore store(std::move(repository));

    QVERIFY(!store.isReadOnly());
    QVERIFY(!store.hasPendingChanges());
    QCOMPARE(store.errorMessage(), u"“/kept” is too large."_s);
    QCOMPARE(store.errorContext(),
             u"What was typed last could not be read. It was left as it is."_s);
    QVERIFY(store.flush());
    QVERIFY(!store.errorMessage());
}

void NoteStoreTest::takesInNoHalfOfASurrogatePair()
{
    const Note note = noteOf(u"milk"_s);
    NoteSnapshot snapshot;
    snapshot.notes = {note};
    Fixture fixture(snapshot);
    const QString half = u"a"_s + QChar(0xD83E);

    fixture.store.setDraft(half);
    fixture.store.updateDraft(note, half);

    QCOMPARE(fixture.store.draft(), u"a\uFFFD"_s);
    QCOMPARE(fixture.store.text(note), u"a\uFFFD"_s);
}

void NoteStoreTest::followsChangesOfADraft()
{
    const Note note = noteOf(u"milk"_s);
    NoteSnapshot snapshot;
    snapshot.notes = {note};
    snapshot.captureDraft = u"one two"_s;
    Fixture fixture(snapshot);
    const QSignalSpy draft(&fixture.store, &NoteStore::draftChanged);
    const QSignalSpy edits(&fixture.store, &NoteStore::editsChanged);

    QVERIFY(fixture.store.changeDraft(note, {0, {}, u"oat "_s}));
    QVERIFY(fixture.store.hasPendingChanges());
    QVERIFY(fixture.store.flush());
    QVERIFY(fixture.store.changeDraft({4, u"two"_s, u"2"_s}));

    QCOMPARE(fixture.store.draft(), u"one 2"_s);
    QCOMPARE(fixture.store.text(note), u"oat milk"_s);
    QCOMPARE(fixture.store.notes().first().body, u"milk"_s);
    QCOMPARE(draft.count(), 1);
    QCOMPARE(edits.count(), 1);
    QVERIFY(fixture.store.hasPendingChanges());
    QVERIFY(fixture.store.flush());
    QCOMPARE(fixture.repository.stored().captureDraft, u"one 2"_s);
}

void NoteStoreTest::beginsADraftWithAChange()
{
    Fixture fixture(NoteSnapshot{});

    QVERIFY(fixture.store.changeDraft({0, u""_s, u"m"_s}));

    QCOMPARE(fixture.store.draft(), u"m"_s);
}

void NoteStoreTest::makesNoChangeThatDoesNotFit()
{
    NoteSnapshot snapshot;
    snapshot.captureDraft = u"one"_s;
    Fixture fixture(snapshot);

    QVERIFY(!fixture.store.changeDraft({1, u"x"_s, u"y"_s}));
    QVERIFY(!fixture.store.changeDraft({4, {}, u"y"_s}));

    QCOMPARE(fixture.store.draft(), u"one"_s);
    QVERIFY(!fixture.store.hasPendingChanges());
}

void NoteStoreTest::staysPendingWhenTheDelayedWriteFails()
{
    Fixture fixture;
    fixture.repository.failWith(noSpace);
    fixture.store.setDraft(u"milk"_s);

    PassingTime::pass(1s);

    QCOMPARE(fixture.store.status(), u"Not saved · Retry"_s);

    QVERIFY(fixture.store.hasPendingChanges());
    QCOMPARE(fixture.store.draft(), u"milk"_s);

    fixture.repository.recover();
    fixture.store.setDraft(u"milk and bread"_s);
    PassingTime::pass(1s);
    QCOMPARE(fixture.repository.stored().captureDraft, u"milk and bread"_s);
    QCOMPARE(fixture.store.status(), u"Saved on this Mac"_s);
}

void NoteStoreTest::keepsADraftExactlyAsTyped()
{
    const Note note = noteOf(u"milk"_s);
    Fixture fixture(snapshotOf({note}));

    fixture.store.setDraft(u" \r\ntyped\t"_s);
    fixture.store.updateDraft(note, u" edited\n\n"_s);
    QVERIFY(fixture.store.flush());

    QCOMPARE(fixture.repository.stored().captureDraft, u" \r\ntyped\t"_s);
    QCOMPARE(fixture.repository.stored().editingDrafts.value(canonicalText(note.id)),
             u" edited\n\n"_s);
}

void NoteStoreTest::tellsOfChangesOnly()
{
    Fixture fixture;
    const QSignalSpy notes(&fixture.store, &NoteStore::notesChanged);
    const QSignalSpy draft(&fixture.store, &NoteStore::draftChanged);
    const QSignalSpy edits(&fixture.store, &NoteStore::editsChanged);
    const QSignalSpy pending(&fixture.store, &NoteStore::hasPendingChangesChanged);
    const QSignalSpy message(&fixture.store, &NoteStore::errorMessageChanged);
    const QSignalSpy context(&fixture.store, &NoteStore::errorContextChanged);
    const QSignalSpy error(&fixture.store, &NoteStore::repositoryErrorChanged);

    fixture.store.setDraft(u"milk"_s);
    QCOMPARE(draft.count(), 1);
    fixture.store.setDraft(u"milk"_s);
    QCOMPARE(draft.count(), 1);
    QCOMPARE(pending.count(), 1);

    fixture.repository.failWith(RepositoryError::externalChange());
    for (int attempt = 0; attempt < 2; ++attempt) {
        QVERIFY(!fixture.store.flush());
        QCOMPARE(message.count(), 1);
        QCOMPARE(context.count(), 1);
        QCOMPARE(error.count(), 1);
        QCOMPARE(pending.count(), 1);
    }

    fixture.repository.recover();
    for (int attempt = 0; attempt < 2; ++attempt) {
        QVERIFY(fixture.store.flush());
        QCOMPARE(message.count(), 2);
        QCOMPARE(context.count(), 1);
        QCOMPARE(error.count(), 2);
        QCOMPARE(pending.count(), 2);
        QCOMPARE(draft.count(), 1);
    }

    QCOMPARE(notes.count(), 0);
    QVERIFY(fixture.store.saveCapture());
    QCOMPARE(draft.count(), 2);
    QCOMPARE(notes.count(), 1);
    QCOMPARE(edits.count(), 0);
}

void NoteStoreTest::tellsOfAnEditThatChanges()
{
    const Note note = noteOf(u"milk"_s);
    Fixture fixture(snapshotOf({note}));
    const QSignalSpy notes(&fixture.store, &NoteStore::notesChanged);
    const QSignalSpy draft(&fixture.store, &NoteStore::draftChanged);
    const QSignalSpy edits(&fixture.store, &NoteStore::editsChanged);

    fixture.store.updateDraft(note, QString());
    QCOMPARE(edits.count(), 1);
    fixture.store.updateDraft(note, QString());
    QCOMPARE(edits.count(), 1);
    fixture.store.updateDraft(note, u"milk"_s);
    QCOMPARE(edits.count(), 2);
    fixture.store.updateDraft(note, u"milk"_s);
    QCOMPARE(edits.count(), 2);
    QCOMPARE(notes.count(), 0);

    QVERIFY(fixture.store.deleteNote(note));
    QCOMPARE(edits.count(), 3);
    QCOMPARE(notes.count(), 1);
    QCOMPARE(draft.count(), 0);
}

void NoteStoreTest::canBeDestroyedWhileADraftWaits()
{
    auto fixture = std::make_unique<Fixture>();
    fixture->store.setDraft(u"milk"_s);
    fixture.reset();

    // A timer left behind would write through a store that is gone.
    Fixture later;
    later.store.setDraft(u"bread"_s);
    PassingTime::pass(1s);
    QCOMPARE(later.repository.stored().captureDraft, u"bread"_s);
}

void NoteStoreTest::showsTheLastUpdatedNoteFirst()
{
    const QList<Note> stored{noteOf(u"oldest"_s, 1), noteOf(u"newest"_s, 3),
                             noteOf(u"middle"_s, 2)};
    Fixture fixture(snapshotOf(stored));
    QCOMPARE(bodies(fixture.store.notes()), (QStringList{u"newest"_s, u"middle"_s, u"oldest"_s}));
    QCOMPARE(bodies(Fixture(snapshotOf({stored[0], stored[2], stored[1]})).store.notes()),
             (QStringList{u"newest"_s, u"middle"_s, u"oldest"_s}));

    QVERIFY(fixture.store.saveEdit(stored[0]));

    QCOMPARE(bodies(fixture.store.notes()), (QStringList{u"oldest"_s, u"newest"_s, u"middle"_s}));
    QCOMPARE(bodies(fixture.store.snapshot().notes),
             (QStringList{u"oldest"_s, u"newest"_s, u"middle"_s}));
}

void NoteStoreTest::keepsTheStoredOrderOfNotesOfTheSameTime()
{
    QList<Note> stored;
    for (int i = 0; i < 100; ++i)
        stored << noteOf(u"note %1"_s.arg(i), i % 2);
    QStringList expected;
    for (const int time : {1, 0}) {
        for (int i = 0; i < 100; ++i) {
            if (i % 2 == time)
                expected << u"note %1"_s.arg(i);
        }
    }
    const Fixture fixture(snapshotOf(stored));

    QCOMPARE(bodies(fixture.store.notes()), expected);
    QCOMPARE(bodies(fixture.store.matching(u"note"_s).toList()), expected);
}

void NoteStoreTest::findsEveryNoteByABlankQuery()
{
    const Fixture fixture(snapshotOf({noteOf(u"a"_s, 1), noteOf(u"b"_s, 2)}));

    QCOMPARE(fixture.store.matching(QString()).toList(), fixture.store.notes());
    QCOMPARE(fixture.store.matching(u" \n"_s).toList(), fixture.store.notes());
}

void NoteStoreTest::findsWithoutRegardToCaseAndAccents()
{
    const Fixture fixture(snapshotOf({noteOf(u"Tea at the CAFÉ NOËL"_s), noteOf(u"cafe noel"_s)}));

    QCOMPARE(fixture.store.matching(u"cafe noel"_s).size(), qsizetype(2));
    QCOMPARE(fixture.store.matching(u"CAFÉ Noël"_s).size(), qsizetype(2));
    QCOMPARE(fixture.store.matching(u"cafes"_s).size(), qsizetype(0));
}

void NoteStoreTest::searchesTheSavedBodyAndNotTheDraft()
{
    const Note note = noteOf(u"milk"_s);
    Fixture fixture(snapshotOf({note}));
    fixture.store.updateDraft(note, u"bread"_s);

    QCOMPARE(fixture.store.matching(u"milk"_s).toList(), QList<Note>{note});
    QVERIFY(fixture.store.matching(u"bread"_s).isEmpty());
}

void NoteStoreTest::searchesForTheTrimmedQueryAsOneText()
{
    const Fixture fixture(snapshotOf({noteOf(u"oat milk"_s)}));

    QCOMPARE(fixture.store.matching(u" oat milk \n"_s).size(), qsizetype(1));
    QVERIFY(fixture.store.matching(u"milk oat"_s).isEmpty());
    QVERIFY(fixture.store.matching(u"oat  milk"_s).isEmpty());
}

void NoteStoreTest::showsWhatIsFoundInDisplayOrder()
{
    const Fixture fixture(snapshotOf({noteOf(u"milk 1"_s, 1), noteOf(u"bread"_s, 4),
                                      noteOf(u"milk 3"_s, 3), noteOf(u"milk 2"_s, 2)}));

    QCOMPARE(bodies(fixture.store.matching(u"milk"_s).toList()),
             (QStringList{u"milk 3"_s, u"milk 2"_s, u"milk 1"_s}));
}

QTEST_GUILESS_MAIN(NoteStoreTest)
#include "NoteStoreTest.moc"
