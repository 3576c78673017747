// SPDX-License-Identifier: MIT
#include "NoteStore.h"

#include "FailingRepository.h"
#include "FileError.h"

#include <QSignalSpy>
#include <QTest>
#include <cerrno>

using namespace Qt::Literals::StringLiterals;

namespace {

const Note note{QUuid::createUuid(), u"body"_s, {1}, {2}};

NoteSnapshot withDraft(const QString &draft)
{
    return {1, {note}, draft, {}};
}

} // namespace

/// Another program, here or on another computer, changes the notes while the store has them.
class OutsideChangeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void isTakenInBeforeTheNotesAreShown();
    void isLeftAloneWhileSomethingWaitsToBeWritten();
    void isLeftAloneWhileAnErrorStands();
    void isNoReasonToFailWithNothingToBeWritten();
    void isTakenInBeforeANoteIsAdded();
    void isTakenInBeforeNotesOfOthersAreAdded();
    void isTakenInAgainWhileOthersGoOnChanging();
    void refusesNotesOfOthersQuietlyWhenItCannotBeRead();
    void failsTheSaveOfWhatWaits();
    void isTakenInOnRequest();
    void endsAReadOnlyStore();
    void leavesEverythingWhenItCannotBeRead();
    void offersNoReloadForADiskThatFails();
    void offersToTakeInWhatKeepsASaveFromSucceeding();
    void takesInCopiesAndKeepsWhatIsTyped();
    void saysThatItCouldNotReadWhenCopiesCannotBeTakenIn();
    void changesNothingWhenCopiesCannotBeTakenIn();
    void tellsOfCopiesThatKeepNothingFromBeingRead();
    void hearsThatCopiesAreGone();

private:
    FailingRepository *m_repository = nullptr;
    std::optional<NoteStore> m_store;
};

void OutsideChangeTest::init()
{
    auto repository = std::make_unique<FailingRepository>(withDraft(u"old"_s));
    m_repository = repository.get();
    m_store.emplace(std::move(repository));
}

void OutsideChangeTest::isTakenInBeforeTheNotesAreShown()
{
    m_repository->changeOutside(withDraft(u"theirs"_s));
    const QSignalSpy changed(&*m_store, &NoteStore::draftChanged);

    m_store->takeInChanges();

    QCOMPARE(changed.size(), 1);
    QCOMPARE(m_store->draft(), u"theirs"_s);
    QCOMPARE(m_store->status(), u"Saved on this Mac"_s);
    QVERIFY(m_store->saveCapture());

    m_store->takeInChanges();
    QCOMPARE(changed.size(), 2);
}

void OutsideChangeTest::isLeftAloneWhileSomethingWaitsToBeWritten()
{
    m_store->setDraft(u"ours"_s);
    m_repository->changeOutside(withDraft(u"theirs"_s));

    m_store->takeInChanges();

    QCOMPARE(m_store->draft(), u"ours"_s);
    QVERIFY(m_store->hasPendingChanges());
}

void OutsideChangeTest::isLeftAloneWhileAnErrorStands()
{
    m_repository->failWith(FileError("/notes/a.md", EIO));
    QVERIFY(!m_store->deleteNote(note));
    m_repository->recover();
    m_repository->changeOutside(withDraft(u"theirs"_s));

    m_store->takeInChanges();

    QCOMPARE(m_store->draft(), u"old"_s);
    QVERIFY(m_store->failure());
}

void OutsideChangeTest::isNoReasonToFailWithNothingToBeWritten()
{
    m_repository->changeOutside(withDraft(u"theirs"_s));

    QVERIFY(m_store->flush());

    QCOMPARE(m_store->draft(), u"theirs"_s);
    QCOMPARE(m_repository->stored(), withDraft(u"theirs"_s));
    QVERIFY(!m_store->failure());
}

void OutsideChangeTest::isTakenInBeforeANoteIsAdded()
{
    m_repository->changeOutside(withDraft(u"theirs"_s));

    QVERIFY(m_store->add(u"dropped"_s));

    QCOMPARE(m_repository->stored().captureDraft, u"theirs"_s);
    QCOMPARE(m_repository->stored().notes.first().body, u"dropped"_s);
}

void OutsideChangeTest::isTakenInBeforeNotesOfOthersAreAdded()
{
    m_repository->changeOutside(withDraft(u"theirs"_s));
    const Note added{QUuid::createUuid(), u"added"_s, {3}, {3}};

    QVERIFY(!m_store->addNotes({added}));

    QCOMPARE(m_repository->stored(), (NoteSnapshot{1, {added, note}, u"theirs"_s, {}}));
    QCOMPARE(m_store->snapshot(), m_repository->stored());
    QVERIFY(!m_store->failure());
}

void OutsideChangeTest::isTakenInAgainWhileOthersGoOnChanging()
{
    m_repository->changeOutside(withDraft(u"theirs"_s));
    m_repository->changeOutsideAgain(3);

    QVERIFY(!m_store->addNotes({{QUuid::createUuid(), u"added"_s, {3}, {3}}}));

    QCOMPARE(m_repository->stored().captureDraft, u"theirs..."_s);
    QCOMPARE(m_repository->stored().notes.first().body, u"added"_s);
    m_repository->changeOutside(withDraft(u"theirs once more"_s));
    m_repository->changeOutsideAgain(100);
    QVERIFY(m_store->addNotes({{QUuid::createUuid(), u"too many"_s, {3}, {3}}}));
    QVERIFY(!m_store->failure());
}

void OutsideChangeTest::refusesNotesOfOthersQuietlyWhenItCannotBeRead()
{
    m_repository->changeOutside(withDraft(u"theirs"_s));
    m_repository->failToRead(RepositoryError::invalidMarkdown());

    const auto refusal = m_store->addNotes({{QUuid::createUuid(), u"added"_s, {3}, {3}}});

    QCOMPARE(refusal->message, RepositoryError::invalidMarkdown().message());
    QCOMPARE(m_store->snapshot(), withDraft(u"old"_s));
    QVERIFY(!m_store->failure());
}

void OutsideChangeTest::failsTheSaveOfWhatWaits()
{
    m_store->setDraft(u"ours"_s);
    m_repository->changeOutside(withDraft(u"theirs"_s));

    QVERIFY(!m_store->flush());

    QCOMPARE(m_store->repositoryError(), RepositoryError::externalChange());
    QVERIFY(m_store->canReload());
    QCOMPARE(m_store->draft(), u"ours"_s);
    QCOMPARE(m_repository->stored(), withDraft(u"theirs"_s));
}

void OutsideChangeTest::isTakenInOnRequest()
{
    m_store->setDraft(u"ours"_s);
    m_repository->changeOutside(withDraft(u"theirs"_s));
    QVERIFY(!m_store->flush());

    QVERIFY(m_store->reload());

    QCOMPARE(m_store->draft(), u"ours\n\ntheirs"_s);
    QVERIFY(!m_store->failure());
    QVERIFY(!m_store->canReload());
    QVERIFY(m_store->hasPendingChanges());
    QTRY_COMPARE(m_repository->stored(), withDraft(u"ours\n\ntheirs"_s));
    QVERIFY(!m_store->hasPendingChanges());
}

void OutsideChangeTest::endsAReadOnlyStore()
{
    auto repository = std::make_unique<FailingRepository>(withDraft(u"old"_s));
    repository->failWith(RepositoryError::invalidMarkdown());
    FailingRepository &unreadable = *repository;
    NoteStore store(std::move(repository));
    QVERIFY(store.isReadOnly());
    QVERIFY(store.canReload());
    QVERIFY(!store.reload());
    QVERIFY(store.isReadOnly());

    unreadable.recover();
    QVERIFY(store.reload());

    QVERIFY(!store.isReadOnly());
    QVERIFY(!store.failure());
    QCOMPARE(store.draft(), u"old"_s);
    store.setDraft(u"new"_s);
    QVERIFY(store.flush());
}

void OutsideChangeTest::leavesEverythingWhenItCannotBeRead()
{
    m_repository->failWith(FileError("/notes/a.md", Reason::notUtf8));

    m_store->takeInChanges();

    QVERIFY(!m_store->isReadOnly());
    QVERIFY(m_store->canReload());
    QCOMPARE(m_store->errorPlace(), std::filesystem::path("/notes/a.md"));
    QCOMPARE(m_store->errorContext(),
             u"Could not read your notes. Original files were protected."_s);
    QCOMPARE(m_store->snapshot(), withDraft(u"old"_s));
}

void OutsideChangeTest::offersNoReloadForADiskThatFails()
{
    m_repository->failWith(FileError("/notes/a.md", ENOSPC));

    QVERIFY(!m_store->deleteNote(note));

    QVERIFY(!m_store->canReload());
    QVERIFY(!m_store->canTakeIn());
}

void OutsideChangeTest::offersToTakeInWhatKeepsASaveFromSucceeding()
{
    for (const RepositoryError &error :
         {RepositoryError::recoveryRequired(), RepositoryError::invalidMarkdown()}) {
        m_repository->failWith(error);

        QVERIFY(!m_store->deleteNote(note));

        QVERIFY(m_store->canTakeIn());
    }
}

void OutsideChangeTest::takesInCopiesAndKeepsWhatIsTyped()
{
    m_store->setDraft(u"ours"_s);
    NoteSnapshot then = withDraft(u"old"_s);
    then.notes.append(Note{QUuid::createUuid(), u"a copy"_s, {}, {}});
    m_repository->putBeside({.steps = {{}}, .originals = {}, .noteCount = 1}, then);
    m_repository->failToRead(FileError("/notes/a.md", Reason::notUtf8));
    QVERIFY(!m_store->reload());
    QVERIFY(m_store->canTakeIn());

    const auto plan = m_store->planTakeIn();
    QVERIFY(plan);
    QVERIFY(m_store->takeIn(*plan));

    QVERIFY(!m_store->canTakeIn());
    QVERIFY(!m_store->failure());
    QCOMPARE(m_store->snapshot().notes, then.notes);
    QCOMPARE(m_store->draft(), u"ours"_s);
    QVERIFY(m_store->flush());
}

void OutsideChangeTest::saysThatItCouldNotReadWhenCopiesCannotBeTakenIn()
{
    const QString couldNotRead = u"Could not read your notes. Original files were protected."_s;
    m_repository->failWith(FileError("/state", ENOSPC));
    QVERIFY(!m_store->deleteNote(note));
    QVERIFY(m_store->errorContext() != couldNotRead);

    QVERIFY(!m_store->takeIn({}));
    QCOMPARE(m_store->errorContext(), couldNotRead);

    QVERIFY(!m_store->deleteNote(note));
    QVERIFY(!m_store->planTakeIn());
    QCOMPARE(m_store->errorContext(), couldNotRead);
}

void OutsideChangeTest::changesNothingWhenCopiesCannotBeTakenIn()
{
    m_repository->putBeside({.steps = {{}}, .originals = {}, .noteCount = 1}, {});
    m_repository->failToRead(RepositoryError::recoveryRequired());
    QVERIFY(!m_store->reload());

    QVERIFY(!m_store->takeIn({}));
    QCOMPARE(m_store->repositoryError(), RepositoryError::externalChange());
    m_repository->failWith(FileError("/state", EACCES));
    QVERIFY(!m_store->planTakeIn());

    QVERIFY(m_store->errorMessage()->contains(u"/state"));
    QCOMPARE(m_store->snapshot(), withDraft(u"old"_s));
}

void OutsideChangeTest::tellsOfCopiesThatKeepNothingFromBeingRead()
{
    const QSignalSpy told(&*m_store, &NoteStore::hasCopiesChanged);
    m_repository->putBeside({.steps = {{}}, .originals = {}, .noteCount = 1}, withDraft(u"both"_s));
    m_repository->changeOutside(withDraft(u"theirs"_s));
    QVERIFY(!m_store->canTakeIn());

    m_store->takeInChanges();

    QVERIFY(!m_store->failure());
    QVERIFY(m_store->canTakeIn());
    QCOMPARE(told.size(), 1);
    QVERIFY(m_store->takeIn(*m_store->planTakeIn()));
    QVERIFY(!m_store->canTakeIn());
    QCOMPARE(told.size(), 2);
    QCOMPARE(m_store->draft(), u"both"_s);
}

void OutsideChangeTest::hearsThatCopiesAreGone()
{
    m_repository->putBeside({.steps = {{}}, .originals = {}, .noteCount = 1}, {});
    QVERIFY(m_store->reload());
    QVERIFY(m_store->hasCopies());
    m_repository->putBeside({}, {});

    m_store->takeInChanges();

    QVERIFY(!m_store->hasCopies());
}

QTEST_GUILESS_MAIN(OutsideChangeTest)
#include "OutsideChangeTest.moc"
