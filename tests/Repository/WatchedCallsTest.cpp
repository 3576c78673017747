// SPDX-License-Identifier: MIT
#include "WatchedCalls.h"

#include "LocalNoteRepository.h"

#include "DataFolder.h"
#include "Notes.h"
#include "Thrown.h"
#include "Tidy.h"

#include <QTest>
#include <cerrno>

using namespace Qt::Literals::StringLiterals;
namespace fs = std::filesystem;

namespace {

NoteSnapshot oldNotes()
{
    return snapshotOf({numberedNote(1, u"kept"_s), numberedNote(2, u"old"_s)}, u"old"_s);
}

NoteSnapshot newNotes()
{
    return snapshotOf({numberedNote(1, u"kept"_s), numberedNote(2, u"new"_s)}, u"new"_s);
}

bool isSame(int file, const fs::path &path)
{
    struct stat one {};
    struct stat other {};
    return ::fstat(file, &one) == 0 && ::stat(path.c_str(), &other) == 0 &&
           one.st_ino == other.st_ino && one.st_dev == other.st_dev;
}

/// Does something once, when the file is about to be read.
std::function<void(int)> onceBeforeReadOf(const fs::path &path, const std::function<void()> &action)
{
    return [=, isDone = false](int file) mutable {
        if (isDone || !isSame(file, path))
            return;
        isDone = true;
        action();
    };
}

void append(const fs::path &path, const char *text)
{
    std::ofstream(path, std::ios::binary | std::ios::app) << text;
}

QByteArray nameWithoutIdentifier(const char *name)
{
    const QByteArray whole(name);
    return whole.startsWith(".quillmark-") ? whole.split('-').at(1) : whole;
}

} // namespace

/// What the storage asks of the kernel, and what it makes of what happens meanwhile.
class WatchedCallsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsAFileToItsEndThatGrowsMeanwhile();
    void refusesAFileThatGrowsBeyondTheLimitMeanwhile();
    void refusesAFolderThatWasReplacedMeanwhile();
    void syncsTheFoldersThatLeadToAFirstOne();
    void syncsOnceWhatItLoaded();
    void syncsBetweenTheStepsOfARenameInTwo();
    void goesByWhatBecameOfARename_data();
    void goesByWhatBecameOfARename();
};

void WatchedCallsTest::readsAFileToItsEndThatGrowsMeanwhile()
{
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(snapshotOf({numberedNote(1, u"one"_s)}));
    const QByteArray more(100'000, 'x');
    WatchedCalls calls;
    const fs::path note = data.path(noteFile(numberedId(1)));
    calls.beforeRead = onceBeforeReadOf(note, [&] { append(note, more.constData()); });

    const NoteSnapshot read = LocalNoteRepository(data.fileURL()).load();

    QCOMPARE(read.notes.first().body, u"one"_s + QString::fromLatin1(more));
}

void WatchedCallsTest::refusesAFileThatGrowsBeyondTheLimitMeanwhile()
{
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(snapshotOf({numberedNote(1, u"one"_s)}));
    WatchedCalls calls;
    const fs::path note = data.path(noteFile(numberedId(1)));
    calls.beforeRead =
        onceBeforeReadOf(note, [&] { fs::resize_file(note, NoteFolder::largestFile + 1); });

    const auto error =
        thrown<FileError>([&] { static_cast<void>(LocalNoteRepository(data.fileURL()).load()); });

    QVERIFY(error.has_value());
    QCOMPARE(error->reason(), Reason::tooLarge);
    QCOMPARE(error->path(), note);
}

void WatchedCallsTest::refusesAFolderThatWasReplacedMeanwhile()
{
    const DataFolder data;
    const DataFolder theirs;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    LocalNoteRepository(theirs.fileURL()).save(newNotes());
    WatchedCalls calls;
    calls.beforeRead = onceBeforeReadOf(data.path(noteFile(numberedId(1))), [&] {
        fs::rename(data.path("Markdown"), data.path("away"));
        fs::rename(theirs.path("Markdown"), data.path("Markdown"));
    });
    LocalNoteRepository repository(data.fileURL());

    QCOMPARE(refusal([&] { static_cast<void>(repository.load()); }),
             RepositoryError::externalChange());

    QCOMPARE(repository.load(), newNotes());
}

void WatchedCallsTest::syncsTheFoldersThatLeadToAFirstOne()
{
    const DataFolder data;
    const fs::path folder = data.path("of/mine");
    std::vector<fs::path> unsynced{folder, data.path("of"), data.path(), data.path().parent_path(),
                                   data.path().parent_path().parent_path()};
    WatchedCalls calls;
    calls.beforeSync = [&](int file) {
        std::erase_if(unsynced, [&](const fs::path &path) { return isSame(file, path); });
    };

    LocalNoteRepository(folder / "notes.json").save(oldNotes());

    QCOMPARE(unsynced, std::vector<fs::path>());
}

void WatchedCallsTest::syncsOnceWhatItLoaded()
{
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    int syncs = 0;
    WatchedCalls calls;
    calls.beforeSync = [&](int file) { syncs += isSame(file, data.path()) ? 1 : 0; };
    LocalNoteRepository repository(data.fileURL());
    const NoteSnapshot snapshot = repository.load();
    QCOMPARE(syncs, 0);

    // It may be of a program that ended before its own sync.
    repository.save(snapshot);
    QCOMPARE(syncs, 1);
    repository.save(snapshot);
    QCOMPARE(syncs, 1);

    static_cast<void>(repository.load());
    repository.save(snapshot);
    QCOMPARE(syncs, 2);

    // A save that changes something syncs for itself.
    static_cast<void>(repository.load());
    repository.save(newNotes());
    const int syncsOfAChange = syncs;
    repository.save(newNotes());
    QCOMPARE(syncs, syncsOfAChange);
}

void WatchedCallsTest::syncsBetweenTheStepsOfARenameInTwo()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(oldNotes());
    QByteArrayList steps;
    WatchedCalls calls;
    calls.onRename = [&](const char *from, const char *to, unsigned flags,
                         const std::function<int()> &rename) {
        if (flags != 0) {
            errno = EINVAL;
            return -1;
        }
        steps << nameWithoutIdentifier(from) + " -> " + nameWithoutIdentifier(to);
        return rename();
    };
    calls.beforeSync = [&](int file) {
        if (isSame(file, data.path()))
            steps << "sync";
    };

    repository.save(newNotes());

    // At no time may the disk know of a step and not of the one before.
    const QByteArrayList expected{"Markdown -> recovery", "sync", "stage -> Markdown", "sync",
                                  "recovery -> stage",    "sync"};
    QCOMPARE(steps.mid(steps.indexOf(expected.first()), expected.size()), expected);
    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), newNotes());
}

void WatchedCallsTest::goesByWhatBecameOfARename_data()
{
    QTest::addColumn<bool>("isFirst");
    QTest::addColumn<int>("lost");
    QTest::addColumn<int>("error");

    for (const int error : {EINTR, EIO}) {
        const char *const name = strerrorname_np(error);
        QTest::addRow("the first folder, %s", name) << true << 0 << error;
        QTest::addRow("the name before the exchange, %s", name) << false << 0 << error;
        QTest::addRow("the exchange, %s", name) << false << 1 << error;
        QTest::addRow("the name after the exchange, %s", name) << false << 2 << error;
    }
}

void WatchedCallsTest::goesByWhatBecameOfARename()
{
    QFETCH(bool, isFirst);
    QFETCH(int, lost);
    QFETCH(int, error);
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    if (!isFirst)
        repository.save(oldNotes());
    int renames = 0;
    WatchedCalls calls;
    // A network file system may lose its answer: the rename has taken place and seems to fail.
    calls.onRename = [&](const char *, const char *, unsigned, const std::function<int()> &rename) {
        const int answer = rename();
        if (renames++ != lost)
            return answer;
        errno = error;
        return -1;
    };

    repository.save(newNotes());
    tidyUp(repository);

    QVERIFY(renames > lost);
    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), newNotes());
    QCOMPARE(data.count(""), 1);
}

QTEST_GUILESS_MAIN(WatchedCallsTest)
#include "WatchedCallsTest.moc"
