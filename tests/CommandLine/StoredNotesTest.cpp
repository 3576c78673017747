// SPDX-License-Identifier: MIT
#include "StoredNotes.h"

#include "DataFolder.h"
#include "FolderLock.h"
#include "LocalNoteRepository.h"
#include "Notes.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

/// The notes beside other programs, on a computer without a session bus.
class StoredNotesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsWithoutTheLockAndMovesNothing();
    void addsSeveralAllOrNone();
    void leavesTypedTextWhereItIs();
    void addsToAFolderThatWasMovedAway();
};

void StoredNotesTest::readsWithoutTheLockAndMovesNothing()
{
    const DataFolder data;
    data.write("notes.json", R"({"version": 1, "captureDraft": "", "editingDrafts": {}, "notes": [)"
                             R"({"id": "8C5B6F0E-3C1D-4E0A-9C55-000000000001", "body": "old",)"
                             R"("createdAt": 1, "updatedAt": 1}]})");
    const auto before = data.content();
    LocalNoteRepository window(data.fileURL());
    QVERIFY(window.claim());

    NoteSnapshot snapshot;
    QVERIFY(!StoredNotes(data.fileURL()).read(snapshot));

    QCOMPARE(snapshot.notes.size(), 1);
    QCOMPARE(snapshot.notes.first().body, u"old"_s);
    QCOMPARE(data.content(), before);
}

void StoredNotesTest::addsSeveralAllOrNone()
{
    const DataFolder data;
    StoredNotes stored(data.fileURL());
    QVERIFY(!stored.add({numberedNote(1, u"one"_s), numberedNote(2, u"two"_s)}));
    const auto before = data.content();

    const auto complaint = stored.add({numberedNote(3, u"three"_s), numberedNote(1, u"one"_s)});

    QVERIFY(complaint.has_value());
    QCOMPARE(complaint->status, ExitStatus::folder);
    QCOMPARE(data.content(), before);
}

void StoredNotesTest::leavesTypedTextWhereItIs()
{
    const DataFolder data;
    LocalNoteRepository(data.fileURL(), data.journalFolders())
        .save(snapshotOf({numberedNote(1, u"one"_s)}, u"saved"_s));
    {
        LocalNoteRepository window(data.fileURL(), data.journalFolders());
        NoteSnapshot typed = window.load();
        typed.captureDraft = u"typed last"_s;
        window.keepTyped(typed, numberedId(9));
    }

    QVERIFY(!StoredNotes(data.fileURL()).add({numberedNote(2, u"two"_s)}));
    QVERIFY(!StoredNotes(data.fileURL()).add({numberedNote(3, u"3"_s), numberedNote(4, u"4"_s)}));

    LocalNoteRepository next(data.fileURL(), data.journalFolders());
    const NoteSnapshot found = next.load();
    QCOMPARE(found.captureDraft, u"typed last"_s);
    QCOMPARE(found.notes.size(), 4);
}

void StoredNotesTest::addsToAFolderThatWasMovedAway()
{
    const DataFolder data;
    StoredNotes stored(data.fileURL());
    QVERIFY(!stored.add({numberedNote(1, u"one"_s)}));
    std::filesystem::rename(data.path(), data.path().parent_path() / "away");

    QVERIFY(!stored.add({numberedNote(2, u"two"_s)}));

    NoteSnapshot snapshot;
    QVERIFY(!stored.read(snapshot));
    QCOMPARE(snapshot.notes, QList<Note>{numberedNote(2, u"two"_s)});
}

QTEST_GUILESS_MAIN(StoredNotesTest)
#include "StoredNotesTest.moc"
