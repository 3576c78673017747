// SPDX-License-Identifier: MIT
#include "FolderTransaction.h"

#include "DataFolder.h"
#include "Dice.h"
#include "FolderChange.h"
#include "MemoryDisk.h"
#include "OtherProgram.h"
#include "SyncedDisk.h"
#include "Thrown.h"

#include <QTest>
#include <array>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

/// Stands for whatever a check may throw.
struct Refusal {};

/// False where it cannot be set.
bool setImmutable(const fs::path &path, bool isImmutable)
{
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const int flags = isImmutable ? FS_IMMUTABLE_FL : 0;
    const bool isSet = ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
    ::close(fd);
    return isSet;
}

/// Exchanges nothing, lets nobody move the live folder, and knows whether something was removed
/// while a rename might still be lost.
class StubbornDisk final : public SyncedDisk {
public:
    Result<void> rename(Handle from, const char *name, Handle to, const char *newName,
                        Rename how) noexcept override
    {
        if (how == Rename::exchange)
            return Failure::system(EINVAL);
        if (std::string_view(name) == "Markdown")
            return Failure::system(EACCES);
        return SyncedDisk::rename(from, name, to, newName, how);
    }
    Result<void> unlink(Handle folder, const char *name, FileKind kind) noexcept override
    {
        m_hasRemovedTooEarly |= !isSynced();
        return SyncedDisk::unlink(folder, name, kind);
    }

    [[nodiscard]] bool hasRemovedTooEarly() const noexcept { return m_hasRemovedTooEarly; }

private:
    bool m_hasRemovedTooEarly = false;
};

/// Renames no stage, nor says what has the name of a recovery copy.
class BlindDisk final : public ForwardingDisk {
public:
    using ForwardingDisk::status;

    Result<void> rename(Handle from, const char *name, Handle to, const char *newName,
                        Rename how) noexcept override
    {
        if (std::string_view(name) == ".stage")
            return Failure::system(EIO);
        return ForwardingDisk::rename(from, name, to, newName, how);
    }
    Result<FileStatus> status(Handle folder, const char *name) noexcept override
    {
        if (std::string_view(name) == ".recovery")
            return Failure::system(EIO);
        return ForwardingDisk::status(folder, name);
    }
};

} // namespace

class FolderTransactionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void makesTheFirstFolderWithoutARecoveryCopy();
    void makesFoldersForTheUserAlone();
    void makesTheFoldersThatThereMustBe();
    void writesReplacesAndRemoves();
    void carriesOverWhatDoesNotChange();
    void keepsTheFilesThemselves();
    void keepsPermissionsAndTimesOfFolders();
    void keepsTheGroupOfFolders();
    void keepsAttributesOfFolders();
    void leavesWhatIsImmutableInItsPlace();
    void changesNothingBeforeTheCommit();
    void asksOnceAndWhenTheNewFolderIsLive();
    void keepsTheOldContentUntilItIsRemoved();
    void usesTheNamesThatItIsGiven();
    void leavesEverythingWhenTheStageCannotBeMade();
    void leavesEverythingWhenItIsGivenUp();
    void takesBackTheExchangeWhenTheCheckFails_data();
    void takesBackTheExchangeWhenTheCheckFails();
    void answersFalseWhenAnotherProgramChangedTheFolder_data();
    void answersFalseWhenAnotherProgramChangedTheFolder();
    void takesBackTheExchangeWhenAnotherProgramReplacedAFile();
    void keepsANewFolderThatTheDiskMayHaveAsTheLiveOne();
    void removesNothingThatTheDiskMayHaveAsARecoveryCopy();
    void takesNothingForMovedThatCannotBeSeen();
    void followsAFolderThatGoesAndOneThatStays();
    void keepsAFolderThatCameLateThroughAPowerCut();
    void leavesAFirstFolderThatAnotherProgramMade();
    void keepsWhatIsWrittenIntoAFileInBetween();
    void leavesAnOldStageWhereItIs();
};

void FolderTransactionTest::makesTheFirstFolderWithoutARecoveryCopy()
{
    const DataFolder data;
    FolderChange change(data, {{"", "new", "1"}});
    QCOMPARE(data.content(), (DataFolder::Content{{".stage", "d"}, {".stage/new", "f1"}}));

    const bool isDone =
        change.commitDuring([] { QFAIL("There was no old content to be looked at."); });

    QVERIFY(isDone);
    QCOMPARE(data.content(), (DataFolder::Content{{"Markdown", "d"}, {"Markdown/new", "f1"}}));
}

void FolderTransactionTest::makesFoldersForTheUserAlone()
{
    const DataFolder data;

    QVERIFY(FolderChange(data, {{"Notes", "a", "1"}}, {"Notes"}).complete());

    const auto mode = [&](std::string_view path) { return data.status(path).st_mode & 07777; };
    QCOMPARE(mode(""), 0700U);
    QCOMPARE(mode("Markdown"), 0700U);
    QCOMPARE(mode("Markdown/Notes"), 0700U);
    QCOMPARE(mode("Markdown/Notes/a"), 0600U);
}

void FolderTransactionTest::makesTheFoldersThatThereMustBe()
{
    const DataFolder data;
    data.write("Markdown/Notes/a", "1");

    QVERIFY(FolderChange(data, {{"Drafts", "b", "2"}}, {"Notes", "Drafts"}).complete());

    QCOMPARE(data.content(), (DataFolder::Content{{"Markdown", "d"},
                                                  {"Markdown/Drafts", "d"},
                                                  {"Markdown/Drafts/b", "f2"},
                                                  {"Markdown/Notes", "d"},
                                                  {"Markdown/Notes/a", "f1"}}));
}

void FolderTransactionTest::writesReplacesAndRemoves()
{
    const DataFolder data;
    for (const char *name : {"changed", "removed", "Notes/changed", "Notes/removed"})
        data.write(std::string("Markdown/") + name, "old");
    const std::vector<FileChange> changes{{"", "added", "new"},        {"", "changed", "new"},
                                          {"", "removed", {}},         {"Notes", "added", "new"},
                                          {"Notes", "changed", "new"}, {"Notes", "removed", {}}};

    QVERIFY(FolderChange(data, changes, {"Notes"}).complete());

    QCOMPARE(data.content(), (DataFolder::Content{{"Markdown", "d"},
                                                  {"Markdown/added", "fnew"},
                                                  {"Markdown/changed", "fnew"},
                                                  {"Markdown/Notes", "d"},
                                                  {"Markdown/Notes/added", "fnew"},
                                                  {"Markdown/Notes/changed", "fnew"}}));
}

void FolderTransactionTest::carriesOverWhatDoesNotChange()
{
    const DataFolder data;
    data.write("Markdown/.hidden", "1");
    data.write("Markdown/photos/2025/a.jpg", QByteArray("a\0b", 3));
    data.write("Markdown/\xff\xfe not UTF-8", "2");
    fs::create_symlink("photos/2025", data.path("Markdown/link"));
    fs::create_symlink("/nowhere", data.path("Markdown/lost link"));
    QCOMPARE(::mkfifo(data.path("Markdown/pipe").c_str(), 0600), 0);
    const auto before = data.content();

    QVERIFY(FolderChange(data).complete());

    QCOMPARE(data.content(), before);
}

void FolderTransactionTest::keepsTheFilesThemselves()
{
    const DataFolder data;
    data.write("Markdown/a/kept", "1");
    const struct stat before = data.status("Markdown/a/kept");

    QVERIFY(FolderChange(data).complete());

    const struct stat after = data.status("Markdown/a/kept");
    QCOMPARE(after.st_ino, before.st_ino);
    QCOMPARE(after.st_mtim.tv_sec, before.st_mtim.tv_sec);
    QCOMPARE(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    QCOMPARE(after.st_nlink, 1U);
}

void FolderTransactionTest::keepsPermissionsAndTimesOfFolders()
{
    const DataFolder data;
    data.write("Markdown/shared/file", "1");
    fs::permissions(data.path("Markdown/shared"), fs::perms(0755));
    const std::array<timespec, 2> times{timespec{1'000, 1}, timespec{2'000, 2}};
    QCOMPARE(::utimensat(AT_FDCWD, data.path("Markdown/shared").c_str(), times.data(), 0), 0);

    QVERIFY(FolderChange(data).complete());

    const struct stat after = data.status("Markdown/shared");
    QCOMPARE(after.st_mode & 07777, 0755U);
    QCOMPARE(after.st_mtim.tv_sec, 2'000);
    QCOMPARE(after.st_mtim.tv_nsec, 2);
}

void FolderTransactionTest::keepsTheGroupOfFolders()
{
    constexpr gid_t group = 12345;
    const DataFolder data;
    data.write("Markdown/shared/file", "1");
    if (::chown(data.path("Markdown/shared").c_str(), static_cast<uid_t>(-1), group) != 0)
        QSKIP("Only root may give a folder to any group.");
    QCOMPARE(::chmod(data.path("Markdown/shared").c_str(), 02770), 0);

    QVERIFY(FolderChange(data).complete());

    QCOMPARE(data.status("Markdown/shared").st_gid, group);
    QCOMPARE(data.status("Markdown/shared").st_mode & 07777, 02770U);
}

void FolderTransactionTest::keepsAttributesOfFolders()
{
    const DataFolder data;
    data.write("Markdown/tagged/file", "1");
    const std::string path = data.path("Markdown/tagged");
    if (::setxattr(path.c_str(), "user.tag", "blue", 4, 0) != 0)
        QSKIP("The file system has no attributes for users.");

    QVERIFY(FolderChange(data).complete());

    std::array<char, 8> value{};
    QCOMPARE(::getxattr(path.c_str(), "user.tag", value.data(), value.size()), 4);
    QCOMPARE(QByteArray(value.data()), "blue");
}

void FolderTransactionTest::leavesWhatIsImmutableInItsPlace()
{
    for (const char *name : {"Markdown/file", "Markdown/folder"}) {
        const DataFolder data;
        data.write("Markdown/file", "1");
        data.write("Markdown/folder/file", "1");
        const fs::path path = data.path(name);
        if (!setImmutable(path, true))
            QSKIP("Only root may make a file immutable, and not on every file system.");
        const auto before = data.content();

        const auto error = thrown<FileError>([&] { static_cast<void>(FolderChange(data)); });

        QVERIFY(setImmutable(path, false));
        QVERIFY(error.has_value());
        QCOMPARE(error->systemError(), EPERM);
        QCOMPARE(error->path(), path);
        QCOMPARE(data.content(), before);
    }
}

void FolderTransactionTest::changesNothingBeforeTheCommit()
{
    const DataFolder data;
    data.write("Markdown/file", "old");
    data.write("Markdown/kept", "kept");
    const struct stat before = data.status("Markdown");

    const FolderChange change(data, {{"", "file", "new"}});

    QCOMPARE(data.status("Markdown").st_ino, before.st_ino);
    QCOMPARE(data.content(), (DataFolder::Content{{"Markdown", "d"},
                                                  {"Markdown/file", "fold"},
                                                  {"Markdown/kept", "fkept"},
                                                  {".stage", "d"},
                                                  {".stage/file", "fnew"},
                                                  {".stage/kept", "fkept"}}));
}

void FolderTransactionTest::asksOnceAndWhenTheNewFolderIsLive()
{
    const DataFolder data;
    data.write("Markdown/file", "old");
    FolderChange change(data, {{"", "file", "new"}});
    std::vector<DataFolder::Content> seen;

    QVERIFY(change.commitDuring([&] { seen.push_back(data.content()); }));

    QCOMPARE(seen.size(), 1U);
    QCOMPARE(seen.front(), (DataFolder::Content{{"Markdown", "d"},
                                                {"Markdown/file", "fnew"},
                                                {".recovery", "d"},
                                                {".recovery/file", "fold"}}));
}

void FolderTransactionTest::keepsTheOldContentUntilItIsRemoved()
{
    const DataFolder data;
    data.write("Markdown/file", "old");
    FolderChange change(data, {{"", "file", "new"}});

    QVERIFY(change.commit());
    OldFolder old = change.takeOldFolder();

    QCOMPARE(data.content(), (DataFolder::Content{{"Markdown", "d"},
                                                  {"Markdown/file", "fnew"},
                                                  {".stage", "d"},
                                                  {".stage/file", "fold"}}));
    QVERIFY(old.remove(FolderTree::Deadline::max()) == OldFolder::Outcome::gone);
    QCOMPARE(data.content(), (DataFolder::Content{{"Markdown", "d"}, {"Markdown/file", "fnew"}}));
}

void FolderTransactionTest::usesTheNamesThatItIsGiven()
{
    // The live folder may lie in another one than what is hidden.
    const DataFolder data;
    data.write("Markdown/Drafts/file", "old");
    SystemDisk disk;
    const Directory hidden = Directory::openOrMake(disk, data.path());
    const Directory parent = Directory::openOrMake(disk, data.path("Markdown"));
    const Directory original = Directory::openOrMake(disk, data.path("Markdown/Drafts"));
    const SwapPlace place{parent, hidden, "Drafts", "a stage", "a recovery copy"};
    const std::vector<FileChange> changes{{"", "file", "new"}};
    DataFolder::Content during;
    {
        FolderTransaction transaction(place, &original, FolderTree(original), changes, {});
        QCOMPARE(data.read("a stage/file"), "new");

        QVERIFY(transaction.commit([&] {
            during = data.content();
            return true;
        }));
    }

    QCOMPARE(during, (DataFolder::Content{{"Markdown", "d"},
                                          {"Markdown/Drafts", "d"},
                                          {"Markdown/Drafts/file", "fnew"},
                                          {"a recovery copy", "d"},
                                          {"a recovery copy/file", "fold"}}));
    QCOMPARE(data.read("a stage/file"), "old");
    QVERIFY(!data.holds("a recovery copy"));
}

void FolderTransactionTest::leavesEverythingWhenTheStageCannotBeMade()
{
    const DataFolder data;
    data.write("Markdown/a/file", "old");
    const auto before = data.content();

    const auto error = thrown<FileError>([&] {
        static_cast<void>(FolderChange(data, {{"", "half", "new"}, {"", "no/such", "new"}}));
    });

    QVERIFY(error.has_value());
    QCOMPARE(error->systemError(), ENOENT);
    QCOMPARE(error->path(), data.path("Markdown/no/such"));
    QCOMPARE(data.content(), before);
}

void FolderTransactionTest::leavesEverythingWhenItIsGivenUp()
{
    const DataFolder data;
    data.write("Markdown/a/file", "old");
    const auto before = data.content();

    std::optional<FolderChange> change(std::in_place, data,
                                       std::vector<FileChange>{{"a", "file", "new"}},
                                       std::vector<const char *>{"a"});
    QCOMPARE(data.read(".stage/a/file"), "new");
    change.reset();

    QCOMPARE(data.content(), before);
}

void FolderTransactionTest::takesBackTheExchangeWhenTheCheckFails_data()
{
    QTest::addColumn<bool>("isThrown");

    QTest::newRow("says no") << false;
    QTest::newRow("throws") << true;
}

void FolderTransactionTest::takesBackTheExchangeWhenTheCheckFails()
{
    QFETCH(const bool, isThrown);
    const DataFolder data;
    data.write("Markdown/file", "old");
    const auto before = data.content();
    const struct stat folder = data.status("Markdown");
    {
        FolderChange change(data, {{"", "file", "new"}});
        const auto refuse = [&] { return isThrown ? throw Refusal() : false; };

        if (isThrown)
            QVERIFY_EXCEPTION_THROWN(static_cast<void>(change.transaction().commit(refuse)),
                                     Refusal);
        else
            QVERIFY(!change.transaction().commit(refuse));
    }

    QCOMPARE(data.content(), before);
    QCOMPARE(data.status("Markdown").st_ino, folder.st_ino);
}

void FolderTransactionTest::answersFalseWhenAnotherProgramChangedTheFolder_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("isRemoved");

    QTest::newRow("added a file") << QByteArray("Markdown/a/added") << false;
    QTest::newRow("added a folder") << QByteArray("Markdown/a/b/added") << false;
    QTest::newRow("removed a file") << QByteArray("Markdown/a/file") << true;
    QTest::newRow("removed a file that was to change") << QByteArray("Markdown/changed") << true;
    QTest::newRow("removed a folder") << QByteArray("Markdown/empty") << true;
    QTest::newRow("took a name") << QByteArray("Markdown/new") << false;
    QTest::newRow("wrote into a file that was to change")
        << QByteArray("Markdown/changed") << false;
}

void FolderTransactionTest::answersFalseWhenAnotherProgramChangedTheFolder()
{
    QFETCH(const QByteArray, name);
    QFETCH(const bool, isRemoved);
    const DataFolder data;
    data.write("Markdown/a/file", "old");
    data.write("Markdown/changed", "old");
    fs::create_directory(data.path("Markdown/empty"));
    DataFolder::Content before;
    {
        FolderChange change(data, {{"", "changed", "new"}, {"", "new", "new"}});
        if (isRemoved)
            fs::remove(data.path(name.toStdString()));
        else
            data.write(name.toStdString(), "theirs");
        before = data.content();

        QVERIFY(!change.commit());
    }

    before.removeIf([](const auto &entry) { return entry.key().startsWith(".stage"); });
    QCOMPARE(data.content(), before);
}

void FolderTransactionTest::takesBackTheExchangeWhenAnotherProgramReplacedAFile()
{
    const DataFolder data;
    data.write("Markdown/file", "old");
    {
        FolderChange change(data);
        data.write("Markdown/.temporary", "theirs");
        fs::rename(data.path("Markdown/.temporary"), data.path("Markdown/file"));

        QVERIFY(!change.commit());
    }

    QCOMPARE(data.content(),
             (DataFolder::Content{{"Markdown", "d"}, {"Markdown/file", "ftheirs"}}));
}

void FolderTransactionTest::keepsANewFolderThatTheDiskMayHaveAsTheLiveOne()
{
    const DataFolder data;
    data.write("Markdown/note", "old");
    SyncedDisk disk;
    const Directory parent = Directory::openOrMake(disk, data.path());
    const Directory original = *parent.openFolder("Markdown");
    const SwapPlace place{parent, parent, "Markdown", ".stage", ".recovery"};
    const std::vector<FileChange> changes{{"", "note", "new"}};
    {
        FolderTransaction transaction(place, &original, FolderTree(original), changes, {});
        // The exchange is on the disk by then, and that it is taken back is not.
        const auto breakDown = [&] {
            disk.failSyncsAfter(1);
            return true;
        };

        QVERIFY_EXCEPTION_THROWN(static_cast<void>(transaction.commit(breakDown)), FileError);
    }

    QCOMPARE(data.content(), (DataFolder::Content{{"Markdown", "d"},
                                                  {"Markdown/note", "fold"},
                                                  {".stage", "d"},
                                                  {".stage/note", "fnew"}}));
}

void FolderTransactionTest::removesNothingThatTheDiskMayHaveAsARecoveryCopy()
{
    const DataFolder data;
    data.write("Markdown/note", "old");
    StubbornDisk disk;
    const Directory parent = Directory::openOrMake(disk, data.path());
    const Directory original = *parent.openFolder("Markdown");
    const SwapPlace place{parent, parent, "Markdown", ".stage", ".recovery"};
    const std::vector<FileChange> changes{{"", "note", "new"}};
    {
        FolderTransaction transaction(place, &original, FolderTree(original), changes, {});

        QVERIFY_EXCEPTION_THROWN(static_cast<void>(transaction.commit([] { return true; })),
                                 FileError);
    }

    QVERIFY(!disk.hasRemovedTooEarly());
    QCOMPARE(data.content(), (DataFolder::Content{{"Markdown", "d"}, {"Markdown/note", "fold"}}));
}

void FolderTransactionTest::takesNothingForMovedThatCannotBeSeen()
{
    const DataFolder data;
    data.write("Markdown/note", "old");
    BlindDisk disk;
    const Directory parent = Directory::openOrMake(disk, data.path());
    const Directory original = *parent.openFolder("Markdown");
    const SwapPlace place{parent, parent, "Markdown", ".stage", ".recovery"};
    const std::vector<FileChange> changes{{"", "note", "new"}};
    {
        FolderTransaction transaction(place, &original, FolderTree(original), changes, {});

        QVERIFY_EXCEPTION_THROWN(static_cast<void>(transaction.commit([] { return true; })),
                                 FileError);
    }

    QCOMPARE(data.content(), (DataFolder::Content{{"Markdown", "d"}, {"Markdown/note", "fold"}}));
}

void FolderTransactionTest::followsAFolderThatGoesAndOneThatStays()
{
    const DataFolder data;
    data.write("Markdown/first/one", "1");
    data.write("Markdown/second/two", "2");
    SystemDisk disk;
    const Directory parent = Directory::openOrMake(disk, data.path());
    const Directory original = *parent.openFolder("Markdown");
    const SwapPlace place{parent, parent, "Markdown", ".stage", ".recovery"};
    const auto isOfOthers = [](std::string_view, std::string_view) noexcept { return false; };
    const std::vector<FileChange> changes{{"", "note", "new"}};
    FolderTransaction transaction(place, &original, FolderTree(original, isOfOthers), changes, {});

    fs::remove_all(data.path("Markdown/first"));
    data.write("Markdown/second/three", "3");
    int tries = 0;
    QVERIFY(transaction.commit([&] {
        ++tries;
        return true;
    }));

    QCOMPARE(tries, 1);
    QCOMPARE(data.read("Markdown/second/two"), "2");
    QCOMPARE(data.read("Markdown/second/three"), "3");
    QVERIFY(!data.holds("Markdown/first"));
}

void FolderTransactionTest::keepsAFolderThatCameLateThroughAPowerCut()
{
    MemoryDisk::Abilities abilities;
    abilities.canLosePower = true;
    MemoryDisk disk(abilities);
    OtherProgram other(disk);
    other.makeFolder("/data/Markdown");
    other.make("/data/Markdown/note", "old");
    const Directory parent = Directory::openOrMake(disk, "/data");
    const Directory original = *parent.openFolder("Markdown");
    const SwapPlace place{parent, parent, "Markdown", ".stage", ".recovery"};
    const auto isOfOthers = [](std::string_view, std::string_view) noexcept { return false; };
    const std::vector<FileChange> changes{{"", "note", "new"}};
    FolderTransaction transaction(place, &original, FolderTree(original, isOfOthers), changes, {});

    disk.letTimePass(MemoryDisk::tick);
    other.makeFolder("/data/Markdown/late");
    other.make("/data/Markdown/late/file", "theirs");
    other.syncAll();
    QVERIFY(transaction.commit([] { return true; }));

    for (std::uint64_t seed = 1; seed <= 50; ++seed) {
        Dice dice(seed);
        const MemoryDisk::Image image = disk.afterPowerCut(dice);
        const std::string *content = MemoryDisk(image).contentAt("/data/Markdown/late/file");
        QVERIFY(content);
        QCOMPARE(*content, "theirs");
    }
}

void FolderTransactionTest::leavesAFirstFolderThatAnotherProgramMade()
{
    const DataFolder data;
    {
        FolderChange change(data, {{"", "file", "ours"}});
        data.write("Markdown/file", "theirs");

        QVERIFY(!change.commit());
    }

    QCOMPARE(data.content(),
             (DataFolder::Content{{"Markdown", "d"}, {"Markdown/file", "ftheirs"}}));
}

void FolderTransactionTest::keepsWhatIsWrittenIntoAFileInBetween()
{
    const DataFolder data;
    data.write("Markdown/file", "old");
    FolderChange change(data);
    data.write("Markdown/file", "theirs");

    QVERIFY(change.complete());

    QCOMPARE(data.content(),
             (DataFolder::Content{{"Markdown", "d"}, {"Markdown/file", "ftheirs"}}));
}

void FolderTransactionTest::leavesAnOldStageWhereItIs()
{
    const DataFolder data;
    data.write("Markdown/file", "1");
    data.write(".stage/file", "somebody's");
    const auto before = data.content();

    const auto error = thrown<FileError>([&] { static_cast<void>(FolderChange(data)); });

    QVERIFY(error.has_value());
    QCOMPARE(error->systemError(), EEXIST);
    QCOMPARE(data.content(), before);
}

QTEST_GUILESS_MAIN(FolderTransactionTest)
#include "FolderTransactionTest.moc"
