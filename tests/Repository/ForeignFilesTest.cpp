// SPDX-License-Identifier: MIT
#include "LocalNoteRepository.h"

#include "DataFolder.h"
#include "ForeignWriter.h"
#include "ForwardingDisk.h"
#include "Notes.h"
#include "RacingDisk.h"
#include "Thrown.h"
#include "Tidy.h"

#include <QTest>
#include <algorithm>
#include <climits>
#include <cstdlib>
#include <ctime>

using namespace Qt::Literals::StringLiterals;
namespace fs = std::filesystem;

namespace {

/// Saves for each number of notes; more of them on demand.
int saveCount(int usually)
{
    const char *given = std::getenv("QUILLMARK_SAVES");
    return given ? std::max(1, std::atoi(given)) : usually;
}

NoteSnapshot manyNotes(int count)
{
    QList<Note> notes;
    for (int i = 0; i < count; ++i)
        notes.append(numberedNote(i, u"note %1"_s.arg(i)));
    return snapshotOf(notes);
}

const Note kept = numberedNote(1, u"kept"_s);
const Note changed = numberedNote(2, u"old"_s);

NoteSnapshot oldNotes()
{
    return snapshotOf({kept, changed}, u"old"_s);
}

/// Exchanges the whole folder.
NoteSnapshot newNotes()
{
    return snapshotOf({kept, numberedNote(2, u"new"_s)}, u"new"_s);
}

std::string old(const DataFolder &data, std::string_view prefix)
{
    for (const auto &entry : fs::directory_iterator(data.path())) {
        const std::string name = entry.path().filename();
        if (name.starts_with(prefix))
            return name;
    }
    return {};
}

std::int64_t momentOfFiles()
{
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return now.tv_sec * 1'000'000'000LL + now.tv_nsec;
}

/// Renames, and reports that it could not.
class LossyDisk final : public ForwardingDisk {
public:
    void loseAnswers() noexcept { m_losesAnswers = true; }

    Result<void> rename(Handle from, const char *name, Handle to, const char *newName,
                        Rename how) noexcept override
    {
        const Result<void> renamed = ForwardingDisk::rename(from, name, to, newName, how);
        return renamed && m_losesAnswers ? Failure::system(EIO) : renamed;
    }

private:
    bool m_losesAnswers = false;
};

/// Has no hard links.
class CopyingDisk final : public RacingDisk {
public:
    Result<void> link(Handle /*from*/, Handle /*into*/, const char * /*name*/) noexcept override
    {
        return Failure::system(EOPNOTSUPP);
    }
};

/// Has no hard links, and another program removes its file when it is to be linked.
class VanishingDisk final : public ForwardingDisk {
public:
    Result<void> link(Handle from, Handle into, const char *name) noexcept override
    {
        if (std::string_view(name) != "list.txt")
            return ForwardingDisk::link(from, into, name);
        m_folder = from;
        return Failure::system(EOPNOTSUPP);
    }
    Result<Attributes> attributes(Handle folder, const char *name) noexcept override
    {
        if (folder == m_folder && std::string_view(name) == "list.txt")
            static_cast<void>(unlink(folder, name, FileKind::file));
        return ForwardingDisk::attributes(folder, name);
    }

private:
    Handle m_folder = -1;
};

/// Until what happens next to a file has another time than what happened last.
void awaitTheNextMoment()
{
    const std::int64_t before = momentOfFiles();
    QVERIFY(QTest::qWaitFor([&] { return momentOfFiles() != before; }));
}

} // namespace

/// Files of other programs that come, change and go while notes are saved: the saves succeed, and
/// each of the files is afterwards where its program left it.
class ForeignFilesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void savesBesideABusyProgram_data();
    void savesBesideABusyProgram();
    void followsWhatHappensBeforeTheSwap_data();
    void followsWhatHappensBeforeTheSwap();
    void savesBesideAProgramThatNeverRests_data();
    void savesBesideAProgramThatNeverRests();
    void takesBackWhatHappensInANewFolderThatIsTakenBack();
    void removesAnOldFolderThatANoteWasTakenFrom();
    void carriesOverWhatComesIntoTheOldFolder();
    void givesWhatWasReplacedItsLaterName();
    void keepsBothFilesOfOneName();
    void takesAwayWhatIsUnchangedOnly_data();
    void takesAwayWhatIsUnchangedOnly();
    void keepsTheOldFolderForANameThatCannotGetLonger();
    void leavesOutWhatGoesBeforeItIsCopied();
    void copiesSymbolicLinksOnce_data();
    void copiesSymbolicLinksOnce();
    void carriesOverThoughTheAnswersAreLost();
    void saysSoWhenTheFolderIsNeverQuiet();
};

void ForeignFilesTest::savesBesideABusyProgram_data()
{
    QTest::addColumn<int>("notes");
    QTest::addColumn<int>("saves");

    QTest::newRow("100 notes") << 100 << 150;
    QTest::newRow("10,000 notes") << 10'000 << 10;
}

void ForeignFilesTest::savesBesideABusyProgram()
{
    QFETCH(const int, notes);
    QFETCH(const int, saves);
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    NoteSnapshot snapshot = manyNotes(notes);
    repository.save(snapshot);
    ForeignWriter other({data.path("Markdown/Notes"), data.path("Markdown/Drafts")}, 150);

    for (int i = 0; i < saveCount(saves); ++i) {
        // A capture, the edit of a note, and then the pause in typing that writes a draft alone.
        snapshot.notes[i % notes].body = u"changed %1"_s.arg(i);
        snapshot.captureDraft = u"draft %1"_s.arg(i);
        repository.save(snapshot);
        // Now and then the program is at rest for long enough to remove what the saves have left.
        if (i % 3 == 2)
            tidyUp(repository);
        else
            static_cast<void>(repository.tidy(std::chrono::milliseconds(3)));
    }
    other.stop();
    tidyUp(repository);

    QVERIFY(other.changes() > 0);
    QCOMPARE(other.failures(), 0);
    const auto found = other.found();
    for (const auto &[path, content] : other.files())
        QVERIFY2(found.contains(path) && found.at(path) == content, path.c_str());
    // Who replaces a file right before two folders are exchanged and removes it right after that
    // may find it again; nothing of its is lost so.
    const auto surplus = std::ranges::count_if(
        found, [&](const auto &file) { return !other.files().contains(file.first); });
    QVERIFY2(surplus * 100 <= other.changes(), qPrintable(QString::number(surplus)));
    QCOMPARE(data.count(".quillmark-"), 0);
    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), snapshot);
    qInfo("%d changes, %d repetitions, %d files too many", other.changes(), other.repetitions(),
          int(surplus));
}

void ForeignFilesTest::followsWhatHappensBeforeTheSwap_data()
{
    QTest::addColumn<NoteSnapshot>("next");

    QTest::newRow("the drafts") << snapshotOf({kept, changed}, u"new"_s,
                                              {{canonicalText(kept.id), u"new"_s}});
    QTest::newRow("the whole folder") << newNotes();
}

void ForeignFilesTest::followsWhatHappensBeforeTheSwap()
{
    QFETCH(const NoteSnapshot, next);
    const DataFolder data;
    RacingDisk disk;
    LocalNoteRepository repository(data.fileURL(), disk);
    repository.save(oldNotes());
    for (const char *name :
         {"stays", "goes", "moves", "changes", "changes twice", "becomes a folder"})
        data.write(std::string("Markdown/Drafts/") + name, name);
    data.write("Markdown/Drafts/pictures/one", "1");
    data.write("Markdown/Drafts/empty/of late/two", "2");
    DataFolder::Content theirs;
    disk.beforeNextSwap([&] {
        const fs::path drafts = data.path("Markdown/Drafts");
        fs::remove(drafts / "goes");
        fs::rename(drafts / "moves", drafts / "moved");
        data.write("Markdown/Drafts/temporary", "other");
        fs::rename(drafts / "temporary", drafts / "changes");
        // The first change is in the file that both folders share by then, the second in one.
        data.write("Markdown/Drafts/changes twice", "first");
        awaitTheNextMoment();
        data.write("Markdown/Drafts/temporary", "second");
        fs::rename(drafts / "temporary", drafts / "changes twice");
        fs::remove(drafts / "becomes a folder");
        data.write("Markdown/Drafts/becomes a folder/inside", "3");
        data.write("Markdown/Drafts/added", "4");
        data.write("Markdown/Drafts/pictures/three", "5");
        data.write("Markdown/Drafts/new folder/deep/four", "6");
        fs::remove_all(drafts / "empty");
        fs::create_symlink("nowhere", drafts / "link");
        theirs = data.content();
    });

    repository.save(next);
    tidyUp(repository);

    DataFolder::Content found = data.content();
    for (auto *content : {&theirs, &found})
        content->removeIf([](const auto &entry) {
            return entry.key().endsWith(".md") || !entry.key().startsWith("Markdown/Drafts");
        });
    QCOMPARE(found, theirs);
    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), next);
    QCOMPARE(data.count(".quillmark-"), 0);
}

void ForeignFilesTest::savesBesideAProgramThatNeverRests_data()
{
    followsWhatHappensBeforeTheSwap_data();
}

void ForeignFilesTest::savesBesideAProgramThatNeverRests()
{
    QFETCH(const NoteSnapshot, next);
    const DataFolder data;
    RacingDisk disk;
    LocalNoteRepository repository(data.fileURL(), disk);
    repository.save(oldNotes());
    int count = 0;
    disk.beforeEverySwap(
        [&] { data.write("Markdown/Drafts/late " + std::to_string(++count), "theirs"); });

    repository.save(next);
    disk.beforeEverySwap({});
    tidyUp(repository);

    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), next);
    for (int i = 1; i <= count; ++i)
        QCOMPARE(data.read("Markdown/Drafts/late " + std::to_string(i)), "theirs");
}

void ForeignFilesTest::takesBackWhatHappensInANewFolderThatIsTakenBack()
{
    const DataFolder data;
    RacingDisk disk;
    LocalNoteRepository repository(data.fileURL(), disk);
    repository.save(oldNotes());
    data.write("Markdown/Notes/goes", "theirs");
    data.write("Markdown/Notes/stays", "theirs");
    std::ofstream editor(data.path(noteFile(changed.id)), std::ios::app);
    disk.afterNextSwap([&] {
        data.write("Markdown/Notes/added", "theirs");
        fs::remove(data.path("Markdown/Notes/goes"));
        // For which the save is taken back.
        editor << " and theirs" << std::flush;
    });

    const auto error = refusal([&] { repository.save(newNotes()); });

    QCOMPARE(error, RepositoryError::externalChange());
    QCOMPARE(data.read("Markdown/Notes/added"), "theirs");
    QCOMPARE(data.read("Markdown/Notes/stays"), "theirs");
    QVERIFY(!data.holds("Markdown/Notes/goes"));
    QCOMPARE(data.read(noteFile(changed.id)), noteBytes(changed) + " and theirs");
    QCOMPARE(data.count(".quillmark-"), 0);
}

void ForeignFilesTest::removesAnOldFolderThatANoteWasTakenFrom()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(oldNotes());
    repository.save(newNotes());
    const fs::path stage = data.path(old(data, ".quillmark-stage-"));

    fs::rename(stage / fs::path(noteFile(changed.id)).lexically_relative("Markdown"),
               data.path("taken.md"));
    tidyUp(repository);

    QCOMPARE(data.count(".quillmark-"), 0);
    QCOMPARE(data.read("taken.md"), noteBytes(changed));
}

void ForeignFilesTest::carriesOverWhatComesIntoTheOldFolder()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(oldNotes());
    data.write("Markdown/Notes/moves", "theirs");
    repository.save(newNotes());
    const std::string stage = old(data, ".quillmark-stage-");

    // As a program does that has held the folder open.
    data.write(stage + "/Notes/late", "theirs");
    fs::rename(data.path(stage + "/Notes/moves"), data.path(stage + "/Notes/moved"));
    tidyUp(repository);

    QCOMPARE(data.read("Markdown/Notes/late"), "theirs");
    QCOMPARE(data.read("Markdown/Notes/moved"), "theirs");
    QVERIFY(!data.holds("Markdown/Notes/moves"));
    QCOMPARE(data.count(".quillmark-"), 0);
    repository.save(oldNotes());
}

void ForeignFilesTest::givesWhatWasReplacedItsLaterName()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(oldNotes());
    data.write("Markdown/Notes/list.txt", "first");
    repository.save(newNotes());
    const std::string stage = old(data, ".quillmark-stage-");

    // A program that has held the folder open writes its file anew, and then renames what it finds.
    data.write(stage + "/Notes/temporary", "second");
    fs::rename(data.path(stage + "/Notes/temporary"), data.path(stage + "/Notes/list.txt"));
    fs::rename(data.path("Markdown/Notes/list.txt"), data.path("Markdown/Notes/renamed.txt"));
    tidyUp(repository);

    QCOMPARE(data.read("Markdown/Notes/renamed.txt"), "second");
    QVERIFY(!data.holds("Markdown/Notes/list.txt"));
    QCOMPARE(data.count(".quillmark-"), 0);
}

void ForeignFilesTest::keepsBothFilesOfOneName()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(oldNotes());
    repository.save(newNotes());
    data.write(old(data, ".quillmark-stage-") + "/Notes/list.txt", "late");
    data.write("Markdown/Notes/list.txt", "newer");

    tidyUp(repository);

    QCOMPARE(data.read("Markdown/Notes/list.txt"), "newer");
    QCOMPARE(data.read("Markdown/Notes/list.txt.~1~"), "late");
    QCOMPARE(data.count(".quillmark-"), 0);
}

void ForeignFilesTest::takesAwayWhatIsUnchangedOnly_data()
{
    QTest::addColumn<bool>("isAnother");

    QTest::newRow("another one that looks the same") << true;
    QTest::newRow("the same one, written to since") << false;
}

void ForeignFilesTest::takesAwayWhatIsUnchangedOnly()
{
    QFETCH(const bool, isAnother);
    const DataFolder data;
    RacingDisk disk;
    LocalNoteRepository repository(data.fileURL(), disk);
    repository.save(oldNotes());
    data.write("Markdown/Notes/list.txt", "first");
    awaitTheNextMoment();
    disk.afterNextSwap([&] {
        const fs::path live = data.path("Markdown/Notes/list.txt");
        if (isAnother) {
            const fs::path temporary = data.path("temporary");
            data.write("temporary", "later");
            fs::last_write_time(temporary, fs::last_write_time(live));
            fs::rename(temporary, live);
        } else {
            data.write("Markdown/Notes/list.txt", "later");
        }
        // A program that has held the folder open removes its file there.
        fs::remove(data.path(old(data, ".quillmark-recovery-") + "/Notes/list.txt"));
    });

    repository.save(newNotes());
    tidyUp(repository);

    QCOMPARE(data.read("Markdown/Notes/list.txt"), "later");
    QCOMPARE(data.count(".quillmark-"), 0);
}

void ForeignFilesTest::keepsTheOldFolderForANameThatCannotGetLonger()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(oldNotes());
    repository.save(newNotes());
    const std::string name = "/Notes/" + std::string(NAME_MAX, 'n');
    data.write(old(data, ".quillmark-stage-") + name, "late");
    data.write("Markdown" + name, "newer");

    QCOMPARE(refusal([&] { tidyUp(repository); }), RepositoryError::recoveryRequired());
    QCOMPARE(data.read("Markdown" + name), "newer");
    QCOMPARE(data.read(old(data, ".quillmark-recovery-") + name), "late");
}

void ForeignFilesTest::leavesOutWhatGoesBeforeItIsCopied()
{
    const DataFolder data;
    VanishingDisk disk;
    LocalNoteRepository repository(data.fileURL(), disk);
    repository.save(oldNotes());
    data.write("Markdown/Notes/list.txt", "theirs");

    repository.save(newNotes());
    tidyUp(repository);

    QVERIFY(!data.holds("Markdown/Notes/list.txt"));
    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), newNotes());
}

void ForeignFilesTest::copiesSymbolicLinksOnce_data()
{
    QTest::addColumn<bool>("isTakenBack");

    QTest::newRow("saved") << false;
    QTest::newRow("taken back") << true;
}

void ForeignFilesTest::copiesSymbolicLinksOnce()
{
    QFETCH(const bool, isTakenBack);
    const DataFolder data;
    CopyingDisk disk;
    LocalNoteRepository repository(data.fileURL(), disk);
    repository.save(oldNotes());
    fs::create_symlink("elsewhere", data.path("Markdown/Notes/link"));
    std::ofstream editor(data.path(noteFile(changed.id)), std::ios::app);
    if (isTakenBack)
        disk.afterNextSwap([&] { editor << " and theirs" << std::flush; });

    QCOMPARE(refusal([&] { repository.save(newNotes()); }),
             isTakenBack ? std::optional(RepositoryError::externalChange()) : std::nullopt);
    tidyUp(repository);

    QCOMPARE(fs::read_symlink(data.path("Markdown/Notes/link")), "elsewhere");
    QVERIFY(!fs::is_symlink(data.path("Markdown/Notes/link.~1~")));
    QCOMPARE(data.count(".quillmark-"), 0);
}

void ForeignFilesTest::carriesOverThoughTheAnswersAreLost()
{
    const DataFolder data;
    LossyDisk disk;
    LocalNoteRepository repository(data.fileURL(), disk);
    repository.save(oldNotes());
    data.write("Markdown/Notes/goes", "theirs");
    repository.save(newNotes());
    const std::string stage = old(data, ".quillmark-stage-");
    data.write(stage + "/Notes/late", "theirs");
    data.write(stage + "/Notes/list.txt", "late");
    data.write("Markdown/Notes/list.txt", "newer");
    fs::rename(data.path(stage + "/Notes/goes"), data.path("gone"));

    disk.loseAnswers();
    tidyUp(repository);

    QCOMPARE(data.read("Markdown/Notes/late"), "theirs");
    QCOMPARE(data.read("Markdown/Notes/list.txt"), "newer");
    QCOMPARE(data.read("Markdown/Notes/list.txt.~1~"), "late");
    QCOMPARE(data.count(".quillmark-"), 0);
}

void ForeignFilesTest::saysSoWhenTheFolderIsNeverQuiet()
{
    // A folder cannot be carried over into which another disk is mounted meanwhile, and the like;
    // here the whole of it is another one each time, of the same content.
    const DataFolder data;
    RacingDisk disk;
    LocalNoteRepository repository(data.fileURL(), disk);
    repository.save(oldNotes());
    const auto before = data.content();
    bool isCopy = false;
    int tries = 0;
    disk.beforeEverySwap([&] {
        tries += isCopy ? 0 : 1;
        if (std::exchange(isCopy, !isCopy))
            return;
        const fs::path away = data.path().parent_path() / "away";
        fs::remove_all(away);
        fs::rename(data.path("Markdown"), away);
        fs::copy(away, data.path("Markdown"), fs::copy_options::recursive);
    });

    const auto error = thrown<FileError>([&] { repository.save(newNotes()); });

    QVERIFY(error.has_value());
    QCOMPARE(error->reason(), Reason::busy);
    QCOMPARE(error->path(), data.path("Markdown"));
    QCOMPARE(data.content(), before);
    QCOMPARE(tries, 20);
}

QTEST_GUILESS_MAIN(ForeignFilesTest)
#include "ForeignFilesTest.moc"
