// SPDX-License-Identifier: MIT
#include "LocalNoteRepository.h"
#include "NoteAddition.h"
#include "NoteFolder.h"
#include "RepositoryError.h"
#include "SystemDisk.h"

#include "DataFolder.h"
#include "Notes.h"
#include "Thrown.h"
#include "Tidy.h"

#include <QTest>
#include <climits>

using namespace Qt::Literals::StringLiterals;
namespace fs = std::filesystem;

namespace {

/// A note whose file has exactly so many bytes.
Note noteOfSize(int number, std::size_t bytes)
{
    const auto header = static_cast<std::size_t>(noteBytes(numberedNote(number, {})).size());
    return numberedNote(number, QString(static_cast<qsizetype>(bytes - header), u'x'));
}

/// A note's file with a hole for its text, so that it takes no room on the disk.
void writeHollowNote(const DataFolder &data, int number, std::size_t bytes)
{
    const std::string name = noteFile(numberedId(number));
    data.write(name, noteBytes(numberedNote(number, {})));
    fs::resize_file(data.path(name), bytes);
}

QList<Note> manyNotes(std::size_t count)
{
    QList<Note> notes;
    notes.reserve(static_cast<qsizetype>(count));
    const Timestamp time{760000000.25};
    for (std::size_t i = 0; i < count; ++i)
        notes.append({QUuid::createUuid(), QString::number(i), time, time});
    std::ranges::sort(notes, {}, &Note::id);
    return notes;
}

/// Below the folder, with exactly so many bytes in its path.
fs::path deepFolder(const fs::path &folder, std::size_t length)
{
    std::string path = folder.native();
    while (path.size() + NAME_MAX + 1 < length)
        path += '/' + std::string(100, 'd');
    return path + '/' + std::string(length - path.size() - 1, 'e');
}

std::optional<FileError> failureOfSave(LocalNoteRepository &repository,
                                       const NoteSnapshot &snapshot)
{
    return thrown<FileError>([&] { repository.save(snapshot); });
}

std::optional<FileError> failureOfLoad(const DataFolder &data)
{
    return thrown<FileError>(
        [&] { static_cast<void>(LocalNoteRepository(data.fileURL()).load()); });
}

} // namespace

/// What just fits is kept, and what does not is refused with nothing lost.
class LimitsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keepsTheLargestNoteAndRefusesALarger();
    void keepsTheLargestDraftAndRefusesALarger();
    void keepsTheMostNotesAndRefusesMore();
    void looksAtADraftOfEveryNote();
    void keepsTheMostTextAndRefusesMore();
    void worksAtTheLongestPath();
    void refusesAPathThatNoCallTakes();
};

void LimitsTest::keepsTheLargestNoteAndRefusesALarger()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    NoteSnapshot snapshot = snapshotOf({noteOfSize(1, NoteFolder::largestFile)});
    const std::string name = noteFile(snapshot.notes[0].id);

    repository.save(snapshot);

    QCOMPARE(fs::file_size(data.path(name)), NoteFolder::largestFile);
    QVERIFY(LocalNoteRepository(data.fileURL()).load() == snapshot);

    NoteSnapshot larger = snapshot;
    larger.notes[0].body += u'x';
    const auto error = failureOfSave(repository, larger);

    QVERIFY(error.has_value());
    QCOMPARE(error->reason(), Reason::tooLarge);
    QCOMPARE(error->path(), data.path(name));
    QVERIFY(LocalNoteRepository(data.fileURL()).load() == snapshot);
    QCOMPARE(data.count(".quillmark-"), 0);

    fs::resize_file(data.path(name), NoteFolder::largestFile + 1);
    QCOMPARE(failureOfLoad(data)->reason(), Reason::tooLarge);
    QCOMPARE(fs::file_size(data.path(name)), NoteFolder::largestFile + 1);
}

void LimitsTest::keepsTheLargestDraftAndRefusesALarger()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    NoteSnapshot snapshot = snapshotOf({}, QString(NoteFolder::largestFile, u'x'));

    repository.save(snapshot);

    QVERIFY(LocalNoteRepository(data.fileURL()).load() == snapshot);
    snapshot.captureDraft += u'x';
    QCOMPARE(failureOfSave(repository, snapshot)->reason(), Reason::tooLarge);
    QCOMPARE(fs::file_size(data.path("Markdown/Drafts/capture.md")), NoteFolder::largestFile);
}

void LimitsTest::keepsTheMostNotesAndRefusesMore()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    NoteSnapshot snapshot = snapshotOf(manyNotes(NoteFolder::mostNotes));

    repository.save(snapshot);
    snapshot.captureDraft = u"a save of one change"_s;
    repository.save(snapshot);

    QVERIFY(LocalNoteRepository(data.fileURL()).load() == snapshot);

    NoteSnapshot more = snapshot;
    more.notes.append(numberedNote(1, u"one too many"_s));
    const auto onSave = failureOfSave(repository, more);
    QVERIFY(onSave.has_value());
    QCOMPARE(onSave->reason(), Reason::tooManyNotes);
    QCOMPARE(onSave->path(), data.path("Markdown/Notes"));
    SystemDisk disk;
    const auto onAddition = thrown<FileError>([&] {
        static_cast<void>(addNote(Directory::openOrMake(disk, data.path()), more.notes.last()));
    });
    QCOMPARE(onAddition.has_value() ? onAddition->reason() : Reason::system, Reason::tooManyNotes);
    QVERIFY(!data.holds(noteFile(numberedId(1))));
    QCOMPARE(data.count(".quillmark-"), 0);

    data.write(noteFile(numberedId(1)), noteBytes(numberedNote(1, u"of another program"_s)));
    const auto onLoad = failureOfLoad(data);
    QVERIFY(onLoad.has_value());
    QCOMPARE(onLoad->reason(), Reason::tooManyNotes);
    QCOMPARE(onLoad->path(), data.path("Markdown/Notes"));

    fs::remove(data.path(noteFile(numberedId(1))));
    QVERIFY(LocalNoteRepository(data.fileURL()).load() == snapshot);
}

void LimitsTest::looksAtADraftOfEveryNote()
{
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save({});
    // One file under many names, and again another one: a file has not as many as are needed.
    constexpr std::size_t mostNames = 50'000;
    const auto nameOf = [](std::size_t number) {
        const QUuid id(static_cast<uint>(number), 0x3C1D, 0x4E0A, 0x9C, 0x55, 0, 0, 0, 0, 0, 0);
        return "Markdown/Drafts/" + canonicalText(id).toStdString() + ".md";
    };
    for (std::size_t i = 0; i < NoteFolder::mostNotes; ++i) {
        if (i % mostNames == 0)
            data.write(nameOf(i), "x");
        else
            fs::create_hard_link(data.path(nameOf(i - i % mostNames)), data.path(nameOf(i)));
    }

    // There are no such notes; but that is found only where the drafts are looked at.
    const auto refusal = thrown<RepositoryError>(
        [&] { static_cast<void>(LocalNoteRepository(data.fileURL()).load()); });
    QVERIFY(refusal.has_value());
    QCOMPARE(refusal->reason(), Reason::invalidMarkdown);

    data.write(nameOf(NoteFolder::mostNotes), "x");
    QCOMPARE(failureOfLoad(data)->reason(), Reason::tooManyNotes);
}

void LimitsTest::keepsTheMostTextAndRefusesMore()
{
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save({});
    constexpr int count = NoteFolder::mostBytes / NoteFolder::largestFile;
    for (int i = 0; i < count; ++i)
        writeHollowNote(data, i, NoteFolder::largestFile);
    LocalNoteRepository repository(data.fileURL());
    NoteSnapshot snapshot = repository.load();
    QCOMPARE(snapshot.notes.size(), count);

    // One more byte, even if only that of a draft.
    snapshot.captureDraft = u"x"_s;
    const auto onSave = failureOfSave(repository, snapshot);
    QVERIFY(onSave.has_value());
    QCOMPARE(onSave->reason(), Reason::tooMuchText);
    QCOMPARE(onSave->path(), data.path("Markdown"));
    QCOMPARE(data.read("Markdown/Drafts/capture.md"), "");
    QCOMPARE(data.count(".quillmark-"), 0);

    // There is room again as soon as a note is gone, in the same save.
    snapshot.notes.removeLast();
    repository.save(snapshot);
    QCOMPARE(data.read("Markdown/Drafts/capture.md"), "x");

    writeHollowNote(data, count, NoteFolder::largestFile);
    const auto onLoad = failureOfLoad(data);
    QVERIFY(onLoad.has_value());
    QCOMPARE(onLoad->reason(), Reason::tooMuchText);
    QVERIFY(data.holds(noteFile(numberedId(count))));
}

void LimitsTest::worksAtTheLongestPath()
{
    // All that is in the data folder is reached from the open folder.
    const DataFolder data;
    const fs::path folder = deepFolder(data.path(), PATH_MAX - 1);
    fs::create_directories(folder);
    LocalNoteRepository repository(folder / "notes.json");
    repository.save(snapshotOf({numberedNote(1, u"a"_s)}));

    const NoteSnapshot second = snapshotOf({numberedNote(1, u"b"_s)}, u"draft"_s);
    repository.save(second);
    tidyUp(repository);

    QCOMPARE(LocalNoteRepository(folder / "notes.json").load(), second);
    QCOMPARE(std::distance(fs::directory_iterator(folder), {}), 1);
}

void LimitsTest::refusesAPathThatNoCallTakes()
{
    LocalNoteRepository repository(fs::path('/' + std::string(PATH_MAX, 'd')) / "notes.json");

    const auto onLoad = thrown<FileError>([&] { static_cast<void>(repository.load()); });
    const auto onSave = failureOfSave(repository, {});

    QCOMPARE(onLoad->systemError(), ENAMETOOLONG);
    QCOMPARE(onSave->systemError(), ENAMETOOLONG);
}

QTEST_GUILESS_MAIN(LimitsTest)
#include "LimitsTest.moc"
