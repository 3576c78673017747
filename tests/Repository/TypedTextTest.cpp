// SPDX-License-Identifier: MIT
#include "LocalNoteRepository.h"

#include "DataFolder.h"
#include "Notes.h"
#include "Thrown.h"
#include "Tidy.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto captureFile = ".quillmark-typed-capture";

/// Of the note that every test begins with.
QString noteKey()
{
    return canonicalText(numberedId(1));
}

std::string noteTypedFile()
{
    return ".quillmark-typed-" + noteKey().toStdString();
}

NoteSnapshot saved()
{
    return snapshotOf({numberedNote(1, u"body"_s)}, u"draft"_s);
}

NoteSnapshot typed()
{
    return snapshotOf({numberedNote(1, u"body"_s)}, u"draft and more"_s,
                      {{noteKey(), u"body, too"_s}});
}

NoteSnapshot loaded(const DataFolder &data)
{
    return LocalNoteRepository(data.fileURL()).load();
}

} // namespace

/// What becomes of the text that a program was killed with.
class TypedTextTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void comesBackWithTheNextLoad();
    void comesBackWhenThereWereNoNotesYet();
    void isWrittenForTheUserAloneAndBesideTheNotes();
    void keepsTheLastOfIt();
    void goesWithTheNextSave();
    void goesAlsoWhenTheSaveIsThatOfTheNextStart();
    void isOutOfDateOnceAnotherTextWasSaved();
    void isOutOfDateOnceItBecameANote();
    void isIgnoredWhenItIsTorn_data();
    void isIgnoredWhenItIsTorn();
    void isIgnoredForANoteThatIsGone();
    void isNotWrittenWhereNothingWasTyped();
    void staysWhenASaveNeverLoadedIt();
    void doesNotFollowLinks();

private:
    std::optional<DataFolder> m_data;
};

void TypedTextTest::init()
{
    m_data.emplace();
    LocalNoteRepository repository(m_data->fileURL());
    repository.save(saved());
    repository.keepTyped(typed(), numberedId(9));
}

void TypedTextTest::comesBackWithTheNextLoad()
{
    QCOMPARE(loaded(*m_data), typed());
    QCOMPARE(m_data->read("Markdown/Drafts/capture.md"), "draft");
    // Also when that one was killed before it saved.
    QCOMPARE(loaded(*m_data), typed());
}

void TypedTextTest::comesBackWhenThereWereNoNotesYet()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    static_cast<void>(repository.load());

    repository.keepTyped(snapshotOf({}, u"first words"_s), numberedId(9));

    QCOMPARE(loaded(data), snapshotOf({}, u"first words"_s));
    QVERIFY(!data.holds("Markdown"));
}

void TypedTextTest::isWrittenForTheUserAloneAndBesideTheNotes()
{
    QCOMPARE(m_data->status(captureFile).st_mode & 07777, 0600U);
    QCOMPARE(m_data->count(".quillmark-"), 2);
    QVERIFY(m_data->holds(noteTypedFile()));
}

void TypedTextTest::keepsTheLastOfIt()
{
    LocalNoteRepository repository(m_data->fileURL());
    NoteSnapshot snapshot = repository.load();

    snapshot.captureDraft = u"another"_s;
    repository.keepTyped(snapshot, numberedId(9));
    // Back to what is saved, which has to be kept as well.
    snapshot.captureDraft = u"draft"_s;
    repository.keepTyped(snapshot, numberedId(9));

    QCOMPARE(loaded(*m_data).captureDraft, u"draft"_s);
}

void TypedTextTest::goesWithTheNextSave()
{
    LocalNoteRepository repository(m_data->fileURL());
    NoteSnapshot snapshot = repository.load();
    snapshot.captureDraft += u"!"_s;
    repository.keepTyped(snapshot, numberedId(9));

    repository.save(snapshot);
    tidyUp(repository);

    QCOMPARE(m_data->count(".quillmark-"), 0);
    QCOMPARE(loaded(*m_data), snapshot);
}

void TypedTextTest::goesAlsoWhenTheSaveIsThatOfTheNextStart()
{
    LocalNoteRepository repository(m_data->fileURL());

    repository.save(repository.load());
    tidyUp(repository);

    QCOMPARE(m_data->count(".quillmark-"), 0);
    QCOMPARE(m_data->read("Markdown/Drafts/capture.md"), "draft and more");
    QCOMPARE(loaded(*m_data), typed());
}

void TypedTextTest::isOutOfDateOnceAnotherTextWasSaved()
{
    // As by a program that was killed after its save and before its clean-up.
    m_data->write("Markdown/Drafts/capture.md", "saved later");
    m_data->write(draftFile(numberedId(1)), "saved later, too");

    QCOMPARE(loaded(*m_data), snapshotOf({numberedNote(1, u"body"_s)}, u"saved later"_s,
                                         {{noteKey(), u"saved later, too"_s}}));
}

void TypedTextTest::isOutOfDateOnceItBecameANote()
{
    // As by a program that was killed after the capture and before its clean-up: the draft is what
    // it was before the first key.
    m_data->write(noteFile(numberedId(9)), noteBytes(numberedNote(9, u"captured"_s)));

    const NoteSnapshot snapshot = loaded(*m_data);
    QCOMPARE(snapshot.captureDraft, u"draft"_s);
    QCOMPARE(snapshot.editingDrafts, typed().editingDrafts);

    // A note of another identifier says nothing, not even with the same text.
    std::filesystem::remove(m_data->path(noteFile(numberedId(9))));
    m_data->write(noteFile(numberedId(8)), noteBytes(numberedNote(8, u"draft and more"_s)));
    QCOMPARE(loaded(*m_data).captureDraft, u"draft and more"_s);
}

void TypedTextTest::isIgnoredWhenItIsTorn_data()
{
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("empty") << QByteArray();
    QTest::newRow("zeros") << QByteArray(200, '\0');
    QTest::newRow("another program's") << QByteArray("a text");
    QTest::newRow("header only") << QByteArray("Quillmark typed 2\n");
}

void TypedTextTest::isIgnoredWhenItIsTorn()
{
    QFETCH(QByteArray, bytes);
    const QByteArray whole = m_data->read(captureFile);
    m_data->write(captureFile, bytes);
    QCOMPARE(loaded(*m_data).captureDraft, u"draft"_s);

    m_data->write(captureFile, whole.chopped(1));
    QCOMPARE(loaded(*m_data).captureDraft, u"draft"_s);
    m_data->write(captureFile, whole.chopped(3) + QByteArray(3, '\0'));
    QCOMPARE(loaded(*m_data).captureDraft, u"draft"_s);
    m_data->write(captureFile, whole);
    QCOMPARE(loaded(*m_data).captureDraft, u"draft and more"_s);
}

void TypedTextTest::isIgnoredForANoteThatIsGone()
{
    std::filesystem::remove(m_data->path(noteFile(numberedId(1))));

    QCOMPARE(loaded(*m_data), snapshotOf({}, u"draft and more"_s));
}

void TypedTextTest::isNotWrittenWhereNothingWasTyped()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(saved());

    repository.keepTyped(saved(), numberedId(9));

    QCOMPARE(data.count(".quillmark-"), 0);
}

void TypedTextTest::staysWhenASaveNeverLoadedIt()
{
    LocalNoteRepository(m_data->fileURL()).save(saved());

    QCOMPARE(loaded(*m_data), typed());
}

void TypedTextTest::doesNotFollowLinks()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(saved());
    const std::filesystem::path outside = data.path("outside");
    data.write("outside", "nobody's business");
    std::filesystem::create_symlink(outside, data.path(captureFile));
    std::filesystem::create_symlink(outside, data.path(std::string(captureFile) + '~'));

    QCOMPARE(loaded(data), saved());
    repository.keepTyped(typed(), numberedId(9));

    QCOMPARE(data.read("outside"), "nobody's business");
    QCOMPARE(loaded(data), typed());
}

QTEST_GUILESS_MAIN(TypedTextTest)
#include "TypedTextTest.moc"
