// SPDX-License-Identifier: MIT
#include "SnapshotDifference.h"

#include "DataFolder.h"
#include "LoadedFolder.h"
#include "Notes.h"
#include "SystemDisk.h"
#include "Thrown.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
namespace fs = std::filesystem;

namespace {

const fs::path shownPath = "/data/Markdown";

/// What a difference would do, as a text: each file with a plus or a minus, in order.
QStringList changesOf(const SnapshotDifference &difference)
{
    QStringList changes;
    for (const FileChange &change : difference.changes())
        changes.append((change.bytes ? u"+"_s : u"-"_s) + QString::fromUtf8(change.folder) + u'/' +
                       QString::fromUtf8(change.name));
    return changes;
}

QString noteName(int number)
{
    return u"Notes/"_s + canonicalText(numberedId(number)) + u".md"_s;
}

QString draftName(int number)
{
    return u"Drafts/"_s + canonicalText(numberedId(number)) + u".md"_s;
}

QString key(int number)
{
    return canonicalText(numberedId(number));
}

/// A note as somebody would write it by hand: the header in another order and with a key of their
/// own, times in another zone and with other digits.
QByteArray handWritten(const QUuid &id)
{
    return "---\nmood:  good\nupdated: 2025-03-02T10:00:00.5+01:00\nquillmark: 1\n\nid: " +
           canonicalText(id).toLower().toLatin1() +
           "\ncreated: 2025-03-01T08:15:30.250000000Z\n---\nby hand";
}

/// A folder with a note of each kind, all of them read as they stand.
void writeFolder(const DataFolder &data)
{
    data.write("Markdown/.format", "Quillmark Markdown 1\n");
    data.write("Markdown/Drafts/capture.MD", "capture");
    data.write(noteFile(numberedId(1)), noteBytes(numberedNote(1, u"one"_s)));
    data.write("Markdown/Notes/" + key(2).toLower().toStdString() + ".Md",
               handWritten(numberedId(2)));
    data.write("Markdown/Drafts/" + key(2).toLower().toStdString() + ".md", "edit");
}

} // namespace

class SnapshotDifferenceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void writesEverythingOfAFirstFolder();
    void isEmptyForWhatWasRead();
    void leavesWhatDidNotChangeAsItIsWritten();
    void givesAChangedNoteItsCanonicalName();
    void givesAChangedDraftItsCanonicalName();
    void keepsAChangedNoteAtItsPlace();
    void writesAndRemovesByAscendingPlace();
    void knowsWhatItIsToWrite();
    void overlooksTheOrderOfNotes();
    void writesAKeyAsItIsSpelledOnlyWhenItsTextChanges();
    void looksNotAtNotesThatAreShared();
    void looksAtEveryNoteWithoutAFolder();
    void refuses_data();
    void refuses();
    void refusesAlsoWhenNotesAreShared();
    void refusesWhatNoFileCanHold();
    void refusesMoreNotesThanTheFolderMayHave();
    void refusesMoreTextThanTheFolderMayHave();

private:
    [[nodiscard]] SnapshotDifference difference(const NoteSnapshot &next) const
    {
        return {next, m_loaded->snapshot, &m_loaded->known, shownPath};
    }

    std::optional<DataFolder> m_data;
    SystemDisk m_disk;
    std::optional<LoadedFolder> m_loaded;
};

void SnapshotDifferenceTest::init()
{
    m_loaded.reset();
    m_data.emplace();
    writeFolder(*m_data);
    m_loaded.emplace(m_disk, m_data->path());
    // From here on no file is looked at.
    fs::remove_all(m_data->path());
}

void SnapshotDifferenceTest::writesEverythingOfAFirstFolder()
{
    const NoteSnapshot snapshot =
        snapshotOf({numberedNote(2, u"b"_s), numberedNote(1, u"a"_s)}, u"c"_s, {{key(1), u"d"_s}});

    const SnapshotDifference difference(snapshot, {}, nullptr, shownPath);

    QCOMPARE(changesOf(difference),
             (QStringList{u"+/.format"_s, u"+"_s + noteName(1), u"+"_s + noteName(2),
                          u"+"_s + draftName(1), u"+Drafts/capture.md"_s}));
    QVERIFY(!difference.isEmpty());
    QCOMPARE(changesOf(SnapshotDifference({}, {}, nullptr, shownPath)),
             (QStringList{u"+/.format"_s, u"+Drafts/capture.md"_s}));
}

void SnapshotDifferenceTest::isEmptyForWhatWasRead()
{
    const SnapshotDifference same = difference(m_loaded->snapshot);

    QVERIFY(same.isEmpty());
    QVERIFY(same.changes().empty());
    QCOMPARE(m_loaded->snapshot.notes.size(), 2);
    QCOMPARE(m_loaded->snapshot.captureDraft, u"capture"_s);
    QCOMPARE(m_loaded->snapshot.editingDrafts.value(key(2)), u"edit"_s);
}

void SnapshotDifferenceTest::leavesWhatDidNotChangeAsItIsWritten()
{
    NoteSnapshot next = m_loaded->snapshot;
    next.notes[0].body = u"changed"_s;

    QCOMPARE(changesOf(difference(next)), QStringList{u"+"_s + noteName(1)});
}

void SnapshotDifferenceTest::givesAChangedNoteItsCanonicalName()
{
    NoteSnapshot next = m_loaded->snapshot;
    next.notes[1].body = u"changed"_s;

    const SnapshotDifference changed = difference(next);

    QCOMPARE(changesOf(changed),
             (QStringList{u"+"_s + noteName(2), u"-Notes/"_s + key(2).toLower() + u".Md"_s}));
    QCOMPARE(changed.writes().size(), 1U);
    QCOMPARE(changed.removals().size(), 1U);
    QCOMPARE(QByteArrayView(*changed.changes().front().bytes).toByteArray(),
             noteBytes(next.notes[1]));
}

void SnapshotDifferenceTest::givesAChangedDraftItsCanonicalName()
{
    NoteSnapshot next = m_loaded->snapshot;
    next.captureDraft = u"changed"_s;
    next.editingDrafts[key(2)] = u"changed"_s;

    QCOMPARE(changesOf(difference(next)),
             (QStringList{u"+"_s + draftName(2), u"-Drafts/"_s + key(2).toLower() + u".md"_s,
                          u"-Drafts/capture.MD"_s, u"+Drafts/capture.md"_s}));
}

void SnapshotDifferenceTest::keepsAChangedNoteAtItsPlace()
{
    NoteSnapshot next = m_loaded->snapshot;
    next.notes[0].updatedAt.secondsSince2001 += 1;

    QCOMPARE(changesOf(difference(next)), QStringList{u"+"_s + noteName(1)});
}

void SnapshotDifferenceTest::writesAndRemovesByAscendingPlace()
{
    NoteSnapshot next = m_loaded->snapshot;
    next.notes = {numberedNote(5, u"e"_s), numberedNote(3, u"c"_s)};
    next.captureDraft.clear();
    next.editingDrafts = {{key(3), u""_s}};

    const SnapshotDifference all = difference(next);

    QCOMPARE(changesOf(all),
             (QStringList{u"-"_s + noteName(1), u"+"_s + noteName(3), u"+"_s + noteName(5),
                          u"-Notes/"_s + key(2).toLower() + u".Md"_s, u"+"_s + draftName(3),
                          u"-Drafts/"_s + key(2).toLower() + u".md"_s, u"-Drafts/capture.MD"_s,
                          u"+Drafts/capture.md"_s}));
    QVERIFY(std::ranges::is_sorted(all.places()));
    QVERIFY(std::ranges::is_sorted(all.removals()));
    QVERIFY(std::ranges::is_sorted(all.writes(), {}, &NoteFile::place));
    QCOMPARE(all.places().size(), all.changes().size());
    for (std::size_t i = 0; i < all.places().size(); ++i)
        QCOMPARE(std::string(all.changes()[i].name), std::string(all.places()[i].name.c_str()));
}

void SnapshotDifferenceTest::knowsWhatItIsToWrite()
{
    NoteSnapshot next = m_loaded->snapshot;
    next.notes[0].body = u"羽"_s;

    SnapshotDifference changed = difference(next);
    const std::string bytes(*changed.changes().front().bytes);
    const std::vector<NoteFile> files = changed.takeWrites();

    QCOMPARE(QByteArray::fromStdString(bytes), noteBytes(next.notes[0]));
    QCOMPARE(files.size(), 1U);
    QCOMPARE(files[0].size, bytes.size());
    QVERIFY(files[0].isWrittenAs(bytes));
    QCOMPARE(files[0].note, next.notes[0]);
}

void SnapshotDifferenceTest::overlooksTheOrderOfNotes()
{
    NoteSnapshot next = m_loaded->snapshot;
    next.notes.swapItemsAt(0, 1);

    QVERIFY(difference(next).isEmpty());
}

void SnapshotDifferenceTest::writesAKeyAsItIsSpelledOnlyWhenItsTextChanges()
{
    NoteSnapshot next = m_loaded->snapshot;
    next.editingDrafts = {{key(2), u"edit"_s}};
    QVERIFY(difference(next).isEmpty());

    next.editingDrafts = {{key(2).toLower(), u"changed"_s}};
    QCOMPARE(changesOf(difference(next)), QStringList{u"+Drafts/"_s + key(2).toLower() + u".md"_s});
}

void SnapshotDifferenceTest::looksNotAtNotesThatAreShared()
{
    // Notes that would be refused show whether they are looked at.
    NoteSnapshot last = m_loaded->snapshot;
    last.notes.append(last.notes[0]);
    NoteSnapshot next = last;
    next.captureDraft = u"changed"_s;
    QVERIFY(next.notes.isSharedWith(last.notes));

    const SnapshotDifference drafts(next, last, &m_loaded->known, shownPath);

    QCOMPARE(changesOf(drafts), (QStringList{u"-Drafts/capture.MD"_s, u"+Drafts/capture.md"_s}));
    next.notes.detach();
    QCOMPARE(refusal([&] { SnapshotDifference(next, last, &m_loaded->known, shownPath); }),
             RepositoryError::invalidMarkdown());
}

void SnapshotDifferenceTest::looksAtEveryNoteWithoutAFolder()
{
    const SnapshotDifference first(m_loaded->snapshot, m_loaded->snapshot, nullptr, shownPath);

    QCOMPARE(first.changes().size(), 5U);
}

void SnapshotDifferenceTest::refuses_data()
{
    QTest::addColumn<NoteSnapshot>("snapshot");

    const Note known = numberedNote(1, u"changed"_s);
    const Note added = numberedNote(7, u"new"_s);
    Note timeless = known;
    timeless.createdAt.secondsSince2001 = std::numeric_limits<double>::infinity();
    QTest::newRow("a known note twice") << snapshotOf({known, added, known});
    QTest::newRow("a new note twice") << snapshotOf({added, known, added});
    QTest::newRow("a time that no text can carry") << snapshotOf({timeless});
    QTest::newRow("a draft without its note") << snapshotOf({known}, {}, {{key(2), u"edit"_s}});
    QTest::newRow("a draft without any note") << snapshotOf({}, {}, {{key(7), u""_s}});
    QTest::newRow("two keys of one note")
        << snapshotOf({known}, {}, {{key(1), u"1"_s}, {key(1).toLower(), u"2"_s}});
    QTest::newRow("two keys of one note with one text")
        << snapshotOf({known}, {}, {{key(1), u"1"_s}, {key(1).toLower(), u"1"_s}});
    QTest::newRow("a key that is no identifier")
        << snapshotOf({known}, {}, {{u"capture"_s, u""_s}});
    QTest::newRow("a key that would lead elsewhere")
        << snapshotOf({known}, {}, {{u"../Notes/x"_s, u""_s}});
}

void SnapshotDifferenceTest::refuses()
{
    QFETCH(const NoteSnapshot, snapshot);

    QCOMPARE(refusal([&] { static_cast<void>(difference(snapshot)); }),
             RepositoryError::invalidMarkdown());
    QCOMPARE(refusal([&] { SnapshotDifference(snapshot, {}, nullptr, shownPath); }),
             RepositoryError::invalidMarkdown());
}

void SnapshotDifferenceTest::refusesAlsoWhenNotesAreShared()
{
    NoteSnapshot next = m_loaded->snapshot;
    next.editingDrafts.insert(key(7), u"of no note"_s);
    QVERIFY(next.notes.isSharedWith(m_loaded->snapshot.notes));

    QCOMPARE(refusal([&] { static_cast<void>(difference(next)); }),
             RepositoryError::invalidMarkdown());
}

void SnapshotDifferenceTest::refusesWhatNoFileCanHold()
{
    NoteSnapshot next = m_loaded->snapshot;
    next.notes[0].body = u"half "_s + QChar(0xD83E);

    const auto error = thrown<FileError>([&] { static_cast<void>(difference(next)); });

    QVERIFY(error.has_value());
    QCOMPARE(error->reason(), Reason::notUnicode);
    QCOMPARE(error->path(), shownPath / noteName(1).toStdString());
}

void SnapshotDifferenceTest::refusesMoreNotesThanTheFolderMayHave()
{
    NoteSnapshot next;
    next.notes = QList<Note>(NoteFolder::mostNotes + 1);

    const auto error = thrown<FileError>([&] { static_cast<void>(difference(next)); });

    QVERIFY(error.has_value());
    QCOMPARE(error->reason(), Reason::tooManyNotes);
    QCOMPARE(error->path(), shownPath / "Notes");
}

void SnapshotDifferenceTest::refusesMoreTextThanTheFolderMayHave()
{
    // What a change replaces and what a removal frees does not count any more.
    std::vector<NoteFile> files(2);
    for (int i = 0; i < 2; ++i) {
        files[static_cast<std::size_t>(i)].place = {Section::notes,
                                                    NoteFileName::ofNote(numberedId(i))};
        files[static_cast<std::size_t>(i)].note = numberedNote(i, u"known"_s);
        files[static_cast<std::size_t>(i)].size = NoteFolder::mostBytes / 2;
    }
    const KnownFolder full(std::move(files));
    const QList<Note> known{numberedNote(0, u"known"_s), numberedNote(1, u"known"_s)};
    const auto error = [&](const NoteSnapshot &next) {
        const auto found =
            thrown<FileError>([&] { SnapshotDifference(next, {}, &full, shownPath); });
        return found ? std::optional(found->reason()) : std::nullopt;
    };

    QVERIFY(error(snapshotOf(known)) == std::nullopt);
    QVERIFY(error(snapshotOf(known, u"x"_s)) == Reason::tooMuchText);
    QVERIFY(error(snapshotOf(known + QList<Note>{numberedNote(2, u"x"_s)})) == Reason::tooMuchText);
    QVERIFY(error(snapshotOf({known[0], numberedNote(1, u"x"_s)}, u"x"_s)) == std::nullopt);
    QVERIFY(error(snapshotOf({known[0]}, u"x"_s)) == std::nullopt);
}

QTEST_GUILESS_MAIN(SnapshotDifferenceTest)
#include "SnapshotDifferenceTest.moc"
