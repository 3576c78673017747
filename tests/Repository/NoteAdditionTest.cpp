// SPDX-License-Identifier: MIT
#include "NoteAddition.h"

#include "CallWatcher.h"
#include "DataFolder.h"
#include "FolderLock.h"
#include "LocalNoteRepository.h"
#include "NoteFolder.h"
#include "Notes.h"
#include "OtherProgram.h"
#include "SystemDisk.h"
#include "Thrown.h"

#include <QTest>
#include <algorithm>
#include <functional>
#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Fate = DiskWatcher::Fate;

constexpr auto dataFolder = "/data/Penwick";

const Note added = numberedNote(3, u"three"_s);

NoteSnapshot oldNotes()
{
    return snapshotOf({numberedNote(1, u"one"_s), numberedNote(2, u"two"_s)}, u"draft"_s,
                      {{canonicalText(numberedId(2)), u"two and more"_s}});
}

NoteSnapshot newNotes()
{
    NoteSnapshot snapshot = oldNotes();
    snapshot.notes.append(added);
    return snapshot;
}

LocalNoteRepository repositoryOn(MemoryDisk &disk)
{
    return LocalNoteRepository(std::filesystem::path(dataFolder) / "notes.json", disk);
}

NoteSnapshot loaded(const MemoryDisk::Image &image)
{
    MemoryDisk disk(image);
    return repositoryOn(disk).load();
}

MemoryDisk diskWithNotes(const MemoryDisk::Abilities &abilities = {})
{
    MemoryDisk disk(abilities);
    OtherProgram(disk).makeFolder("/data");
    repositoryOn(disk).save(oldNotes());
    OtherProgram(disk).syncAll();
    const MemoryDisk::Image image = disk.image();
    return MemoryDisk(image);
}

std::optional<std::filesystem::path> addTo(MemoryDisk &disk)
{
    return addNote(Directory::openOrMake(disk, dataFolder), added);
}

/// Whether nothing but an answer can be lost with the call.
bool isAnswerAlone(const DiskCall &call)
{
    return call.kind == DiskCall::Kind::rename || call.kind == DiskCall::Kind::unlink ||
           call.kind == DiskCall::Kind::sync;
}

bool hasHidden(const MemoryDisk &disk, std::string_view prefix)
{
    return std::ranges::any_of(disk.namesAt(dataFolder),
                               [&](const std::string &name) { return name.starts_with(prefix); });
}

} // namespace

/// One note that is added without reading the others.
class NoteAdditionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void needsNoFolderOfDrafts();
    void addsOneFileAndTouchesNoOther();
    void looksAtNoOtherNoteOfMany();
    void leavesAFolderWithoutNotesToASave();
    void isOldOrNewWhenKilledAtAnyCall();
    void isOldOrNewAfterAPowerCutAtAnyCall();
    void isThereAfterAPowerCutOnceItIsDone();
    void isThereAfterAPowerCutInAFolderThatOnlyMemoryKnew();
    void isOldOrNewWhenAnyCallFails_data();
    void isOldOrNewWhenAnyCallFails();
    void refusesBesideARecoveryCopy();
    void refusesAFolderOfAnotherFormat();
    void refusesAnIdentifierThatIsThere();
    void refusesAFolderThatIsMovedMeanwhile();
    void refusesWhatIsTooLarge();
    void refusesMoreTextThanTheFolderMayHold();
    void refusesALongTextAlsoWhereThereAreMany();
    void keepsThePromiseOfPrivacy();
    void sharesTheFolderWithOthersThatAdd();
    void keepsAProgramThatOwnsTheFolderWaiting();
};

void NoteAdditionTest::needsNoFolderOfDrafts()
{
    MemoryDisk disk = diskWithNotes();
    OtherProgram(disk).removeAll("/data/Penwick/Markdown/Drafts");

    QVERIFY(addTo(disk));

    QCOMPARE(loaded(disk.image()).notes, newNotes().notes);
}

void NoteAdditionTest::addsOneFileAndTouchesNoOther()
{
    MemoryDisk disk = diskWithNotes();
    const auto before = disk.statusAt("/data/Penwick/Markdown/Drafts/capture.md");

    const auto path = addTo(disk);

    QCOMPARE(path, std::filesystem::path(dataFolder) / noteFile(added.id));
    QCOMPARE(QByteArray::fromStdString(*disk.contentAt(path->c_str())), noteBytes(added));
    QCOMPARE(loaded(disk.image()), newNotes());
    QVERIFY(before == disk.statusAt("/data/Penwick/Markdown/Drafts/capture.md"));
    QVERIFY(!hasHidden(disk, ".quillmark-"));
}

void NoteAdditionTest::looksAtNoOtherNoteOfMany()
{
    MemoryDisk disk;
    OtherProgram(disk).makeFolder("/data");
    QList<Note> notes;
    for (int i = 0; i < 3000; ++i)
        notes << numberedNote(i, u"body"_s);
    repositoryOn(disk).save(snapshotOf(notes));
    const std::string other = canonicalText(numberedId(1)).toStdString() + ".md";
    bool isSeen = false;
    bool isListed = false;
    const auto notesFolder = disk.statusAt("/data/Penwick/Markdown/Notes")->identity.inode;
    CallWatcher watcher(disk, [&](MemoryDisk &, const DiskCall &call) {
        isSeen |= other == call.name;
        isListed |= call.kind == DiskCall::Kind::list && call.inode == notesFolder;
        return Fate{};
    });
    const Note one = numberedNote(4000, u"one more"_s);

    QVERIFY(addNote(Directory::openOrMake(disk, dataFolder), one));

    QVERIFY(!isSeen);
    QVERIFY(!isListed);
}

void NoteAdditionTest::leavesAFolderWithoutNotesToASave()
{
    MemoryDisk disk;
    OtherProgram(disk).makeFolder(dataFolder);

    QVERIFY(!addTo(disk));

    QVERIFY(disk.namesAt(dataFolder).empty());
}

void NoteAdditionTest::isOldOrNewWhenKilledAtAnyCall()
{
    MemoryDisk disk = diskWithNotes();
    std::vector<MemoryDisk::Image> images;
    {
        CallWatcher watcher(disk, [&](MemoryDisk &, const DiskCall &) {
            images.push_back(disk.image());
            return Fate{};
        });
        QVERIFY(addTo(disk));
    }

    QVERIFY(images.size() > 20);
    int newOnes = 0;
    for (const MemoryDisk::Image &image : images) {
        // Loads without a word of a recovery copy, and so saves.
        const NoteSnapshot found = loaded(image);
        QVERIFY(found == oldNotes() || found == newNotes());
        newOnes += found == newNotes() ? 1 : 0;
    }
    QVERIFY(newOnes > 0);
}

void NoteAdditionTest::isOldOrNewAfterAPowerCutAtAnyCall()
{
    MemoryDisk::Abilities abilities;
    abilities.canLosePower = true;
    MemoryDisk disk = diskWithNotes(abilities);
    Dice dice(1);
    std::vector<MemoryDisk::Image> images;
    {
        CallWatcher watcher(disk, [&](MemoryDisk &, const DiskCall &) {
            for (int i = 0; i < 20; ++i)
                images.push_back(disk.afterPowerCut(dice));
            return Fate{};
        });
        QVERIFY(addTo(disk));
    }

    for (const MemoryDisk::Image &image : images) {
        const NoteSnapshot found = loaded(image);
        QVERIFY(found == oldNotes() || found == newNotes());
    }
}

void NoteAdditionTest::isThereAfterAPowerCutOnceItIsDone()
{
    MemoryDisk::Abilities abilities;
    abilities.canLosePower = true;
    MemoryDisk disk = diskWithNotes(abilities);

    QVERIFY(addTo(disk));

    Dice dice(2);
    for (int i = 0; i < 200; ++i)
        QCOMPARE(loaded(disk.afterPowerCut(dice)), newNotes());
}

void NoteAdditionTest::isThereAfterAPowerCutInAFolderThatOnlyMemoryKnew()
{
    MemoryDisk::Abilities abilities;
    abilities.canLosePower = true;
    MemoryDisk disk = diskWithNotes(abilities);
    // A program that ended before it could sync put the folder in its place.
    OtherProgram other(disk);
    other.rename("/data/Penwick/Markdown/Notes", "/data/Penwick/Markdown/made");
    other.syncAll();
    other.rename("/data/Penwick/Markdown/made", "/data/Penwick/Markdown/Notes");

    QVERIFY(addTo(disk));

    Dice dice(3);
    for (int i = 0; i < 200; ++i)
        QCOMPARE(loaded(disk.afterPowerCut(dice)), newNotes());
}

void NoteAdditionTest::isOldOrNewWhenAnyCallFails_data()
{
    QTest::addColumn<Fate::Kind>("kind");
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("isForGood");

    for (const int error : {EIO, ENOSPC, EACCES, EINTR, EDQUOT, EROFS}) {
        QTest::addRow("%s", strerrorname_np(error)) << Fate::Kind::fails << error << false;
        QTest::addRow("%s for good", strerrorname_np(error)) << Fate::Kind::fails << error << true;
    }
    QTest::newRow("an answer is lost") << Fate::Kind::answerIsLost << EIO << false;
}

void NoteAdditionTest::isOldOrNewWhenAnyCallFails()
{
    QFETCH(Fate::Kind, kind);
    QFETCH(int, error);
    QFETCH(bool, isForGood);
    const MemoryDisk::Image start = diskWithNotes().image();

    int failures = 0;
    bool isThrough = false;
    for (std::uint32_t bad = 0; !isThrough; ++bad) {
        MemoryDisk disk(start);
        bool isHit = false;
        std::optional<std::filesystem::path> path;
        std::optional<Reason> reason;
        {
            CallWatcher watcher(disk, [&](MemoryDisk &, const DiskCall &call) {
                const bool isBad = call.number == bad || (isForGood && call.number > bad);
                isHit |= isBad;
                if (!isBad || (kind == Fate::Kind::answerIsLost && !isAnswerAlone(call)))
                    return Fate{};
                return Fate{kind, error};
            });
            try {
                path = addTo(disk);
            } catch (const StorageError &refused) {
                reason = refused.reason();
            }
        }
        isThrough = !isHit;
        QCOMPARE(disk.openHandleCount(), std::size_t{0});
        QVERIFY(!hasHidden(disk, ".quillmark-recovery-"));
        const NoteSnapshot found = loaded(disk.image());
        QVERIFY(found == oldNotes() || found == newNotes());
        if (path)
            QCOMPARE(found, newNotes());
        // Where the disk takes nothing more, what was made cannot be taken back.
        if (reason && !isForGood && kind == Fate::Kind::fails)
            QCOMPARE(found, oldNotes());
        failures += reason ? 1 : 0;
    }
    QVERIFY(failures > 0 || error == EINTR);
}

void NoteAdditionTest::refusesBesideARecoveryCopy()
{
    MemoryDisk disk = diskWithNotes();
    OtherProgram(disk).make("/data/Penwick/.quillmark-recovery-1", "text");

    QCOMPARE(refusal([&] { addTo(disk); }), RepositoryError::recoveryRequired());

    OtherProgram(disk).remove("/data/Penwick/.quillmark-recovery-1");
    QCOMPARE(loaded(disk.image()), oldNotes());
}

void NoteAdditionTest::refusesAFolderOfAnotherFormat()
{
    MemoryDisk disk = diskWithNotes();
    OtherProgram(disk).overwrite("/data/Penwick/Markdown/.format", "Quillmark Markdown 2\n");

    const auto error = refusal([&] { addTo(disk); });

    QCOMPARE(error, RepositoryError::invalidMarkdown());
    QCOMPARE(*error->place(), std::filesystem::path("/data/Penwick/Markdown/.format"));
    QCOMPARE(disk.namesAt("/data/Penwick/Markdown/Notes").size(), std::size_t{2});
}

void NoteAdditionTest::refusesAnIdentifierThatIsThere()
{
    MemoryDisk disk = diskWithNotes();
    const Note same = numberedNote(2, u"another text"_s);

    QCOMPARE(
        refusal([&] { static_cast<void>(addNote(Directory::openOrMake(disk, dataFolder), same)); }),
        RepositoryError::externalChange());

    QCOMPARE(loaded(disk.image()), oldNotes());
    QVERIFY(!hasHidden(disk, ".quillmark-"));
}

void NoteAdditionTest::refusesAFolderThatIsMovedMeanwhile()
{
    MemoryDisk disk = diskWithNotes();
    bool isMoved = false;
    CallWatcher watcher(disk, [&](MemoryDisk &, const DiskCall &call) {
        if (call.kind == DiskCall::Kind::rename && !isMoved) {
            isMoved = true;
            const MemoryDisk::Unwatched other(disk);
            OtherProgram program(disk);
            program.rename("/data/Penwick/Markdown/Notes", "/data/Penwick/Markdown/away");
            program.makeFolder("/data/Penwick/Markdown/Notes");
        }
        return Fate{};
    });

    QCOMPARE(refusal([&] { addTo(disk); }), RepositoryError::externalChange());

    QVERIFY(isMoved);
    QCOMPARE(disk.namesAt("/data/Penwick/Markdown/away").size(), std::size_t{2});
}

void NoteAdditionTest::refusesWhatIsTooLarge()
{
    MemoryDisk disk = diskWithNotes();
    const Note large = numberedNote(5, QString(qsizetype{NoteFolder::largestFile}, u'a'));

    const auto error = thrown<FileError>(
        [&] { static_cast<void>(addNote(Directory::openOrMake(disk, dataFolder), large)); });

    QCOMPARE(error->reason(), Reason::tooLarge);
    QVERIFY(!hasHidden(disk, ".quillmark-"));
}

void NoteAdditionTest::refusesMoreTextThanTheFolderMayHold()
{
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    for (int i = 10; i < 14; ++i) {
        data.write(noteFile(numberedId(i)), "");
        // Only its size counts.
        std::filesystem::resize_file(data.path(noteFile(numberedId(i))), NoteFolder::largestFile);
    }
    SystemDisk disk;

    const auto error = thrown<FileError>(
        [&] { static_cast<void>(addNote(Directory::openOrMake(disk, data.path()), added)); });

    QCOMPARE(error->reason(), Reason::tooMuchText);
}

void NoteAdditionTest::refusesALongTextAlsoWhereThereAreMany()
{
    const DataFolder data;
    QList<Note> notes;
    for (int i = 0; i < 2500; ++i)
        notes << numberedNote(i, u"body"_s);
    LocalNoteRepository(data.fileURL()).save(snapshotOf(notes));
    for (int i = 3000; i < 3004; ++i) {
        data.write(noteFile(numberedId(i)), "");
        // Only its size counts.
        std::filesystem::resize_file(data.path(noteFile(numberedId(i))),
                                     NoteFolder::largestFile - 64 * 1024);
    }
    SystemDisk disk;
    const Note longOne = numberedNote(4000, QString(300 * 1024, u'x'));

    const auto error = thrown<FileError>(
        [&] { static_cast<void>(addNote(Directory::openOrMake(disk, data.path()), longOne)); });

    QCOMPARE(error->reason(), Reason::tooMuchText);
}

void NoteAdditionTest::keepsThePromiseOfPrivacy()
{
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    std::filesystem::permissions(data.path("Markdown/Notes"), std::filesystem::perms(0755));
    SystemDisk disk;

    QVERIFY(addNote(Directory::openOrMake(disk, data.path()), added));

    QCOMPARE(data.status(noteFile(added.id)).st_mode & 07777U, 0600U);
    QCOMPARE(data.status("Markdown/Notes").st_mode & 07777U, 0700U);
}

void NoteAdditionTest::sharesTheFolderWithOthersThatAdd()
{
    const DataFolder data;
    SystemDisk disk;
    const Directory folder = Directory::openOrMake(disk, data.path());
    FolderLock first;
    FolderLock second;
    FolderLock window;

    QVERIFY(first.take(folder, Disk::Lock::together));
    QVERIFY(second.take(folder, Disk::Lock::together));

    QVERIFY(first.isHeld() && second.isHeld());
    QVERIFY(!window.take(folder));
    first = FolderLock();
    second = FolderLock();
    QVERIFY(window.take(folder));
    QVERIFY(!second.take(folder, Disk::Lock::together));
}

void NoteAdditionTest::keepsAProgramThatOwnsTheFolderWaiting()
{
    const DataFolder data;
    LocalNoteRepository window(data.fileURL());
    SystemDisk disk;
    const Directory folder = Directory::openOrMake(disk, data.path());
    auto adding = std::make_unique<FolderLock>();
    QVERIFY(adding->take(folder, Disk::Lock::together));

    QVERIFY(!window.claim());
    std::thread end([&adding] { adding.reset(); });
    const bool isClaimed = window.claim(30s);
    end.join();

    QVERIFY(isClaimed);
}

QTEST_GUILESS_MAIN(NoteAdditionTest)
#include "NoteAdditionTest.moc"
