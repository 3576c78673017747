// SPDX-License-Identifier: MIT
#include "LocalNoteRepository.h"

#include "DataFolder.h"
#include "FileError.h"
#include "ForwardingDisk.h"
#include "Notes.h"
#include "Sha256.h"
#include "Thrown.h"

#include <QTest>
#include <fstream>
#include <memory>
#include <optional>
#include <string_view>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Of the note that every test begins with.
QString noteKey()
{
    return canonicalText(numberedId(1));
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

const QUuid captureId = numberedId(9);

/// Lets nothing go that was typed, and takes no note when told so. Counts what is synced.
class StubbornDisk final : public ForwardingDisk {
public:
    Result<void> unlink(Handle folder, const char *name, FileKind kind) noexcept override
    {
        if (std::string_view(name).starts_with("typed-") && !std::string_view(name).ends_with('~'))
            return Failure::system(EIO);
        return ForwardingDisk::unlink(folder, name, kind);
    }
    Result<void> rename(Handle from, const char *name, Handle to, const char *newName,
                        Rename how) noexcept override
    {
        if (keepsNotes && !std::string_view(name).starts_with("typed-"))
            return Failure::system(EIO);
        return ForwardingDisk::rename(from, name, to, newName, how);
    }
    Result<void> sync(Handle handle) noexcept override
    {
        ++syncs;
        return ForwardingDisk::sync(handle);
    }

    bool keepsNotes = false;
    int syncs = 0;
};

} // namespace

/// What becomes of the text that a program was killed with.
class TypingJournalTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void comesBackWithTheNextLoad();
    void comesBackWhenThereWereNoNotesYet();
    void saysThatItIsNotSaved();
    void isWrittenForTheUserAloneAndNotBesideTheNotes();
    void isOfOneDataFolderOnly();
    void keepsTheLastOfIt();
    void remembersWhichNoteItIsToBecome();
    void isWrittenAnewWhereItWasRemoved();
    void goesWhenItIsTakenBack();
    void saysWhenItCannotBeTakenBack();
    void goesWithTheNextSave();
    void goesAlsoWhenTheSaveIsThatOfTheNextStart();
    void isToldFromWhatWasSavedBeforeTheEnd_data();
    void isToldFromWhatWasSavedBeforeTheEnd();
    void comesBackWhenTheSaveWasBegunOnly_data();
    void comesBackWhenTheSaveWasBegunOnly();
    void standsAboveTheTextOfAnotherProgram();
    void makesNoThirdCopyAtTheNextEnd();
    void isToldFromTheSameTextOfAnotherProgram();
    void goesIntoTheCaptureDraftWhenItsNoteIsGone();
    void outlivesTheWholeFolderOfNotes();
    void isKeptWhereTheDataFolderCannotBeReached_data();
    void isKeptWhereTheDataFolderCannotBeReached();
    void isLeftOutWhereItIsTorn();
    void letsTheNotesOpenWhenItCannotBeRead_data();
    void letsTheNotesOpenWhenItCannotBeRead();
    void goesToTheNextFolderWhenOneRefusesIt();
    void isTakenFromTheFolderThatWasWrittenLast();
    void isTakenFromAnEarlierFolderThatWasWrittenLast();
    void isInOneFolderAlone();
    void saysWhyNoFolderTakesIt();
    void carriesHalfASurrogatePairAsAReplacement();
    void isOneFileOfItsOwnBesideAnotherProgram();
    void canBeSynced();
    void readsWhatAnOlderVersionKeptOnce();
    void ignoresWhatAnOlderVersionLeftAfterASave();
    void isNotWrittenWhereNothingWasTyped();
    void doesNotFollowLinks();

private:
    [[nodiscard]] std::unique_ptr<LocalNoteRepository> repository() const
    {
        return std::make_unique<LocalNoteRepository>(m_data->fileURL(), m_data->journalFolders());
    }
    [[nodiscard]] NoteSnapshot loaded() const { return repository()->load(); }
    [[nodiscard]] QList<QByteArray> journalPaths() const;
    [[nodiscard]] std::string journalPath() const { return journalPaths().first().toStdString(); }

    std::optional<DataFolder> m_data;
};

void TypingJournalTest::init()
{
    m_data.emplace();
    const auto killed = repository();
    killed->save(saved());
    killed->keepTyped(typed(), captureId);
}

QList<QByteArray> TypingJournalTest::journalPaths() const
{
    QList<QByteArray> paths;
    if (!m_data->holds("journal"))
        return paths;
    for (const auto &entry : std::filesystem::directory_iterator(m_data->path("journal")))
        paths.append("journal/" + QByteArray::fromStdString(entry.path().filename()));
    return paths;
}

void TypingJournalTest::comesBackWithTheNextLoad()
{
    QCOMPARE(loaded(), typed());
    QCOMPARE(m_data->read("Markdown/Drafts/capture.md"), "draft");
    // Also when that one was killed before it saved.
    QCOMPARE(loaded(), typed());
}

void TypingJournalTest::comesBackWhenThereWereNoNotesYet()
{
    m_data.emplace();
    const auto killed = repository();
    static_cast<void>(killed->load());

    killed->keepTyped(snapshotOf({}, u"first words"_s), captureId);

    QCOMPARE(loaded(), snapshotOf({}, u"first words"_s));
    QVERIFY(!m_data->holds("Markdown"));
}

void TypingJournalTest::saysThatItIsNotSaved()
{
    const auto next = repository();

    const NoteSnapshot snapshot = next->load();
    QVERIFY(next->hasRestored());
    QCOMPARE(next->captureId(), captureId);

    next->save(snapshot);
    QVERIFY(!next->hasRestored());
    QVERIFY(!next->typedPath());
    QVERIFY(!next->captureId());
    static_cast<void>(next->load());
    QVERIFY(!next->hasRestored());
}

void TypingJournalTest::isWrittenForTheUserAloneAndNotBesideTheNotes()
{
    QCOMPARE(journalPaths().size(), 1);
    QCOMPARE(m_data->status(journalPath()).st_mode & 07777, 0600U);
    QCOMPARE(m_data->count(".quillmark-"), 0);
}

void TypingJournalTest::isOfOneDataFolderOnly()
{
    const DataFolder other;

    LocalNoteRepository stranger(other.fileURL(), m_data->journalFolders());
    QCOMPARE(stranger.load(), NoteSnapshot());
    stranger.save(saved());

    QCOMPARE(loaded(), typed());
}

void TypingJournalTest::keepsTheLastOfIt()
{
    const auto killed = repository();
    NoteSnapshot snapshot = killed->load();

    snapshot.captureDraft = u"another"_s;
    killed->keepTyped(snapshot, captureId);

    QCOMPARE(journalPaths().size(), 1);
    QCOMPARE(loaded(), snapshot);
}

void TypingJournalTest::remembersWhichNoteItIsToBecome()
{
    m_data.emplace();
    const auto killed = repository();
    killed->save(saved());
    killed->keepTyped(typed(), captureId);
    killed->keepTyped(typed(), numberedId(7));

    const auto next = repository();
    QCOMPARE(next->load(), typed());
    QCOMPARE(next->captureId(), numberedId(7));
}

void TypingJournalTest::isWrittenAnewWhereItWasRemoved()
{
    m_data.emplace();
    const auto killed = repository();
    killed->save(saved());
    killed->keepTyped(typed(), captureId);
    std::filesystem::remove_all(m_data->path("journal"));

    killed->keepTyped(typed(), captureId);

    QCOMPARE(loaded(), typed());
}

void TypingJournalTest::goesWhenItIsTakenBack()
{
    const auto killed = repository();
    NoteSnapshot snapshot = killed->load();

    snapshot.captureDraft = u"draft"_s;
    killed->keepTyped(snapshot, captureId);
    QCOMPARE(loaded(), snapshot);
    killed->keepTyped(saved(), captureId);

    QCOMPARE(loaded(), saved());
    QVERIFY(journalPaths().isEmpty());
}

void TypingJournalTest::saysWhenItCannotBeTakenBack()
{
    StubbornDisk disk;
    LocalNoteRepository repository(m_data->fileURL(), disk, m_data->journalFolders());
    QCOMPARE(repository.load(), typed());

    const auto error = thrown<FileError>([&] { repository.keepTyped(saved(), captureId); });

    QVERIFY(error.has_value());
    QCOMPARE(error->path(), m_data->path(journalPath()));
}

void TypingJournalTest::goesWithTheNextSave()
{
    const auto next = repository();
    NoteSnapshot snapshot = next->load();
    snapshot.captureDraft += u"!"_s;
    next->keepTyped(snapshot, captureId);

    next->save(snapshot);

    QVERIFY(journalPaths().isEmpty());
    QCOMPARE(loaded(), snapshot);
}

void TypingJournalTest::goesAlsoWhenTheSaveIsThatOfTheNextStart()
{
    const auto next = repository();

    next->save(next->load());

    QVERIFY(journalPaths().isEmpty());
    QCOMPARE(m_data->read("Markdown/Drafts/capture.md"), "draft and more");
    QCOMPARE(loaded(), typed());
}

namespace {

/// What a save may make of what was typed.
void addSaves()
{
    QTest::addColumn<NoteSnapshot>("next");
    const Note note = numberedNote(1, u"body"_s);

    QTest::newRow("the drafts, gone on with")
        << snapshotOf({note}, u"draft and more!"_s, {{noteKey(), u"body, too!"_s}});
    QTest::newRow("a capture") << snapshotOf({note, {captureId, u"draft and more"_s, {1}, {1}}}, {},
                                             {{noteKey(), u"body, too"_s}});
    QTest::newRow("an edit, without the space around it")
        << snapshotOf({{note.id, u"body,"_s, note.createdAt, {9}}}, u"draft and more"_s);
    QTest::newRow("the end of the note") << snapshotOf({}, u"draft and more"_s);
}

} // namespace

void TypingJournalTest::isToldFromWhatWasSavedBeforeTheEnd_data()
{
    addSaves();
    QTest::newRow("what was saved before, since it was taken back") << saved();
}

void TypingJournalTest::isToldFromWhatWasSavedBeforeTheEnd()
{
    QFETCH(const NoteSnapshot, next);
    // As a program that is killed after its save and before it removes the file.
    StubbornDisk disk;
    {
        LocalNoteRepository killed(m_data->fileURL(), disk, m_data->journalFolders());
        static_cast<void>(killed.load());
        killed.save(next);
    }
    QCOMPARE(journalPaths().size(), 1);
    QCOMPARE(loaded(), next);
    // And it goes once it can.
    const auto third = repository();
    third->save(third->load());
    QVERIFY(journalPaths().isEmpty());
}

void TypingJournalTest::comesBackWhenTheSaveWasBegunOnly_data()
{
    addSaves();
}

void TypingJournalTest::comesBackWhenTheSaveWasBegunOnly()
{
    QFETCH(const NoteSnapshot, next);
    StubbornDisk disk;
    disk.keepsNotes = true;
    LocalNoteRepository killed(m_data->fileURL(), disk, m_data->journalFolders());
    static_cast<void>(killed.load());

    QVERIFY_EXCEPTION_THROWN(killed.save(next), FileError);

    // A draft that the save was to bring is what stood on the screen.
    NoteSnapshot shown = typed();
    if (!next.captureDraft.isEmpty())
        shown.captureDraft = next.captureDraft;
    if (next.editingDrafts.contains(noteKey()))
        shown.editingDrafts = next.editingDrafts;
    QCOMPARE(loaded(), shown);
}

void TypingJournalTest::standsAboveTheTextOfAnotherProgram()
{
    m_data->write("Markdown/Drafts/capture.md", "theirs");
    m_data->write(noteFile(numberedId(1)), noteBytes(numberedNote(1, u"their body"_s)));

    QCOMPARE(loaded(), snapshotOf({numberedNote(1, u"their body"_s)}, u"draft and more\n\ntheirs"_s,
                                  {{noteKey(), u"body, too\n\ntheir body"_s}}));

    m_data->write("Markdown/Drafts/capture.md", "");
    QCOMPARE(loaded().captureDraft, u"draft and more"_s);
    // What goes on from it holds it already.
    m_data->write("Markdown/Drafts/capture.md", "draft and more of it");
    QCOMPARE(loaded().captureDraft, u"draft and more of it"_s);
}

void TypingJournalTest::makesNoThirdCopyAtTheNextEnd()
{
    m_data->write("Markdown/Drafts/capture.md", "theirs");
    const auto killed = repository();
    const NoteSnapshot shown = killed->load();
    QCOMPARE(loaded(), shown);

    // What is shown is kept before it is saved.
    killed->keepTyped(shown, captureId);
    QCOMPARE(loaded(), shown);
    QCOMPARE(journalPaths().size(), 1);
    killed->save(shown);

    QCOMPARE(loaded(), shown);
}

void TypingJournalTest::isToldFromTheSameTextOfAnotherProgram()
{
    m_data->write("Markdown/Drafts/capture.md", "draft and more");

    QCOMPARE(loaded(), typed());
}

void TypingJournalTest::goesIntoTheCaptureDraftWhenItsNoteIsGone()
{
    std::filesystem::remove(m_data->path(noteFile(numberedId(1))));

    QCOMPARE(loaded(), snapshotOf({}, u"draft and more\n\nbody, too"_s));
}

void TypingJournalTest::outlivesTheWholeFolderOfNotes()
{
    std::filesystem::remove_all(m_data->path("Markdown"));

    QCOMPARE(loaded(), snapshotOf({}, u"draft and more\n\nbody, too"_s));
}

void TypingJournalTest::isKeptWhereTheDataFolderCannotBeReached_data()
{
    QTest::addColumn<bool>("isFile");

    QTest::newRow("it is gone") << false;
    QTest::newRow("a file has its name") << true;
}

void TypingJournalTest::isKeptWhereTheDataFolderCannotBeReached()
{
    QFETCH(const bool, isFile);
    m_data.emplace();
    const DataFolder elsewhere;
    LocalNoteRepository killed(m_data->fileURL(), elsewhere.journalFolders());
    killed.save(saved());
    std::filesystem::remove_all(m_data->path());
    if (isFile)
        std::ofstream(m_data->path()) << "in the way";

    killed.keepTyped(typed(), captureId);

    // Nor is the folder made for this.
    QVERIFY(killed.typedPath());
    QCOMPARE(std::filesystem::exists(m_data->path()), isFile);
    std::filesystem::remove(m_data->path());
    LocalNoteRepository next(m_data->fileURL(), elsewhere.journalFolders());
    QCOMPARE(next.load(), snapshotOf({}, u"draft and more\n\nbody, too"_s));
}

void TypingJournalTest::isLeftOutWhereItIsTorn()
{
    const std::string path = journalPath();
    const QByteArray whole = m_data->read(path);
    NoteSnapshot first = saved();
    first.captureDraft = typed().captureDraft;

    m_data->write(path, whole.chopped(1));
    QCOMPARE(loaded(), first);
    m_data->write(path, whole.first(25));
    QCOMPARE(loaded(), saved());
    m_data->write(path, QByteArray(whole.size(), '\0'));
    QCOMPARE(loaded(), saved());
    m_data->write(path, {});
    const auto next = repository();
    QCOMPARE(next->load(), saved());

    // It is nothing to speak of, and gone with the next save.
    QVERIFY(!next->leftAlone());
    next->save(typed());
    QVERIFY(journalPaths().isEmpty());
}

void TypingJournalTest::letsTheNotesOpenWhenItCannotBeRead_data()
{
    QTest::addColumn<QString>("kind");

    QTest::newRow("a folder") << u"folder"_s;
    QTest::newRow("a link") << u"link"_s;
    QTest::newRow("a pipe") << u"pipe"_s;
    QTest::newRow("larger than anything that is written") << u"huge"_s;
}

void TypingJournalTest::letsTheNotesOpenWhenItCannotBeRead()
{
    QFETCH(const QString, kind);
    const std::string name = journalPath();
    const std::filesystem::path path = m_data->path(name);
    std::filesystem::remove(path);
    if (kind == u"folder")
        std::filesystem::create_directory(path);
    else if (kind == u"link")
        std::filesystem::create_symlink(m_data->path("Markdown/Drafts/capture.md"), path);
    else if (kind == u"pipe")
        QCOMPARE(::mkfifo(path.c_str(), 0600), 0);
    else
        QVERIFY(QFile(QFile::decodeName(path.c_str())).open(QFile::WriteOnly) &&
                QFile::resize(QFile::decodeName(path.c_str()), qint64(1) << 32));
    const auto next = repository();

    QCOMPARE(next->load(), saved());
    QVERIFY(next->leftAlone());
    QVERIFY(next->leftAlone()->english().contains(QString::fromStdString(path.native())));

    // It is left as it is, and what is typed now is kept in another file.
    next->keepTyped(typed(), captureId);
    QVERIFY(m_data->holds(name));
    QCOMPARE(journalPaths().size(), 2);
    QCOMPARE(loaded(), typed());
    next->save(typed());
    QCOMPARE(journalPaths(), {QByteArray::fromStdString(name)});
}

void TypingJournalTest::goesToTheNextFolderWhenOneRefusesIt()
{
    m_data.emplace();
    std::filesystem::create_directories(m_data->path());
    std::filesystem::create_symlink("nowhere", m_data->path("journal"));
    const LocalNoteRepository::Folders folders{m_data->path("journal"), m_data->path("second")};
    LocalNoteRepository killed(m_data->fileURL(), folders);
    killed.save(saved());

    killed.keepTyped(typed(), captureId);

    QCOMPARE(killed.typedPath()->parent_path(), m_data->path("second"));
    QCOMPARE(LocalNoteRepository(m_data->fileURL(), folders).load(), typed());
}

void TypingJournalTest::isTakenFromTheFolderThatWasWrittenLast()
{
    m_data.emplace();
    const LocalNoteRepository::Folders folders{m_data->path("journal"), m_data->path("second")};
    StubbornDisk disk;
    auto killed = std::make_unique<LocalNoteRepository>(m_data->fileURL(), disk, folders);
    killed->save(saved());
    killed->keepTyped(saved(), captureId);
    NoteSnapshot snapshot = saved();
    snapshot.captureDraft = u"first"_s;
    killed->keepTyped(snapshot, captureId);

    // The first folder takes no more, nor lets go of what it has.
    std::filesystem::rename(m_data->path("journal"), m_data->path("journal, kept"));
    std::filesystem::create_symlink("nowhere", m_data->path("journal"));
    snapshot.captureDraft = u"second"_s;
    killed->keepTyped(snapshot, captureId);
    std::filesystem::remove(m_data->path("journal"));
    std::filesystem::rename(m_data->path("journal, kept"), m_data->path("journal"));
    killed.reset();

    LocalNoteRepository next(m_data->fileURL(), folders);
    QCOMPARE(next.load(), snapshot);
    next.save(snapshot);
    QVERIFY(journalPaths().isEmpty());
    QVERIFY(std::filesystem::is_empty(m_data->path("second")));
}

void TypingJournalTest::isTakenFromAnEarlierFolderThatWasWrittenLast()
{
    m_data.emplace();
    const LocalNoteRepository::Folders folders{m_data->path("journal"), m_data->path("second")};
    StubbornDisk disk;
    auto killed = std::make_unique<LocalNoteRepository>(m_data->fileURL(), disk, folders);
    killed->save(saved());
    NoteSnapshot snapshot = saved();

    // The first folder takes nothing at first; later the second one lets go of nothing.
    std::filesystem::create_symlink("nowhere", m_data->path("journal"));
    snapshot.captureDraft = u"first"_s;
    killed->keepTyped(snapshot, captureId);
    std::filesystem::remove(m_data->path("journal"));
    snapshot.captureDraft = u"second"_s;
    killed->keepTyped(snapshot, captureId);
    killed.reset();

    QVERIFY(!std::filesystem::is_empty(m_data->path("second")));
    QCOMPARE(LocalNoteRepository(m_data->fileURL(), folders).load(), snapshot);
}

void TypingJournalTest::isInOneFolderAlone()
{
    m_data.emplace();
    const LocalNoteRepository::Folders folders{m_data->path("journal"), m_data->path("second")};
    LocalNoteRepository killed(m_data->fileURL(), folders);
    killed.save(saved());
    NoteSnapshot snapshot = saved();

    std::filesystem::create_symlink("nowhere", m_data->path("journal"));
    snapshot.captureDraft = u"first"_s;
    killed.keepTyped(snapshot, captureId);
    QVERIFY(!std::filesystem::is_empty(m_data->path("second")));
    std::filesystem::remove(m_data->path("journal"));
    snapshot.captureDraft = u"second"_s;
    killed.keepTyped(snapshot, captureId);

    QVERIFY(std::filesystem::is_empty(m_data->path("second")));
    QCOMPARE(journalPaths().size(), 1);
}

void TypingJournalTest::saysWhyNoFolderTakesIt()
{
    m_data.emplace();
    std::filesystem::create_directories(m_data->path());
    std::filesystem::create_symlink("nowhere", m_data->path("journal"));
    const auto killed = repository();
    killed->save(saved());

    QVERIFY_EXCEPTION_THROWN(killed->keepTyped(typed(), captureId), FileError);
    QVERIFY(!killed->typedPath());
}

void TypingJournalTest::carriesHalfASurrogatePairAsAReplacement()
{
    const auto killed = repository();
    NoteSnapshot snapshot = killed->load();
    snapshot.captureDraft = u"a"_s + QChar(0xD83E) + u"b"_s;

    killed->keepTyped(snapshot, captureId);

    QCOMPARE(loaded().captureDraft, u"a\uFFFDb"_s);
}

void TypingJournalTest::isOneFileOfItsOwnBesideAnotherProgram()
{
    m_data.emplace();
    const auto other = repository();
    other->save(saved());
    other->keepTyped(typed(), captureId);
    const auto second = repository();
    NoteSnapshot snapshot = saved();
    snapshot.captureDraft = u"first"_s;
    second->keepTyped(snapshot, captureId);
    const auto path = second->typedPath();

    snapshot.captureDraft = u"first and second"_s;
    second->keepTyped(snapshot, captureId);

    QVERIFY(path && path != other->typedPath());
    QVERIFY(second->typedPath() == path);
    QCOMPARE(journalPaths().size(), 2);
}

void TypingJournalTest::canBeSynced()
{
    StubbornDisk disk;
    LocalNoteRepository killed(m_data->fileURL(), disk, m_data->journalFolders());
    killed.syncTyped();
    QCOMPARE(disk.syncs, 0);
    NoteSnapshot snapshot = killed.load();
    snapshot.captureDraft += u"!"_s;
    killed.keepTyped(snapshot, captureId);
    QCOMPARE(disk.syncs, 0);

    killed.syncTyped();

    // The file, its folder, and those above.
    QVERIFY(disk.syncs >= 2);
}

void TypingJournalTest::readsWhatAnOlderVersionKeptOnce()
{
    m_data.emplace();
    repository()->save(saved());
    const auto hexadecimal = [](const QByteArray &text) {
        return QByteArrayView(sha256(text.toStdString())).toByteArray().toHex();
    };
    const QByteArray older = "Quillmark typed 1\n" + hexadecimal("draft") + '\n' +
                             hexadecimal("draft and more") + "\ndraft and more";
    m_data->write(".quillmark-typed-capture", older);
    NoteSnapshot shown = saved();
    shown.captureDraft = u"draft and more"_s;

    const auto next = repository();
    QCOMPARE(next->load(), shown);
    QVERIFY(next->hasRestored());

    m_data->write(".quillmark-typed-capture", older + "torn");
    QCOMPARE(loaded(), saved());
    next->save(shown);
    QVERIFY(!m_data->holds(".quillmark-typed-capture"));
}

void TypingJournalTest::ignoresWhatAnOlderVersionLeftAfterASave()
{
    m_data.emplace();
    repository()->save(saved());
    m_data->write(".quillmark-typed-capture",
                  "Quillmark typed 1\n" + QByteArray(64, '0') + '\n' +
                      QByteArrayView(sha256("older")).toByteArray().toHex() + "\nolder");

    QCOMPARE(loaded(), saved());
}

void TypingJournalTest::isNotWrittenWhereNothingWasTyped()
{
    m_data.emplace();
    const auto idle = repository();
    idle->save(saved());

    idle->keepTyped(saved(), captureId);

    QVERIFY(!m_data->holds("journal"));
}

void TypingJournalTest::doesNotFollowLinks()
{
    const std::string name = journalPath();
    const std::filesystem::path outside = m_data->path("outside");
    m_data->write("outside", "nobody's business");
    std::filesystem::create_symlink(outside, m_data->path(name + '~'));
    const auto killed = repository();
    NoteSnapshot snapshot = killed->load();
    snapshot.captureDraft += u"!"_s;

    killed->keepTyped(snapshot, captureId);

    QCOMPARE(m_data->read("outside"), "nobody's business");
    QCOMPARE(loaded(), snapshot);
}

QTEST_GUILESS_MAIN(TypingJournalTest)
#include "TypingJournalTest.moc"
