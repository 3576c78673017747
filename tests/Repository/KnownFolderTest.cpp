// SPDX-License-Identifier: MIT
#include "KnownFolder.h"

#include "CountingDisk.h"
#include "DataFolder.h"
#include "LoadedFolder.h"
#include "LocalNoteRepository.h"
#include "Notes.h"
#include "SnapshotDifference.h"

#include <QTest>
#include <fcntl.h>

using namespace Qt::Literals::StringLiterals;
namespace fs = std::filesystem;

namespace {

constexpr auto never = KnownFolder::Deadline::max();
constexpr auto atOnce = KnownFolder::Deadline::min();

NoteSnapshot numberedNotes(int count)
{
    NoteSnapshot snapshot;
    for (int i = 0; i < count; ++i)
        snapshot.notes.append(numberedNote(i, u"a"_s));
    return snapshot;
}

/// Time enough since the last change for every file to get a stamp.
void settle(const DataFolder &data)
{
    SystemDisk disk;
    std::int64_t last = 0;
    for (const auto &entry : fs::recursive_directory_iterator(data.path())) {
        const timespec changed =
            data.status(entry.path().lexically_relative(data.path()).native()).st_ctim;
        last = std::max(last, changed.tv_sec * std::int64_t{1'000'000'000} + changed.tv_nsec);
    }
    QTRY_VERIFY(disk.now() > last + FileStamp::settlingTime);
}

void setTimeBack(const fs::path &path, const struct stat &before)
{
    const std::array<timespec, 2> times{before.st_atim, before.st_mtim};
    QCOMPARE(::utimensat(AT_FDCWD, path.c_str(), times.data(), 0), 0);
}

std::vector<std::string> names(const KnownFolder &known, Section section)
{
    std::vector<std::string> found;
    for (const NoteFile &file : known.files(section))
        found.emplace_back(file.place.name.c_str());
    return found;
}

NoteFilePlace notePlace(int number)
{
    return {Section::notes, NoteFileName::ofNote(numberedId(number))};
}

} // namespace

class KnownFolderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isStillWithoutReading();
    void readsWhatHasNoStampAndLearnsIt();
    void readsEveryTimeWhereTimesAreUnreliable();
    void readsAgainWhatIsTheSameUnderAnotherInode();
    void isNoLonger_data();
    void isNoLonger();
    void refusesWhatIsNoFile();
    void saysThatItCannotLook();
    void overlooksFilesOfOtherPrograms();
    void seesAChangeOfTheMarker();
    void seesAChangeWhoseTimeWasSetBack();
    void comparesTheContentOfOneFile();
    void learnsStampsInSlices();
    void looksAtTheClockAlsoWhereNothingIsToBeRead();
    void learnsNothingOfWhatChanged();
    void learnsNothingWhereTimesAreUnreliable();
    void takesOverWhatWasWrittenAndRemoved();
    void findsAFileByItsPlace();
    void countsTheTextsAlone();

private:
    [[nodiscard]] bool isStill(LoadedFolder &loaded, Section section) const;

    /// A folder of that many notes; all files are old enough for a stamp.
    void makeFolder(int count);

    std::optional<DataFolder> m_data;
    std::optional<CountingDisk> m_disk;
    std::optional<LoadedFolder> m_loaded;
};

bool KnownFolderTest::isStill(LoadedFolder &loaded, Section section) const
{
    DirectoryListing listing = *loaded.folder.directory(section).list();
    listing.sort();
    return loaded.known.isStill(loaded.folder, section, listing);
}

void KnownFolderTest::makeFolder(int count)
{
    m_loaded.reset();
    m_data.emplace();
    m_disk.emplace();
    LocalNoteRepository(m_data->fileURL()).save(numberedNotes(count));
    settle(*m_data);
    m_loaded.emplace(*m_disk, m_data->path());
    QCOMPARE(m_disk->takeReads(), count + 2);
    static_cast<void>(m_disk->takeLooks());
}

void KnownFolderTest::isStillWithoutReading()
{
    makeFolder(3);

    QVERIFY(m_loaded->known.isMarkerStill(m_loaded->folder));
    QVERIFY(isStill(*m_loaded, Section::notes));
    QVERIFY(isStill(*m_loaded, Section::drafts));

    QCOMPARE(m_disk->takeReads(), 0);
}

void KnownFolderTest::readsWhatHasNoStampAndLearnsIt()
{
    makeFolder(3);
    // A new link is a new time of change, and no change of the content.
    fs::create_hard_link(m_data->path(noteFile(numberedId(1))), m_data->path("link"));
    settle(*m_data);

    QVERIFY(isStill(*m_loaded, Section::notes));
    QCOMPARE(m_disk->takeReads(), 1);
    QVERIFY(isStill(*m_loaded, Section::notes));
    QCOMPARE(m_disk->takeReads(), 0);
}

void KnownFolderTest::readsEveryTimeWhereTimesAreUnreliable()
{
    makeFolder(3);
    m_disk->setReliableTimes(false);
    LoadedFolder loaded(*m_disk, m_data->path());
    static_cast<void>(m_disk->takeReads());

    for (int i = 0; i < 2; ++i) {
        QVERIFY(isStill(loaded, Section::notes));
        QCOMPARE(m_disk->takeReads(), 3);
    }
}

void KnownFolderTest::readsAgainWhatIsTheSameUnderAnotherInode()
{
    makeFolder(2);
    const std::string name = noteFile(numberedId(1));
    m_data->write("copy", m_data->read(name));
    fs::rename(m_data->path("copy"), m_data->path(name));

    QVERIFY(isStill(*m_loaded, Section::notes));
    QCOMPARE(m_disk->takeReads(), 1);
}

void KnownFolderTest::isNoLonger_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("isRemoved");

    const QByteArray note = QByteArray::fromStdString(noteFile(numberedId(1)));
    QTest::newRow("edited") << note << false;
    QTest::newRow("removed") << note << true;
    QTest::newRow("last one removed") << QByteArray::fromStdString(noteFile(numberedId(2))) << true;
    QTest::newRow("one added before") << QByteArray("Markdown/Notes/00.md") << false;
    QTest::newRow("one added after") << QByteArray("Markdown/Notes/ZZ.MD") << false;
    QTest::newRow("a hidden one added") << QByteArray("Markdown/Notes/.a.md") << false;
}

void KnownFolderTest::isNoLonger()
{
    QFETCH(const QByteArray, name);
    QFETCH(const bool, isRemoved);
    makeFolder(3);

    if (isRemoved)
        fs::remove(m_data->path(name.toStdString()));
    else
        m_data->write(name.toStdString(), "theirs");

    QVERIFY(!isStill(*m_loaded, Section::notes));
    QVERIFY(isStill(*m_loaded, Section::drafts));
}

void KnownFolderTest::refusesWhatIsNoFile()
{
    makeFolder(1);
    const std::string name = noteFile(numberedId(0));
    fs::remove(m_data->path(name));
    fs::create_symlink("/etc/hostname", m_data->path(name));

    std::optional<Reason> reason;
    try {
        static_cast<void>(isStill(*m_loaded, Section::notes));
    } catch (const FileError &error) {
        reason = error.reason();
    }

    QVERIFY(reason == Reason::notRegularFile);
    QCOMPARE(m_disk->takeReads(), 0);
}

void KnownFolderTest::saysThatItCannotLook()
{
    makeFolder(1);
    m_disk->breakDown();

    QVERIFY_THROWS_EXCEPTION(FileError, static_cast<void>(isStill(*m_loaded, Section::notes)));
}

void KnownFolderTest::overlooksFilesOfOtherPrograms()
{
    makeFolder(1);
    m_data->write("Markdown/Notes/00 first.txt", "1");
    m_data->write("Markdown/Notes/zz/last.md", "2");
    fs::create_symlink("/nowhere", m_data->path("Markdown/Notes/link"));

    QVERIFY(isStill(*m_loaded, Section::notes));
    QCOMPARE(m_disk->takeReads(), 0);
}

void KnownFolderTest::seesAChangeOfTheMarker()
{
    makeFolder(0);
    const QByteArray marker = m_data->read("Markdown/.format");

    m_data->write("Markdown/.format", "Quillmark Markdown 2\n");
    QVERIFY(!m_loaded->known.isMarkerStill(m_loaded->folder));

    m_data->write("Markdown/.format", marker);
    QVERIFY(m_loaded->known.isMarkerStill(m_loaded->folder));
}

void KnownFolderTest::seesAChangeWhoseTimeWasSetBack()
{
    makeFolder(2);
    const std::string name = noteFile(numberedId(1));
    const struct stat before = m_data->status(name);
    m_data->write(name, m_data->read(name).replace("\na", "\nb"));
    setTimeBack(m_data->path(name), before);
    const struct stat after = m_data->status(name);
    QCOMPARE(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    QCOMPARE(after.st_size, before.st_size);
    QCOMPARE(after.st_ino, before.st_ino);

    QVERIFY(!isStill(*m_loaded, Section::notes));
}

void KnownFolderTest::comparesTheContentOfOneFile()
{
    makeFolder(2);
    const NoteFile &file = *m_loaded->known.find(notePlace(1));
    const Directory data = Directory::openOrMake(*m_disk, m_data->path());
    m_data->write("moved", m_data->read(noteFile(numberedId(1))));
    m_data->write("other", "theirs");

    QVERIFY(KnownFolder::isContentStill(file, data, "moved"));
    QVERIFY(!KnownFolder::isContentStill(file, data, "other"));
    QVERIFY(!KnownFolder::isContentStill(file, data, "missing"));
}

void KnownFolderTest::learnsStampsInSlices()
{
    constexpr int count = 50;
    makeFolder(count);
    for (int i = 0; i < count; ++i)
        fs::permissions(m_data->path(noteFile(numberedId(i))), fs::perms(0640));
    settle(*m_data);

    int slices = 0;
    std::optional<std::size_t> from = 0;
    while (from && slices < count) {
        from = m_loaded->known.learnStamps(m_loaded->folder, *from, atOnce);
        QVERIFY(m_disk->takeReads() <= 16);
        ++slices;
    }

    QVERIFY(!from);
    QVERIFY2(slices >= 3, "It paid no heed to the deadline.");
    QVERIFY(isStill(*m_loaded, Section::notes));
    QCOMPARE(m_disk->takeReads(), 0);
}

void KnownFolderTest::looksAtTheClockAlsoWhereNothingIsToBeRead()
{
    makeFolder(200);

    const auto next = m_loaded->known.learnStamps(m_loaded->folder, 0, atOnce);

    QCOMPARE(m_disk->takeReads(), 0);
    QVERIFY(m_disk->takeLooks() <= 32);
    QVERIFY(next.has_value());
    QVERIFY(!m_loaded->known.learnStamps(m_loaded->folder, *next, never));
}

void KnownFolderTest::learnsNothingOfWhatChanged()
{
    makeFolder(3);
    const std::string name = noteFile(numberedId(1));
    const struct stat before = m_data->status(name);
    m_data->write(name, m_data->read(name).replace("\na", "\nb"));
    setTimeBack(m_data->path(name), before);
    fs::remove(m_data->path(noteFile(numberedId(2))));
    settle(*m_data);

    QVERIFY(!m_loaded->known.learnStamps(m_loaded->folder, 0, never));

    const Directory &notes = m_loaded->folder.directory(Section::notes);
    const NoteFile &changed = *m_loaded->known.find(notePlace(1));
    QVERIFY(!changed.stamp.isOf(*notes.status(changed.place.name.c_str())));
    QVERIFY(!isStill(*m_loaded, Section::notes));
}

void KnownFolderTest::learnsNothingWhereTimesAreUnreliable()
{
    makeFolder(3);
    m_disk->setReliableTimes(false);
    LoadedFolder loaded(*m_disk, m_data->path());
    static_cast<void>(m_disk->takeReads());

    QVERIFY(!loaded.known.learnStamps(loaded.folder, 0, never));

    QCOMPARE(m_disk->takeReads(), 0);
    QVERIFY(!loaded.known.find(notePlace(1))
                 ->stamp.isOf(*loaded.folder.directory(Section::notes)
                                   .status(NoteFileName::ofNote(numberedId(1)).c_str())));
}

void KnownFolderTest::takesOverWhatWasWrittenAndRemoved()
{
    makeFolder(4);
    KnownFolder &known = m_loaded->known;
    NoteSnapshot next = m_loaded->snapshot;
    next.notes[3].body = u"changed"_s;
    next.notes.removeAt(1);
    next.notes.prepend(numberedNote(9, u"new"_s));
    next.editingDrafts.insert(canonicalText(numberedId(2)), u"edit"_s);
    SnapshotDifference difference(next, m_loaded->snapshot, &known, m_data->path("Markdown"));

    known.reserve(difference);
    known.apply(std::move(difference));

    QCOMPARE(names(known, Section::marker), std::vector<std::string>{".format"});
    QVERIFY(std::ranges::is_sorted(names(known, Section::notes)));
    QCOMPARE(known.files(Section::notes).size(), 4U);
    QVERIFY(!known.find(notePlace(1)));
    QCOMPARE(known.find(notePlace(0))->note.body, u"a"_s);
    QCOMPARE(known.find(notePlace(3))->note.body, u"changed"_s);
    QCOMPARE(known.find(notePlace(9))->note, numberedNote(9, u"new"_s));
    QCOMPARE(names(known, Section::drafts),
             (std::vector<std::string>{canonicalText(numberedId(2)).toStdString() + ".md",
                                       "capture.md"}));
    QVERIFY(SnapshotDifference(next, {}, &known, m_data->path("Markdown")).isEmpty());
    // What was written there has still to be looked at.
    QVERIFY(!isStill(*m_loaded, Section::notes));
}

void KnownFolderTest::findsAFileByItsPlace()
{
    makeFolder(2);

    QVERIFY(m_loaded->known.find(notePlace(1)));
    QVERIFY(!m_loaded->known.find(notePlace(2)));
    QVERIFY(!m_loaded->known.find({Section::drafts, NoteFileName::ofNote(numberedId(1))}));
    QVERIFY(!KnownFolder().find(notePlace(1)));
}

void KnownFolderTest::countsTheTextsAlone()
{
    makeFolder(2);

    QCOMPARE(m_loaded->known.textSize(),
             std::size_t(2 * noteBytes(numberedNote(1, u"a"_s)).size()));
}

QTEST_GUILESS_MAIN(KnownFolderTest)
#include "KnownFolderTest.moc"
