// SPDX-License-Identifier: MIT
#include "LocalNoteRepository.h"

#include "DataFolder.h"
#include "Notes.h"
#include "Thrown.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {

NoteSnapshot notes(const QString &draft)
{
    return snapshotOf({numberedNote(1, u"kept"_s)}, draft);
}

std::optional<Reason> reasonOf(const std::optional<FileError> &error)
{
    return error ? std::optional(error->reason()) : std::nullopt;
}

} // namespace

/// Two programs that were started on one data folder: the second one never writes into it.
class SecondProgramTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void findsTheFolderTaken();
    void claimsAFolderThatIsNotThereYet();
    void readsAndDoesNotWrite();
    void keepsItsTypingApart();
    void movesNoOlderNotes();
    void isRefusedOnceTheFirstHasMadeTheFolder();
    void mayWriteWhenTheFirstHasEnded();
};

void SecondProgramTest::findsTheFolderTaken()
{
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(notes(u"old"_s));
    LocalNoteRepository first(data.fileURL());
    LocalNoteRepository second(data.fileURL());
    const auto before = data.content();

    QVERIFY(first.claim());

    QVERIFY(!second.claim());
    QVERIFY(first.claim());
    QCOMPARE(data.content(), before);
}

void SecondProgramTest::claimsAFolderThatIsNotThereYet()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());

    QVERIFY(repository.claim());

    QVERIFY(!std::filesystem::exists(data.path()));
}

void SecondProgramTest::readsAndDoesNotWrite()
{
    const DataFolder data;
    LocalNoteRepository first(data.fileURL());
    first.save(notes(u"old"_s));
    const auto before = data.content();
    LocalNoteRepository second(data.fileURL());

    QCOMPARE(second.load(), notes(u"old"_s));
    const auto error = thrown<FileError>([&] { second.save(notes(u"new"_s)); });

    QCOMPARE(reasonOf(error), Reason::inUse);
    QCOMPARE(error->path(), data.path());
    QCOMPARE(data.content(), before);
}

void SecondProgramTest::keepsItsTypingApart()
{
    const DataFolder data;
    const LocalNoteRepository::Folders journal{data.path("state")};
    // Both start on what a third one left, before there are notes.
    LocalNoteRepository(data.fileURL(), journal).keepTyped(notes(u"left"_s), numberedId(2));
    LocalNoteRepository first(data.fileURL(), journal);
    LocalNoteRepository second(data.fileURL(), journal);
    QCOMPARE(first.load().captureDraft, u"left"_s);
    QCOMPARE(second.load().captureDraft, u"left"_s);
    first.save(notes(u"of the first"_s));

    second.keepTyped(notes(u"left, then typed"_s), numberedId(2));
    first.keepTyped(notes(u"of the first, too"_s), numberedId(3));
    first.save(notes(u"saved"_s));

    const QString next = LocalNoteRepository(data.fileURL(), journal).load().captureDraft;
    QCOMPARE(next, u"left, then typed\n\nsaved"_s);
}

void SecondProgramTest::movesNoOlderNotes()
{
    const DataFolder data;
    data.write("notes.json",
               R"({"version": 1, "captureDraft": "old", "editingDrafts": {}, "notes": []})");
    LocalNoteRepository first(data.fileURL());
    QVERIFY(first.claim());
    const auto before = data.content();
    LocalNoteRepository second(data.fileURL());

    const auto error = thrown<FileError>([&] { static_cast<void>(second.load()); });

    QCOMPARE(reasonOf(error), Reason::inUse);
    QCOMPARE(data.content(), before);
}

void SecondProgramTest::isRefusedOnceTheFirstHasMadeTheFolder()
{
    const DataFolder data;
    LocalNoteRepository first(data.fileURL());
    LocalNoteRepository second(data.fileURL());
    QVERIFY(first.claim());
    QVERIFY(second.claim());
    QCOMPARE(second.load(), NoteSnapshot());
    first.save(notes(u"first"_s));
    const auto before = data.content();

    const auto error = thrown<FileError>([&] { second.save(notes(u"second"_s)); });

    QCOMPARE(reasonOf(error), Reason::inUse);
    QCOMPARE(data.content(), before);
}

void SecondProgramTest::mayWriteWhenTheFirstHasEnded()
{
    const DataFolder data;
    std::optional<LocalNoteRepository> first(data.fileURL());
    first->save(notes(u"old"_s));
    LocalNoteRepository second(data.fileURL());
    QVERIFY(!second.claim());

    first.reset();

    QVERIFY(second.claim());
    QCOMPARE(second.load(), notes(u"old"_s));
    second.save(notes(u"new"_s));
    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), notes(u"new"_s));
}

QTEST_GUILESS_MAIN(SecondProgramTest)
#include "SecondProgramTest.moc"
