// SPDX-License-Identifier: MIT
#include "TakeIn.h"

#include "CallWatcher.h"
#include "DataFolder.h"
#include "FileNames.h"
#include "LocalNoteRepository.h"
#include "NoteFolder.h"
#include "Notes.h"
#include "OtherProgram.h"
#include "RecoveryName.h"
#include "SystemDisk.h"
#include "Thrown.h"

#include <QRegularExpression>
#include <QTest>
#include <algorithm>
#include <functional>
#include <map>
#include <set>

using namespace Qt::Literals::StringLiterals;

namespace {

using Fate = DiskWatcher::Fate;
using Outcome = TakeInPlan::Step::Outcome;

constexpr auto dataFolder = "/data/Penwick";
constexpr auto stateFolder = "/state/Penwick";
constexpr auto conflict = ".sync-conflict-20250301-081530-ABCDEFG.md";

std::string nameOf(int number)
{
    return canonicalText(numberedId(number)).toStdString();
}

std::string pathOf(const std::string &below)
{
    return std::string(dataFolder) + '/' + below;
}

std::string conflictCopyOf(int number)
{
    return pathOf("Markdown/Notes/" + nameOf(number) + conflict);
}

/// Another version of a note, from another computer.
Note versionOf(int number, const QString &body, double later = 10)
{
    Note note = numberedNote(number, body);
    note.updatedAt.secondsSince2001 += later;
    return note;
}

std::string bytesOf(const Note &note)
{
    return noteBytes(note).toStdString();
}

LocalNoteRepository repositoryOn(MemoryDisk &disk)
{
    return LocalNoteRepository(pathOf("notes.json"), disk, {stateFolder});
}

NoteSnapshot loaded(const MemoryDisk::Image &image)
{
    MemoryDisk disk(image);
    return repositoryOn(disk).read();
}

NoteSnapshot oldNotes()
{
    return snapshotOf({numberedNote(1, u"one"_s), numberedNote(2, u"two"_s)}, u"half a thought"_s,
                      {{canonicalText(numberedId(2)), u"two and more"_s}});
}

/// A disk with notes, of which the files are as they were closed.
MemoryDisk diskWith(const std::map<std::string, std::string> &files,
                    const MemoryDisk::Abilities &abilities = {})
{
    MemoryDisk disk(abilities);
    OtherProgram other(disk);
    other.makeFolder("/data");
    other.makeFolder("/state");
    repositoryOn(disk).save(oldNotes());
    for (const auto &[path, bytes] : files) {
        other.makeFolder(std::filesystem::path(path).parent_path().native());
        other.make(path, bytes);
    }
    other.syncAll();
    const MemoryDisk::Image image = disk.image();
    return MemoryDisk(image);
}

TakeInPlan planOf(MemoryDisk &disk)
{
    const Directory data = Directory::openOrMake(disk, dataFolder);
    return TakeIn(data).plan();
}

void takeIn(MemoryDisk &disk)
{
    const Directory data = Directory::openOrMake(disk, dataFolder);
    static_cast<void>(TakeIn(data).perform(stateFolder));
}

QStringList bodiesOf(const NoteSnapshot &snapshot)
{
    QStringList bodies;
    for (const Note &note : snapshot.notes)
        bodies << note.body;
    bodies.sort();
    return bodies;
}

/// Every file below a folder, as its path from there, and its bytes.
void collect(const MemoryDisk &disk, const std::string &folder, const std::string &below,
             std::map<std::string, std::string> &files)
{
    for (const std::string &name : disk.namesAt(folder.c_str())) {
        const std::string path = folder + '/' + name;
        if (const std::string *bytes = disk.contentAt(path.c_str()))
            files[below + name] = *bytes;
        else
            collect(disk, path, below + name + '/', files);
    }
}

std::map<std::string, std::string> filesBelow(const MemoryDisk &disk, const std::string &folder)
{
    std::map<std::string, std::string> files;
    collect(disk, folder, {}, files);
    return files;
}

/// What was put away, whatever the folders are called.
std::multimap<std::string, std::string> originalsOn(const MemoryDisk &disk)
{
    std::multimap<std::string, std::string> originals;
    for (const auto &[path, bytes] : filesBelow(disk, stateFolder)) {
        if (path.starts_with(FileNames::takenInPrefix))
            originals.emplace(path.substr(path.find('/') + 1), bytes);
    }
    return originals;
}

/// One of everything.
std::map<std::string, std::string> everything()
{
    const std::string copy = pathOf(".quillmark-recovery-1/");
    return {{conflictCopyOf(1), bytesOf(versionOf(1, u"one, elsewhere"_s))},
            {pathOf("Markdown/Notes/" + nameOf(7) + ".md..path1"),
             bytesOf(versionOf(7, u"seven, here"_s, 1))},
            {pathOf("Markdown/Notes/" + nameOf(7) + ".md..path2"),
             bytesOf(versionOf(7, u"seven, there"_s, 2))},
            {pathOf("Markdown/Notes/todo.md"), "no note, but a text\n"},
            {pathOf(std::string("Markdown/Drafts/capture") + conflict), "another half"},
            {pathOf("Markdown/Drafts/" + nameOf(9) + ".md"), "a draft without its note"},
            {copy + "Notes/" + nameOf(1) + ".md", bytesOf(versionOf(1, u"one, before"_s))},
            {copy + "Notes/" + nameOf(2) + ".md", bytesOf(numberedNote(2, u"two"_s))},
            {copy + "Drafts/capture.md", "half a thought"},
            {copy + ".format", std::string(FileNames::markerContent)}};
}

QStringList allBodies()
{
    QStringList bodies{u"one"_s,
                       u"two"_s,
                       u"one, elsewhere"_s,
                       u"seven, here"_s,
                       u"seven, there"_s,
                       u"no note, but a text"_s,
                       u"another half"_s,
                       u"a draft without its note"_s,
                       u"one, before"_s};
    bodies.sort();
    return bodies;
}

} // namespace

/// What beside the notes holds texts becomes notes, and nothing is lost on the way.
class TakeInTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void findsNothingInAFolderThatIsAsItShouldBe();
    void findsNothingAndMakesNothingWhereNothingIs();
    void givesTheFirstOfTwoWholeCopiesTheirPlace();
    void makesANoteOfEachKindOfCopy_data();
    void makesANoteOfEachKindOfCopy();
    void keepsTheTimesOfACopy();
    void makesNothingOfACopyThatIsTheNote();
    void makesANoteOfADraftsCopyWithTheTimeOfTheFile();
    void makesNothingOfADraftThatIsANoteByNow();
    void makesANoteOfADraftWithoutItsNote();
    void givesTheLaterOfTwoRenamedFilesTheirNoteBack();
    void keepsTheDraftOfANoteThatComesBack();
    void takesInATextThatIsNoNote();
    void putsAwayWhatIsNoText();
    void leavesAloneWhatRefusesNothing();
    void tellsTheLockOfAnEditor();
    void takesWhatOnlyARecoveryCopyHas();
    void tellsARecoveryCopyOfAnotherComputer();
    void givesTheOnlyCopyTheirPlace();
    void refusesAFolderOfAnotherFormat();
    void putsEveryOriginalAway();
    void twoComputersMakeTheSame();
    void endsTheSameAfterAStopAtAnyCall();
    void endsTheSameAfterAPowerCutAtAnyCall();
    void losesNothingWhenAnyCallFails_data();
    void losesNothingWhenAnyCallFails();
    void copiesToAnotherDisk();
    void endsTheSameAfterAStopOnTheWayToAnotherDisk();
    void leavesWhatChangedMeanwhile();
    void asksTheRepositoryForWhatWasShown();
    void tellsOfCopiesThatALoadPassesOver_data();
    void tellsOfCopiesThatALoadPassesOver();
    void seesCopiesComeAndGo();
    void closesTheFolderOfOriginals();
};

void TakeInTest::findsNothingInAFolderThatIsAsItShouldBe()
{
    MemoryDisk disk = diskWith({});

    QVERIFY(planOf(disk).isEmpty());

    MemoryDisk empty;
    OtherProgram(empty).makeFolder(dataFolder);
    QVERIFY(planOf(empty).isEmpty());
}

void TakeInTest::findsNothingAndMakesNothingWhereNothingIs()
{
    MemoryDisk empty;

    QVERIFY(repositoryOn(empty).planTakeIn().isEmpty());

    QVERIFY(!empty.statusAt(dataFolder));
}

void TakeInTest::givesTheFirstOfTwoWholeCopiesTheirPlace()
{
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    std::filesystem::rename(data.path("Markdown"), data.path(".quillmark-recovery-1"));
    // A real disk lists them in an order of its own.
    for (const char number : std::string_view("23456789"))
        std::filesystem::copy(data.path(".quillmark-recovery-1"),
                              data.path(std::string(".quillmark-recovery-") + number),
                              std::filesystem::copy_options::recursive);

    const TakeInPlan plan = LocalNoteRepository(data.fileURL()).planTakeIn();

    QCOMPARE(plan.steps.size(), std::size_t{9});
    QCOMPARE(plan.steps[0].file.filename(), ".quillmark-recovery-1");
    QCOMPARE(plan.steps[0].outcome, Outcome::restored);
}

void TakeInTest::makesANoteOfEachKindOfCopy_data()
{
    QTest::addColumn<QByteArray>("name");

    for (const char *end :
         {".sync-conflict-20250301-081530-ABCDEFG.md", " (conflicted copy 2025-03-01 081530).md",
          "_conflict-20250301-081530.md", " (Anna's conflicted copy 2025-03-01).md", ".md..path1",
          ".md.conflict1", ".conflict1.md", ".old.md"})
        QTest::newRow(end) << QByteArray::fromStdString(nameOf(1) + end);
}

void TakeInTest::makesANoteOfEachKindOfCopy()
{
    QFETCH(QByteArray, name);
    const std::string path = pathOf("Markdown/Notes/" + name.toStdString());
    MemoryDisk disk = diskWith({{path, bytesOf(versionOf(1, u"one, elsewhere"_s))}});

    const TakeInPlan plan = planOf(disk);
    takeIn(disk);

    QCOMPARE(plan.steps.size(), std::size_t{1});
    QCOMPARE(plan.steps[0].outcome, Outcome::note);
    QCOMPARE(plan.noteCount, 1);
    const NoteSnapshot notes = loaded(disk.image());
    QCOMPARE(bodiesOf(notes), QStringList({u"one"_s, u"one, elsewhere"_s, u"two"_s}));
    QCOMPARE(notes.captureDraft, oldNotes().captureDraft);
    QCOMPARE(notes.editingDrafts, oldNotes().editingDrafts);
    QVERIFY(!disk.statusAt(path.c_str()));
    QCOMPARE(originalsOn(disk).size(), std::size_t{1});
}

void TakeInTest::keepsTheTimesOfACopy()
{
    const Note copy = versionOf(1, u"one, elsewhere"_s);
    MemoryDisk disk = diskWith({{conflictCopyOf(1), bytesOf(copy)}});

    takeIn(disk);

    const QList<Note> notes = loaded(disk.image()).notes;
    const auto made = std::ranges::find(notes, copy.body, &Note::body);
    QVERIFY(made != notes.end());
    QCOMPARE(made->id, QUuid::createUuidV5(copy.id, noteBytes(copy)));
    QVERIFY(made->createdAt == copy.createdAt && made->updatedAt == copy.updatedAt);
}

void TakeInTest::makesNothingOfACopyThatIsTheNote()
{
    MemoryDisk disk = diskWith({{conflictCopyOf(1), bytesOf(numberedNote(1, u"one"_s))}});

    QCOMPARE(planOf(disk).steps.at(0).outcome, Outcome::putAway);
    takeIn(disk);

    QCOMPARE(loaded(disk.image()), oldNotes());
    QCOMPARE(originalsOn(disk).size(), std::size_t{1});
}

void TakeInTest::makesANoteOfADraftsCopyWithTheTimeOfTheFile()
{
    const std::string name = std::string("capture") + conflict;
    const std::string path = pathOf("Markdown/Drafts/" + name);
    MemoryDisk disk = diskWith({{path, " another half\n"}});
    const std::int64_t modified = disk.statusAt(path.c_str())->modified;

    takeIn(disk);

    const QList<Note> notes = loaded(disk.image()).notes;
    const auto made = std::ranges::find(notes, u"another half"_s, &Note::body);
    QVERIFY(made != notes.end());
    QCOMPARE(std::int64_t(made->updatedAt.millisecondsSince1970()), modified / 1'000'000);
    QVERIFY(made->createdAt == made->updatedAt);
}

void TakeInTest::makesNothingOfADraftThatIsANoteByNow()
{
    for (const char *text : {"one\n", "half a thought", "", " \n"}) {
        const std::string name = std::string("capture") + conflict;
        MemoryDisk disk = diskWith({{pathOf("Markdown/Drafts/" + name), text}});

        takeIn(disk);

        QCOMPARE(loaded(disk.image()), oldNotes());
        QCOMPARE(originalsOn(disk).size(), std::size_t{1});
    }
}

void TakeInTest::makesANoteOfADraftWithoutItsNote()
{
    MemoryDisk disk = diskWith({{pathOf("Markdown/Drafts/" + nameOf(9) + ".md"), "nine"}});

    takeIn(disk);

    const QList<Note> notes = loaded(disk.image()).notes;
    const auto made = std::ranges::find(notes, u"nine"_s, &Note::body);
    QVERIFY(made != notes.end());
    QCOMPARE(made->id, QUuid::createUuidV5(numberedId(9), QByteArray("nine")));
}

void TakeInTest::givesTheLaterOfTwoRenamedFilesTheirNoteBack()
{
    const Note earlier = versionOf(7, u"earlier"_s, 1);
    const Note later = versionOf(7, u"later"_s, 2);
    const std::string front = pathOf("Markdown/Notes/" + nameOf(7) + ".md..path");
    for (const bool isSwapped : {false, true}) {
        MemoryDisk disk = diskWith({{front + '1', bytesOf(isSwapped ? later : earlier)},
                                    {front + '2', bytesOf(isSwapped ? earlier : later)}});

        takeIn(disk);

        const QList<Note> notes = loaded(disk.image()).notes;
        QCOMPARE(notes.size(), 4);
        QCOMPARE(*std::ranges::find(notes, numberedId(7), &Note::id), later);
        QCOMPARE(std::ranges::find(notes, u"earlier"_s, &Note::body)->id,
                 QUuid::createUuidV5(numberedId(7), noteBytes(earlier)));
    }
}

void TakeInTest::keepsTheDraftOfANoteThatComesBack()
{
    MemoryDisk disk = diskWith(
        {{pathOf("Markdown/Notes/" + nameOf(7) + ".md..path1"), bytesOf(versionOf(7, u"seven"_s))},
         {pathOf("Markdown/Drafts/" + nameOf(7) + ".md"), "seven and more"}});

    takeIn(disk);

    const NoteSnapshot notes = loaded(disk.image());
    QCOMPARE(notes.notes.size(), 3);
    QCOMPARE(notes.editingDrafts.value(canonicalText(numberedId(7))), u"seven and more"_s);
}

void TakeInTest::takesInATextThatIsNoNote()
{
    MemoryDisk disk = diskWith({{pathOf("Markdown/Notes/" + nameOf(8) + ".md"), "no header"},
                                {pathOf("Markdown/Notes/todo.md"), "to do"}});

    takeIn(disk);

    QCOMPARE(bodiesOf(loaded(disk.image())),
             QStringList({u"no header"_s, u"one"_s, u"to do"_s, u"two"_s}));
}

void TakeInTest::putsAwayWhatIsNoText()
{
    MemoryDisk disk = diskWith({{pathOf("Markdown/Notes/picture.md"), "\xff\xfe"},
                                {pathOf(".quillmark-recovery-1/Notes/huge.md"),
                                 std::string(NoteFolder::largestFile + 1, 'x')}});
    const Directory notes = Directory::openOrMake(disk, pathOf("Markdown/Notes"));
    QVERIFY(disk.makeSymbolicLink(notes.handle(), ".#plan.md", "anna@home.1:2"));
    QVERIFY(disk.makePipe(notes.handle(), "pipe.md"));

    takeIn(disk);

    QCOMPARE(loaded(disk.image()), oldNotes());
    QCOMPARE(disk.namesAt(pathOf("Markdown/Notes").c_str()).size(), std::size_t{2});
}

void TakeInTest::leavesAloneWhatRefusesNothing()
{
    const std::string notes = pathOf("Markdown/Notes/");
    MemoryDisk disk = diskWith({{notes + nameOf(1) + ".md~", "backup"},
                                {notes + "." + nameOf(1) + ".md.swp", "swap"},
                                {notes + "picture.sync-conflict-20250301-081530-ABCDEFG.png", "x"},
                                {notes + "Folder/todo.md", "text"}});

    QVERIFY(planOf(disk).isEmpty());
}

void TakeInTest::tellsTheLockOfAnEditor()
{
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    const std::string lock = ".#" + nameOf(1) + ".md";
    std::filesystem::create_symlink("anna@home.4711", data.path("Markdown/Notes/" + lock));
    data.write("Markdown/Notes/todo.md", "text");

    const TakeInPlan plan = LocalNoteRepository(data.fileURL()).planTakeIn();

    QCOMPARE(plan.steps.size(), std::size_t{2});
    for (const TakeInPlan::Step &step : plan.steps) {
        const bool isLock = step.file.filename() == lock;
        QCOMPARE(step.what.english().startsWith(u"The lock of an editor"), isLock);
    }
}

void TakeInTest::takesWhatOnlyARecoveryCopyHas()
{
    const std::string copy = pathOf(".quillmark-recovery-1/");
    MemoryDisk disk =
        diskWith({{copy + "Notes/" + nameOf(1) + ".md", bytesOf(versionOf(1, u"one"_s))},
                  {copy + "Notes/" + nameOf(2) + ".md", bytesOf(versionOf(2, u"2"_s))},
                  {copy + "Notes/" + nameOf(3) + ".md", bytesOf(versionOf(3, u"3"_s))},
                  {copy + "Notes/" + nameOf(5) + ".md..path1", bytesOf(versionOf(5, u"5"_s))},
                  {copy + "Notes/picture.png", "picture"},
                  {copy + "Drafts/capture.md", "half a thought, and the other"},
                  {copy + "Drafts/" + nameOf(2) + ".md", "two and more"},
                  {pathOf(".quillmark-recovery-2"), bytesOf(versionOf(4, u"4"_s))},
                  {pathOf(".quillmark-recovery-3"), "a draft"},
                  {pathOf(".quillmark-recovery-4/capture.md"), "in a folder"},
                  {pathOf(".quillmark-recovery-5"), ""}});

    const TakeInPlan plan = planOf(disk);
    takeIn(disk);

    QCOMPARE(plan.steps.size(), std::size_t{5});
    QCOMPARE(plan.steps[0].becomes.english(), u"Texts that only it has become notes: 4."_s);
    // The first of those.
    QCOMPARE(plan.steps[0].title, u"2"_s);
    QCOMPARE(plan.steps[4].outcome, Outcome::putAway);
    const NoteSnapshot notes = loaded(disk.image());
    QCOMPARE(bodiesOf(notes), QStringList({u"2"_s, u"3"_s, u"4"_s, u"5"_s, u"a draft"_s,
                                           u"half a thought, and the other"_s, u"in a folder"_s,
                                           u"one"_s, u"two"_s}));
    QVERIFY(std::ranges::find(notes.notes, numberedId(3), &Note::id) != notes.notes.end());
    QVERIFY(std::ranges::find(notes.notes, numberedId(4), &Note::id) != notes.notes.end());
    QCOMPARE(originalsOn(disk).size(), std::size_t{11});
}

void TakeInTest::tellsARecoveryCopyOfAnotherComputer()
{
    const std::string ours = RecoveryName::fresh(dataFolder);
    const std::string theirs = RecoveryName::fresh("/home/anna/Penwick");
    if (RecoveryName::originOf(ours, dataFolder) == RecoveryName::Origin::unknown)
        QSKIP("This computer has no /etc/machine-id.");
    MemoryDisk disk = diskWith({{pathOf(ours), "ours"}, {pathOf(theirs), "theirs"}});

    for (const TakeInPlan::Step &step : planOf(disk).steps) {
        const bool isOurs = step.file.filename() == ours;
        QCOMPARE(step.what.english(),
                 isOurs ? u"A recovery copy."_s : u"A recovery copy that another computer made."_s);
    }
    QCOMPARE(RecoveryName::originOf(".quillmark-recovery-8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F",
                                    dataFolder),
             RecoveryName::Origin::unknown);
}

void TakeInTest::givesTheOnlyCopyTheirPlace()
{
    MemoryDisk disk = diskWith({});
    OtherProgram(disk).rename(pathOf("Markdown"), pathOf(".quillmark-recovery-1"));
    OtherProgram(disk).make(pathOf(".quillmark-recovery-2"), "a draft");

    const TakeInPlan plan = planOf(disk);
    takeIn(disk);

    QCOMPARE(plan.steps.at(0).outcome, Outcome::restored);
    NoteSnapshot notes = loaded(disk.image());
    QCOMPARE(bodiesOf(notes), QStringList({u"a draft"_s, u"one"_s, u"two"_s}));
    QCOMPARE(notes.editingDrafts, oldNotes().editingDrafts);
}

void TakeInTest::refusesAFolderOfAnotherFormat()
{
    MemoryDisk disk = diskWith({{conflictCopyOf(1), bytesOf(versionOf(1, u"x"_s))}});
    OtherProgram(disk).overwrite(pathOf("Markdown/.format"), "Quillmark Markdown 2\n");

    QCOMPARE(refusal([&] { takeIn(disk); }), RepositoryError::invalidMarkdown());

    QVERIFY(disk.statusAt(conflictCopyOf(1).c_str()));
}

void TakeInTest::putsEveryOriginalAway()
{
    const auto files = everything();
    MemoryDisk disk = diskWith(files);

    takeIn(disk);

    const auto originals = originalsOn(disk);
    QCOMPARE(originals.size(), files.size());
    for (const auto &[path, bytes] : files) {
        std::string below = path.substr(pathOf("").size());
        if (below.starts_with("Markdown/"))
            below = below.substr(std::string_view("Markdown/").size());
        const auto kept = originals.find(below);
        QVERIFY2(kept != originals.end() && kept->second == bytes, below.c_str());
    }
    const auto folders = disk.namesAt(stateFolder);
    QVERIFY(std::ranges::any_of(folders, [](const std::string &name) {
        return QRegularExpression(u"^taken-in-\\d{4}-\\d\\d-\\d\\dT\\d{4}Z$"_s)
            .match(QString::fromStdString(name))
            .hasMatch();
    }));
}

void TakeInTest::twoComputersMakeTheSame()
{
    MemoryDisk first = diskWith(everything());
    const MemoryDisk::Image start = first.image();
    MemoryDisk second(start);
    second.letTimePass(1'000'000'000'000);

    takeIn(first);
    takeIn(second);

    QCOMPARE(bodiesOf(loaded(first.image())), allBodies());
    QVERIFY(filesBelow(first, dataFolder) == filesBelow(second, dataFolder));
}

void TakeInTest::endsTheSameAfterAStopAtAnyCall()
{
    const auto files = everything();
    MemoryDisk disk = diskWith(files);
    std::vector<MemoryDisk::Image> images;
    {
        CallWatcher watcher(disk, [&](MemoryDisk &, const DiskCall &call) {
            if (call.mayChangeDisk())
                images.push_back(disk.image());
            return Fate{};
        });
        takeIn(disk);
    }
    const auto done = filesBelow(disk, std::string(dataFolder) + "/Markdown");

    QVERIFY(images.size() > 20);
    for (const MemoryDisk::Image &image : images) {
        MemoryDisk stopped(image);
        takeIn(stopped);
        QVERIFY(filesBelow(stopped, std::string(dataFolder) + "/Markdown") == done);
        QCOMPARE(bodiesOf(loaded(stopped.image())), allBodies());
        QCOMPARE(originalsOn(stopped).size(), files.size());
        QVERIFY(planOf(stopped).isEmpty());
    }
}

void TakeInTest::endsTheSameAfterAPowerCutAtAnyCall()
{
    const auto files = everything();
    MemoryDisk::Abilities abilities;
    abilities.canLosePower = true;
    MemoryDisk disk = diskWith(files, abilities);
    Dice dice(1);
    std::vector<MemoryDisk::Image> images;
    {
        CallWatcher watcher(disk, [&](MemoryDisk &, const DiskCall &call) {
            for (int i = 0; call.mayChangeDisk() && i < 5; ++i)
                images.push_back(disk.afterPowerCut(dice));
            return Fate{};
        });
        takeIn(disk);
    }
    for (int i = 0; i < 50; ++i)
        images.push_back(disk.afterPowerCut(dice));

    for (const MemoryDisk::Image &image : images) {
        MemoryDisk stopped(image);
        takeIn(stopped);
        QCOMPARE(bodiesOf(loaded(stopped.image())), allBodies());
        // An entry that was on its way may be at both ends of it.
        std::set<std::string> kept;
        for (const auto &[path, bytes] : originalsOn(stopped))
            kept.insert(path + '\n' + bytes);
        QCOMPARE(kept.size(), files.size());
    }
}

void TakeInTest::losesNothingWhenAnyCallFails_data()
{
    QTest::addColumn<Fate::Kind>("kind");
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("isForGood");

    for (const int error : {EIO, ENOSPC, EACCES, EXDEV}) {
        QTest::addRow("%s", strerrorname_np(error)) << Fate::Kind::fails << error << false;
        QTest::addRow("%s for good", strerrorname_np(error)) << Fate::Kind::fails << error << true;
    }
    QTest::newRow("an answer is lost") << Fate::Kind::answerIsLost << EIO << false;
}

void TakeInTest::losesNothingWhenAnyCallFails()
{
    QFETCH(Fate::Kind, kind);
    QFETCH(int, error);
    QFETCH(bool, isForGood);
    const MemoryDisk::Image start = diskWith(everything()).image();

    int failures = 0;
    bool isThrough = false;
    for (std::uint32_t bad = 0; !isThrough; ++bad) {
        MemoryDisk disk(start);
        bool isHit = false;
        {
            CallWatcher watcher(disk, [&](MemoryDisk &, const DiskCall &call) {
                const bool isBad = call.number == bad || (isForGood && call.number > bad);
                isHit |= isBad;
                const bool isAnswerAlone = call.kind == DiskCall::Kind::rename ||
                                           call.kind == DiskCall::Kind::unlink ||
                                           call.kind == DiskCall::Kind::sync;
                if (!isBad || (kind == Fate::Kind::answerIsLost && !isAnswerAlone))
                    return Fate{};
                return Fate{kind, error};
            });
            try {
                takeIn(disk);
            } catch (const StorageError &) {
                ++failures;
            }
        }
        isThrough = !isHit;
        QCOMPARE(disk.openHandleCount(), std::size_t{0});
        takeIn(disk);
        QCOMPARE(bodiesOf(loaded(disk.image())), allBodies());
    }
    QVERIFY(failures > 0);
}

void TakeInTest::copiesToAnotherDisk()
{
    const auto files = everything();
    MemoryDisk disk = diskWith(files);
    {
        CallWatcher watcher(disk, [&](MemoryDisk &, const DiskCall &call) {
            const bool isAway = call.kind == DiskCall::Kind::rename &&
                                !std::string_view(call.name).starts_with(FileNames::stagePrefix);
            return isAway ? Fate{Fate::Kind::fails, EXDEV} : Fate{};
        });
        takeIn(disk);
    }

    QCOMPARE(bodiesOf(loaded(disk.image())), allBodies());
    QCOMPARE(originalsOn(disk).size(), files.size());
    QVERIFY(planOf(disk).isEmpty());
}

void TakeInTest::endsTheSameAfterAStopOnTheWayToAnotherDisk()
{
    const auto files = everything();
    MemoryDisk disk = diskWith(files);
    std::vector<MemoryDisk::Image> images;
    {
        CallWatcher watcher(disk, [&](MemoryDisk &, const DiskCall &call) {
            if (call.mayChangeDisk())
                images.push_back(disk.image());
            const bool isAway = call.kind == DiskCall::Kind::rename &&
                                !std::string_view(call.name).starts_with(FileNames::stagePrefix);
            return isAway ? Fate{Fate::Kind::fails, EXDEV} : Fate{};
        });
        takeIn(disk);
    }

    for (const MemoryDisk::Image &image : images) {
        MemoryDisk stopped(image);
        takeIn(stopped);
        QCOMPARE(bodiesOf(loaded(stopped.image())), allBodies());
        // Copies of the first try may be there as well, cut off or whole.
        const auto originals = originalsOn(stopped);
        for (const auto &file : files)
            QVERIFY(std::ranges::any_of(
                originals, [&](const auto &kept) { return kept.second == file.second; }));
        QVERIFY(planOf(stopped).isEmpty());
    }
}

void TakeInTest::leavesWhatChangedMeanwhile()
{
    MemoryDisk disk = diskWith({{conflictCopyOf(1), bytesOf(versionOf(1, u"first"_s))}});
    const Directory data = Directory::openOrMake(disk, dataFolder);
    TakeIn intake(data);
    disk.letTimePass(1'000'000'000);
    OtherProgram(disk).overwrite(conflictCopyOf(1), bytesOf(versionOf(1, u"second"_s)));

    QCOMPARE(refusal([&] { static_cast<void>(intake.perform(stateFolder)); }),
             RepositoryError::externalChange());

    QVERIFY(disk.statusAt(conflictCopyOf(1).c_str()));
    takeIn(disk);
    QCOMPARE(bodiesOf(loaded(disk.image())),
             QStringList({u"first"_s, u"one"_s, u"second"_s, u"two"_s}));
}

void TakeInTest::asksTheRepositoryForWhatWasShown()
{
    MemoryDisk disk = diskWith({{conflictCopyOf(1), bytesOf(versionOf(1, u"first"_s))}});
    LocalNoteRepository repository = repositoryOn(disk);
    const TakeInPlan shown = repository.planTakeIn();
    OtherProgram(disk).make(conflictCopyOf(2), bytesOf(versionOf(2, u"came later"_s)));

    QCOMPARE(refusal([&] { static_cast<void>(repository.takeIn(shown)); }),
             RepositoryError::externalChange());
    QVERIFY(disk.statusAt(conflictCopyOf(1).c_str()));

    const auto target = repository.takeIn(repository.planTakeIn());

    QCOMPARE(target.parent_path(), std::filesystem::path(stateFolder));
    QCOMPARE(repository.load().notes.size(), 4);
}

void TakeInTest::tellsOfCopiesThatALoadPassesOver_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<bool>("isCopy");

    const QByteArray note = QByteArray::fromStdString("Notes/" + nameOf(7));
    QTest::newRow("a note") << note + ".md..path1" << true;
    QTest::newRow("a draft") << QByteArray("Drafts/capture.md.conflict2") << true;
    QTest::newRow("of no note") << QByteArray("Notes/picture.png..path1") << false;
    QTest::newRow("no copy") << note + ".png" << false;
    QTest::newRow("beside the sections") << QByteArray("capture.md..path1") << false;
}

void TakeInTest::tellsOfCopiesThatALoadPassesOver()
{
    QFETCH(QByteArray, file);
    QFETCH(bool, isCopy);
    MemoryDisk disk =
        diskWith({{pathOf("Markdown/" + file.toStdString()), bytesOf(versionOf(7, u"seven"_s))}});
    LocalNoteRepository notes = repositoryOn(disk);
    QVERIFY(!notes.hasCopies());

    QCOMPARE(notes.load(), oldNotes());

    QCOMPARE(notes.hasCopies(), isCopy);
    static_cast<void>(notes.takeIn(notes.planTakeIn()));
    static_cast<void>(notes.reload(oldNotes()));
    QVERIFY(!notes.hasCopies());
}

void TakeInTest::seesCopiesComeAndGo()
{
    MemoryDisk disk = diskWith({});
    OtherProgram other(disk);
    const std::string copy = pathOf("Markdown/Notes/" + nameOf(7) + ".md..path1");
    LocalNoteRepository notes = repositoryOn(disk);
    QCOMPARE(notes.load(), oldNotes());
    other.make(pathOf("Markdown/Notes/picture.png"), "theirs");
    QVERIFY(!notes.isChangedOutside());

    other.make(copy, bytesOf(versionOf(7, u"seven"_s)));
    QVERIFY(notes.isChangedOutside());
    QCOMPARE(notes.reload(oldNotes()), oldNotes());
    QVERIFY(notes.hasCopies());
    QVERIFY(!notes.isChangedOutside());

    other.remove(copy);
    QVERIFY(notes.isChangedOutside());
    QCOMPARE(notes.reload(oldNotes()), oldNotes());
    QVERIFY(!notes.hasCopies());
}

void TakeInTest::closesTheFolderOfOriginals()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL(), data.journalFolders());
    repository.save(oldNotes());
    const std::string name = "Markdown/Notes/" + nameOf(1) + conflict;
    data.write(name, noteBytes(versionOf(1, u"one, elsewhere"_s)));

    const auto target = repository.takeIn(repository.planTakeIn());

    QVERIFY(!data.holds(name));
    const std::string below = target.lexically_relative(data.path()).native();
    QCOMPARE(data.status(below).st_mode & 07777U, 0700U);
    QCOMPARE(data.read(below + "/Notes/" + nameOf(1) + conflict),
             noteBytes(versionOf(1, u"one, elsewhere"_s)));
}

QTEST_GUILESS_MAIN(TakeInTest)
#include "TakeInTest.moc"
