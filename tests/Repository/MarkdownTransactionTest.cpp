// SPDX-License-Identifier: MIT
#include "MarkdownTransaction.h"

#include "DataFolder.h"
#include "LoadedFolder.h"
#include "LocalNoteRepository.h"
#include "Notes.h"
#include "RacingDisk.h"
#include "Thrown.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
namespace fs = std::filesystem;

namespace {

NoteSnapshot oldNotes()
{
    return snapshotOf({numberedNote(1, u"kept"_s), numberedNote(2, u"old"_s)}, u"old"_s);
}

/// Differ in the draft alone, in which one file changes.
NoteSnapshot newDraft()
{
    return snapshotOf(oldNotes().notes, u"new"_s);
}

/// Differ in a note as well, so that the whole folder changes.
NoteSnapshot newNotes()
{
    return snapshotOf({numberedNote(1, u"kept"_s), numberedNote(2, u"new"_s)}, u"new"_s);
}

void addChanges()
{
    QTest::addColumn<NoteSnapshot>("next");

    QTest::newRow("one file") << newDraft();
    QTest::newRow("the whole folder") << newNotes();
}

/// The one entry of the data folder whose name begins so.
QString hidden(const DataFolder &data, std::string_view prefix)
{
    QString found;
    for (const auto &entry : fs::directory_iterator(data.path())) {
        const std::string name = entry.path().filename();
        if (name.starts_with(prefix))
            found = found.isEmpty() ? QString::fromStdString(name) : u"more than one"_s;
    }
    return found;
}

/// From a folder that has just been loaded to another snapshot.
class Change {
public:
    Change(const DataFolder &data, Disk &disk, const NoteSnapshot &next)
        : m_loaded(disk, data.path())
        , m_difference(next, m_loaded.snapshot, &m_loaded.known, data.path("Markdown"))
        , transaction(Directory::openOrMake(disk, data.path()), &m_loaded.known, m_difference)
    {
    }

private:
    LoadedFolder m_loaded;
    SnapshotDifference m_difference;

public:
    MarkdownTransaction transaction;
};

} // namespace

class MarkdownTransactionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void refusesAFolderWithARecoveryCopy_data();
    void refusesAFolderWithARecoveryCopy();
    void changesNothingBeforeTheCommit_data();
    void changesNothingBeforeTheCommit();
    void hasAnOldFolderToBeRemovedOnlyOfAFolder();
    void namesWhatIsHiddenWithFreshIdentifiers_data();
    void namesWhatIsHiddenWithFreshIdentifiers();
    void leavesAnOldStageWhereItIs();
    void refusesWhatIsNotKnown_data();
    void refusesWhatIsNotKnown();
    void refusesAMarkdownFolderThatIsNone();
    void refusesADataFolderThatIsAFile();
    void doesNotFollowLinks();
};

void MarkdownTransactionTest::refusesAFolderWithARecoveryCopy_data()
{
    QTest::addColumn<QByteArray>("name");

    QTest::newRow("a file in a folder of that name")
        << QByteArray(".quillmark-recovery-8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F/x.md");
    QTest::newRow("a file of that name") << QByteArray(".quillmark-recovery-anything");
    QTest::newRow("nothing after the prefix") << QByteArray(".quillmark-recovery-");
}

void MarkdownTransactionTest::refusesAFolderWithARecoveryCopy()
{
    QFETCH(const QByteArray, name);
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    data.write(name.toStdString(), "x");
    const auto before = data.content();
    SystemDisk disk;

    const auto check = refusal(
        [&] { MarkdownTransaction::checkRecovery(Directory::openOrMake(disk, data.path())); });
    const auto begin = refusal([&] { Change(data, disk, newNotes()); });

    QCOMPARE(check, RepositoryError::recoveryRequired());
    QCOMPARE(begin, RepositoryError::recoveryRequired());
    QCOMPARE(data.content(), before);
}

void MarkdownTransactionTest::changesNothingBeforeTheCommit_data()
{
    addChanges();
}

void MarkdownTransactionTest::changesNothingBeforeTheCommit()
{
    QFETCH(const NoteSnapshot, next);
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    const auto before = data.content();
    SystemDisk disk;
    {
        const Change change(data, disk, next);

        QCOMPARE(data.count(".quillmark-stage-"), 1);
        QCOMPARE(LocalNoteRepository(data.fileURL()).load(), oldNotes());
    }

    QCOMPARE(data.content(), before);
}

void MarkdownTransactionTest::hasAnOldFolderToBeRemovedOnlyOfAFolder()
{
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    SystemDisk disk;
    {
        Change one(data, disk, newDraft());
        QVERIFY(one.transaction.commit());
        QVERIFY(!one.transaction.takeOldFolder());
        QCOMPARE(data.count(".quillmark-"), 0);
    }
    const NoteSnapshot last = snapshotOf(newNotes().notes, u"newest"_s);
    Change whole(data, disk, last);
    QVERIFY(whole.transaction.commit());

    auto old = whole.transaction.takeOldFolder();

    QVERIFY(old.has_value());
    QCOMPARE(data.count(".quillmark-stage-"), 1);
    QVERIFY(old->remove(FolderTree::Deadline::max()) == OldFolder::Outcome::gone);
    QCOMPARE(data.count(".quillmark-"), 0);
    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), last);
}

void MarkdownTransactionTest::namesWhatIsHiddenWithFreshIdentifiers_data()
{
    addChanges();
}

void MarkdownTransactionTest::namesWhatIsHiddenWithFreshIdentifiers()
{
    QFETCH(const NoteSnapshot, next);
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    RacingDisk disk;
    QStringList names;
    for (const NoteSnapshot &snapshot : {next, oldNotes()}) {
        Change change(data, disk, snapshot);
        names.append(hidden(data, ".quillmark-stage-"));
        disk.afterNextSwap([&] { names.append(hidden(data, ".quillmark-recovery-")); });
        QVERIFY(change.transaction.commit());
        if (auto old = change.transaction.takeOldFolder())
            QVERIFY(old->remove(FolderTree::Deadline::max()) == OldFolder::Outcome::gone);
    }

    QCOMPARE(names.size(), 4);
    QSet<QString> identifiers;
    const QRegularExpression form(u"^\\.quillmark-(stage|recovery)-"
                                  "([0-9A-F]{8}(?:-[0-9A-F]{4}){3}-[0-9A-F]{12})$"_s);
    for (const QString &name : names) {
        const auto match = form.match(name);
        QVERIFY2(match.hasMatch(), qPrintable(name));
        identifiers.insert(match.captured(2));
    }
    QCOMPARE(identifiers.size(), 4);
}

void MarkdownTransactionTest::leavesAnOldStageWhereItIs()
{
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    data.write(".quillmark-stage-old/file", "1");
    SystemDisk disk;
    {
        Change change(data, disk, newNotes());
        QVERIFY(change.transaction.commit());
        QVERIFY(change.transaction.takeOldFolder()->remove(FolderTree::Deadline::max()) ==
                OldFolder::Outcome::gone);
    }

    QCOMPARE(data.read(".quillmark-stage-old/file"), "1");
    QCOMPARE(data.count(".quillmark-stage-"), 1);
    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), newNotes());
}

void MarkdownTransactionTest::refusesWhatIsNotKnown_data()
{
    QTest::addColumn<bool>("isKnown");

    QTest::newRow("a folder that went") << true;
    QTest::newRow("a folder that came") << false;
}

void MarkdownTransactionTest::refusesWhatIsNotKnown()
{
    QFETCH(const bool, isKnown);
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    SystemDisk disk;
    LoadedFolder loaded(disk, data.path());
    KnownFolder *known = isKnown ? &loaded.known : nullptr;
    const SnapshotDifference difference(newNotes(), {}, known, data.path("Markdown"));
    if (isKnown)
        fs::remove_all(data.path("Markdown"));
    const auto before = data.content();

    const auto error = refusal(
        [&] { MarkdownTransaction(Directory::openOrMake(disk, data.path()), known, difference); });

    QCOMPARE(error, RepositoryError::externalChange());
    QCOMPARE(data.content(), before);
}

void MarkdownTransactionTest::refusesAMarkdownFolderThatIsNone()
{
    const DataFolder data;
    data.write("Markdown", "a file");
    const auto before = data.content();
    SystemDisk disk;
    const SnapshotDifference difference(newNotes(), {}, nullptr, data.path("Markdown"));

    const auto error = thrown<FileError>([&] {
        MarkdownTransaction(Directory::openOrMake(disk, data.path()), nullptr, difference);
    });

    QVERIFY(error.has_value());
    QCOMPARE(error->path(), data.path("Markdown"));
    QCOMPARE(error->reason(), Reason::notFolder);
    QCOMPARE(data.content(), before);
}

void MarkdownTransactionTest::refusesADataFolderThatIsAFile()
{
    const DataFolder data;
    data.write("file", "x");

    const auto error = thrown<FileError>(
        [&] { LocalNoteRepository(data.path("file/notes.json")).save(newNotes()); });

    QVERIFY(error.has_value());
    QCOMPARE(error->path(), data.path("file"));
    QCOMPARE(error->reason(), Reason::notFolder);
    QCOMPARE(data.read("file"), "x");
}

void MarkdownTransactionTest::doesNotFollowLinks()
{
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    SystemDisk disk;
    LoadedFolder loaded(disk, data.path());
    const SnapshotDifference difference(newNotes(), loaded.snapshot, &loaded.known,
                                        data.path("Markdown"));
    fs::rename(data.path("Markdown"), data.path("elsewhere"));
    fs::create_directory_symlink("elsewhere", data.path("Markdown"));
    const auto before = data.content();

    const auto error = thrown<FileError>([&] {
        MarkdownTransaction(Directory::openOrMake(disk, data.path()), &loaded.known, difference);
    });

    QVERIFY(error.has_value());
    QCOMPARE(error->reason(), Reason::notFolder);
    QCOMPARE(data.content(), before);
}

QTEST_GUILESS_MAIN(MarkdownTransactionTest)
#include "MarkdownTransactionTest.moc"
