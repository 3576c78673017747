// SPDX-License-Identifier: MIT
#include "FileTransaction.h"

#include "DataFolder.h"
#include "RefusedCall.h"
#include "RepositoryError.h"
#include "SyncedDisk.h"
#include "Thrown.h"

#include <QTest>
#include <cerrno>

namespace fs = std::filesystem;

namespace {

using Bytes = std::optional<std::string_view>;

/// A transaction over the file "Notes/note", hidden in the folder above, with all that must outlive
/// it. The constructor makes the stage.
class FileEdit {
public:
    FileEdit(const DataFolder &data, Bytes bytes)
        : m_hidden(Directory::openOrMake(m_disk, data.path()))
        , m_parent(Directory::openOrMake(m_disk, data.path("Notes")))
        , m_place{m_parent, m_hidden, "note", ".stage", ".recovery"}
        , m_hasOld(oldStatus(m_parent))
        , m_transaction(std::in_place, m_place, bytes, oldStatus(m_parent))
    {
    }

    void failSyncsAfter(int count) noexcept { m_disk.failSyncsAfter(count); }

    /// Whether all renames are on the disk afterwards.
    [[nodiscard]] bool isSyncedAtTheEnd()
    {
        m_transaction.reset();
        return m_disk.isSynced();
    }

    /// With a check that reads the old file, where there is one.
    [[nodiscard]] bool commit(std::string_view expected = "old")
    {
        return m_transaction->commit([&] {
            std::string bytes;
            const auto found = m_hidden.readFile(".recovery", 100, bytes);
            return !m_hasOld || (found && bytes == expected);
        });
    }

    /// Something happens while the new file is live and the old one is checked.
    template <typename Action>
    [[nodiscard]] bool commitDuring(Action action, bool isSame = true)
    {
        return m_transaction->commit([&] {
            action();
            return isSame;
        });
    }

private:
    static std::optional<FileStatus> oldStatus(const Directory &folder)
    {
        const Result<FileStatus> found = folder.status("note");
        return found ? std::optional(*found) : std::nullopt;
    }

    SyncedDisk m_disk;
    Directory m_hidden;
    Directory m_parent;
    SwapPlace m_place;
    const bool m_hasOld;
    std::optional<FileTransaction> m_transaction;
};

using Change = void (*)(const DataFolder &data);

void addFile(const DataFolder &data)
{
    data.write("Notes/note", "theirs");
}

void removeFile(const DataFolder &data)
{
    fs::remove(data.path("Notes/note"));
}

void replaceFile(const DataFolder &data)
{
    data.write("Notes/.temporary", "theirs");
    fs::rename(data.path("Notes/.temporary"), data.path("Notes/note"));
}

void linkFile(const DataFolder &data)
{
    removeFile(data);
    fs::create_symlink("other", data.path("Notes/note"));
}

/// What a reader of the folder finds, but for what the transaction has hidden.
DataFolder::Content visible(const DataFolder &data)
{
    DataFolder::Content content = data.content();
    content.removeIf([](const auto &entry) { return entry.key().startsWith(".stage"); });
    return content;
}

enum Outcome { done = 1, refused, failed };

Outcome outcomeOf(bool isDone)
{
    return isDone ? done : refused;
}

} // namespace

Q_DECLARE_METATYPE(Change)

class FileTransactionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesANewFile();
    void replacesAFile();
    void removesAFile();
    void makesFilesForTheUserAlone();
    void touchesNoOtherFile();
    void changesNothingBeforeTheCommit();
    void keepsTheOldFileWhereSomebodyLooksWhileItIsChecked();
    void leavesNothingWhenItIsGivenUp();
    void leavesAnotherFileOfTheStagesName();
    void refusesAFileThatAnotherProgramChanged_data();
    void refusesAFileThatAnotherProgramChanged();
    void refusesANewFileWhoseNameWasTaken();
    void takesEverythingBackWhenTheCheckFails_data();
    void takesEverythingBackWhenTheCheckFails();
    void takesANewFileBackWhenTheCheckFails();
    void leavesAFileThatTookThePlaceOfTheNewOne_data();
    void leavesAFileThatTookThePlaceOfTheNewOne();
    void keepsWhatWasWrittenIntoANewFileThatIsTakenBack();
    void keepsANewFileThatTheDiskMayHaveAsTheLiveOne();
    void keepsAnOldFileThatChangedAfterTheCheck_data();
    void keepsAnOldFileThatChangedAfterTheCheck();
    void leavesAnOldFileThatWasMovedAway();
    void worksWithoutFlagsOfRenames_data();
    void worksWithoutFlagsOfRenames();
    void refusesWithoutFlagsOfRenames_data();
    void refusesWithoutFlagsOfRenames();
};

void FileTransactionTest::writesANewFile()
{
    const DataFolder data;

    QVERIFY(FileEdit(data, "new").commitDuring([] {}));

    QCOMPARE(data.content(), (DataFolder::Content{{"Notes", "d"}, {"Notes/note", "fnew"}}));
}

void FileTransactionTest::replacesAFile()
{
    const DataFolder data;
    data.write("Notes/note", "old");

    QVERIFY(FileEdit(data, "new").commit());

    QCOMPARE(data.content(), (DataFolder::Content{{"Notes", "d"}, {"Notes/note", "fnew"}}));
}

void FileTransactionTest::removesAFile()
{
    const DataFolder data;
    data.write("Notes/note", "old");

    QVERIFY(FileEdit(data, {}).commit());

    QCOMPARE(data.content(), (DataFolder::Content{{"Notes", "d"}}));
}

void FileTransactionTest::makesFilesForTheUserAlone()
{
    const DataFolder data;

    QVERIFY(FileEdit(data, "new").commit());
    QCOMPARE(data.status("Notes/note").st_mode & 07777, 0600U);

    fs::permissions(data.path("Notes/note"), fs::perms(0644));
    QVERIFY(FileEdit(data, "newer").commit("new"));
    QCOMPARE(data.status("Notes/note").st_mode & 07777, 0600U);
}

void FileTransactionTest::touchesNoOtherFile()
{
    const DataFolder data;
    data.write("Notes/note", "old");
    data.write("Notes/other", "other");
    const struct stat folder = data.status("Notes");
    const struct stat before = data.status("Notes/other");

    QVERIFY(FileEdit(data, "new").commit());
    QVERIFY(FileEdit(data, {}).commit("new"));
    QVERIFY(FileEdit(data, "again").commit());

    const struct stat after = data.status("Notes/other");
    QCOMPARE(data.status("Notes").st_ino, folder.st_ino);
    QCOMPARE(after.st_ino, before.st_ino);
    QCOMPARE(after.st_nlink, 1U);
    QCOMPARE(after.st_ctim.tv_sec, before.st_ctim.tv_sec);
    QCOMPARE(after.st_ctim.tv_nsec, before.st_ctim.tv_nsec);
}

void FileTransactionTest::changesNothingBeforeTheCommit()
{
    const DataFolder data;
    data.write("Notes/note", "old");

    const FileEdit edit(data, "new");

    QCOMPARE(data.content(),
             (DataFolder::Content{{"Notes", "d"}, {"Notes/note", "fold"}, {".stage", "fnew"}}));
}

void FileTransactionTest::keepsTheOldFileWhereSomebodyLooksWhileItIsChecked()
{
    for (const Bytes bytes : {Bytes("new"), Bytes()}) {
        const DataFolder data;
        data.write("Notes/note", "old");
        FileEdit edit(data, bytes);
        std::vector<DataFolder::Content> seen;

        QVERIFY(edit.commitDuring([&] { seen.push_back(data.content()); }));

        DataFolder::Content expected{{"Notes", "d"}, {".recovery", "fold"}};
        if (bytes)
            expected["Notes/note"] = "fnew";
        QCOMPARE(seen.size(), 1U);
        QCOMPARE(seen.front(), expected);
    }
}

void FileTransactionTest::leavesNothingWhenItIsGivenUp()
{
    const DataFolder data;
    data.write("Notes/note", "old");
    const auto before = data.content();

    for (const Bytes bytes : {Bytes("new"), Bytes()})
        static_cast<void>(FileEdit(data, bytes));

    QCOMPARE(data.content(), before);
}

void FileTransactionTest::leavesAnotherFileOfTheStagesName()
{
    const DataFolder data;
    data.write("Notes/note", "old");
    data.write(".stage", "somebody's");
    const auto before = data.content();

    const auto error = thrown<FileError>([&] { static_cast<void>(FileEdit(data, "new")); });

    QVERIFY(error.has_value());
    QCOMPARE(error->systemError(), EEXIST);
    QCOMPARE(error->path(), data.path("Notes/note"));
    QCOMPARE(data.content(), before);
}

void FileTransactionTest::refusesAFileThatAnotherProgramChanged_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("isRemoval");

    for (const bool isRemoval : {false, true}) {
        const auto row = [&](const char *what) -> QTestData & {
            return QTest::addRow("%s before a %s", what, isRemoval ? "removal" : "replacement");
        };
        row("removed") << Change(removeFile) << isRemoval;
        row("replaced") << Change(replaceFile) << isRemoval;
        row("written into") << Change(addFile) << isRemoval;
        row("made a link") << Change(linkFile) << isRemoval;
    }
}

void FileTransactionTest::refusesAFileThatAnotherProgramChanged()
{
    QFETCH(const Change, change);
    QFETCH(const bool, isRemoval);
    const DataFolder data;
    data.write("Notes/note", "old");
    data.write("Notes/other", "other");
    DataFolder::Content before;
    {
        FileEdit edit(data, isRemoval ? Bytes() : "new");
        change(data);
        before = visible(data);

        QVERIFY(!edit.commit());
    }

    QCOMPARE(data.content(), before);
}

void FileTransactionTest::refusesANewFileWhoseNameWasTaken()
{
    const DataFolder data;
    {
        FileEdit edit(data, "new");
        addFile(data);

        QVERIFY(!edit.commit());
    }

    QCOMPARE(data.content(), (DataFolder::Content{{"Notes", "d"}, {"Notes/note", "ftheirs"}}));
}

void FileTransactionTest::takesEverythingBackWhenTheCheckFails_data()
{
    QTest::addColumn<bool>("isRemoval");

    QTest::newRow("replacement") << false;
    QTest::newRow("removal") << true;
}

void FileTransactionTest::takesEverythingBackWhenTheCheckFails()
{
    QFETCH(const bool, isRemoval);
    const DataFolder data;
    data.write("Notes/note", "old");
    const auto before = data.content();
    const struct stat file = data.status("Notes/note");

    QVERIFY(!FileEdit(data, isRemoval ? Bytes() : "new").commitDuring([] {}, false));
    QVERIFY_EXCEPTION_THROWN(
        static_cast<void>(FileEdit(data, isRemoval ? Bytes() : "new").commitDuring([] {
            throw RepositoryError::invalidMarkdown();
        })),
        RepositoryError);

    QCOMPARE(data.content(), before);
    QCOMPARE(data.status("Notes/note").st_ino, file.st_ino);
}

void FileTransactionTest::takesANewFileBackWhenTheCheckFails()
{
    const DataFolder data;

    QVERIFY(!FileEdit(data, "new").commitDuring([] {}, false));

    QCOMPARE(data.content(), (DataFolder::Content{{"Notes", "d"}}));
}

void FileTransactionTest::leavesAFileThatTookThePlaceOfTheNewOne_data()
{
    takesEverythingBackWhenTheCheckFails_data();
}

void FileTransactionTest::leavesAFileThatTookThePlaceOfTheNewOne()
{
    QFETCH(const bool, isRemoval);
    const DataFolder data;
    data.write("Notes/note", "old");

    // What cannot be moved back is not lost.
    QVERIFY(!FileEdit(data, isRemoval ? Bytes() : "new")
                 .commitDuring([&] { replaceFile(data); }, false));

    QCOMPARE(
        data.content(),
        (DataFolder::Content{{"Notes", "d"}, {"Notes/note", "ftheirs"}, {".recovery", "fold"}}));
}

void FileTransactionTest::keepsWhatWasWrittenIntoANewFileThatIsTakenBack()
{
    const DataFolder data;
    data.write("Notes/note", "old");

    FileEdit edit(data, "new");

    QVERIFY(!edit.commitDuring([&] { addFile(data); }, false));

    QVERIFY(edit.isSyncedAtTheEnd());
    QCOMPARE(
        data.content(),
        (DataFolder::Content{{"Notes", "d"}, {"Notes/note", "fold"}, {".recovery", "ftheirs"}}));
}

void FileTransactionTest::keepsANewFileThatTheDiskMayHaveAsTheLiveOne()
{
    const DataFolder data;
    data.write("Notes/note", "old");
    {
        FileEdit edit(data, "new");
        // The exchange is on the disk by then, and that it is taken back is not.
        constexpr int untilTheOldOneIsRenamed = 2;
        const auto breakDown = [&] { edit.failSyncsAfter(untilTheOldOneIsRenamed); };

        QVERIFY_EXCEPTION_THROWN(static_cast<void>(edit.commitDuring(breakDown)), FileError);
    }

    QCOMPARE(data.content(),
             (DataFolder::Content{{"Notes", "d"}, {"Notes/note", "fold"}, {".stage", "fnew"}}));
}

void FileTransactionTest::keepsAnOldFileThatChangedAfterTheCheck_data()
{
    takesEverythingBackWhenTheCheckFails_data();
}

void FileTransactionTest::keepsAnOldFileThatChangedAfterTheCheck()
{
    QFETCH(const bool, isRemoval);
    const DataFolder data;
    data.write("Notes/note", "old");
    std::ofstream editor(data.path("Notes/note"), std::ios::app);
    FileEdit edit(data, isRemoval ? Bytes() : "new");
    const auto write = [&] { editor << " and theirs" << std::flush; };

    const auto error = refusal([&] { static_cast<void>(edit.commitDuring(write)); });

    QCOMPARE(error, RepositoryError::recoveryRequired());
    DataFolder::Content expected{{"Notes", "d"}, {".recovery", "fold and theirs"}};
    if (!isRemoval)
        expected["Notes/note"] = "fnew";
    QCOMPARE(data.content(), expected);
}

void FileTransactionTest::leavesAnOldFileThatWasMovedAway()
{
    const DataFolder data;
    data.write("Notes/note", "old");
    FileEdit edit(data, "new");
    const auto move = [&] { fs::rename(data.path(".recovery"), data.path("theirs")); };

    const auto error = refusal([&] { static_cast<void>(edit.commitDuring(move)); });

    QCOMPARE(error, RepositoryError::recoveryRequired());
    QCOMPARE(data.content(),
             (DataFolder::Content{{"Notes", "d"}, {"Notes/note", "fnew"}, {"theirs", "fold"}}));
}

void FileTransactionTest::worksWithoutFlagsOfRenames_data()
{
    QTest::addColumn<int>("error");

    for (const int error : {EINVAL, ENOSYS, EOPNOTSUPP})
        QTest::newRow(strerrorname_np(error)) << error;
}

void FileTransactionTest::worksWithoutFlagsOfRenames()
{
    QFETCH(const int, error);
    const DataFolder data;

    const int outcome = withRefusedCalls({{SYS_renameat2, error}}, [&]() -> int {
        try {
            return outcomeOf(FileEdit(data, "old").commit() && FileEdit(data, "new").commit() &&
                             data.read("Notes/note") == "new" && FileEdit(data, {}).commit("new"));
        } catch (const std::exception &) {
            return failed;
        }
    });

    QCOMPARE(outcome, int(done));
    QCOMPARE(data.content(), (DataFolder::Content{{"Notes", "d"}}));
}

void FileTransactionTest::refusesWithoutFlagsOfRenames_data()
{
    refusesAFileThatAnotherProgramChanged_data();
    QTest::newRow("name taken by another") << Change(nullptr) << false;
}

void FileTransactionTest::refusesWithoutFlagsOfRenames()
{
    QFETCH(const Change, change);
    QFETCH(const bool, isRemoval);
    const DataFolder data;
    if (change)
        data.write("Notes/note", "old");

    const int outcome = withRefusedCalls({{SYS_renameat2, EINVAL}}, [&]() -> int {
        try {
            FileEdit edit(data, isRemoval ? Bytes() : "new");
            (change ? change : addFile)(data);
            return outcomeOf(edit.commit());
        } catch (const std::exception &) {
            return failed;
        }
    });

    const DataFolder expected;
    if (change)
        expected.write("Notes/note", "old");
    fs::create_directories(expected.path("Notes"));
    (change ? change : addFile)(expected);
    QCOMPARE(outcome, int(refused));
    QCOMPARE(data.content(), expected.content());
}

QTEST_GUILESS_MAIN(FileTransactionTest)
#include "FileTransactionTest.moc"
