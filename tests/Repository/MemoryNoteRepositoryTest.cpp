// SPDX-License-Identifier: MIT
#include "MemoryNoteRepository.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

class MemoryNoteRepositoryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void startsWithTheSnapshotThatItIsGiven();
    void startsEmptyOtherwise();
    void returnsASnapshotOfAnyVersionUnchanged();
    void keepsEvenWhatFilesCouldNot();
    void hasNoFolder();
};

void MemoryNoteRepositoryTest::startsWithTheSnapshotThatItIsGiven()
{
    const NoteSnapshot snapshot{1, {{QUuid::createUuid(), u"milk"_s, {1}, {2}}}, u"draft"_s, {}};

    MemoryNoteRepository repository(snapshot);

    QCOMPARE(repository.load(), snapshot);
}

void MemoryNoteRepositoryTest::startsEmptyOtherwise()
{
    MemoryNoteRepository repository;

    QCOMPARE(repository.load(), NoteSnapshot());
}

void MemoryNoteRepositoryTest::returnsASnapshotOfAnyVersionUnchanged()
{
    MemoryNoteRepository repository;
    NoteSnapshot snapshot;
    snapshot.version = 7;

    repository.save(snapshot);

    QCOMPARE(repository.load(), snapshot);
    QCOMPARE(repository.load().version, qint64(7));
}

void MemoryNoteRepositoryTest::keepsEvenWhatFilesCouldNot()
{
    MemoryNoteRepository repository;
    const Note note{QUuid::createUuid(), u"milk"_s, {1}, {2}};
    const NoteSnapshot snapshot{1, {note, note}, {}, {{u"not an identifier"_s, u"text"_s}}};

    repository.save(snapshot);

    QCOMPARE(repository.load(), snapshot);
}

void MemoryNoteRepositoryTest::hasNoFolder()
{
    QVERIFY(!MemoryNoteRepository().notesFolderURL());
}

QTEST_GUILESS_MAIN(MemoryNoteRepositoryTest)
#include "MemoryNoteRepositoryTest.moc"
